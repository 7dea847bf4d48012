// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <sys/fsuid.h>
#include <unistd.h>

/// The rights of files count for this thread while it lives, though root may do everything.
class OrdinaryUser
{
public:
    OrdinaryUser()
    {
        if (::geteuid() == 0)
            ::setfsuid(NOBODY);
    }
    ~OrdinaryUser() { ::setfsuid(::geteuid()); }
    OrdinaryUser(const OrdinaryUser &) = delete;
    OrdinaryUser &operator=(const OrdinaryUser &) = delete;

private:
    static constexpr uid_t NOBODY = 65534;
};
