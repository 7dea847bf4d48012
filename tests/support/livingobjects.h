// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

/// The QObjects that were made since this one was and are alive, whoever made them, by Qt's own account. One at a time.
class LivingObjects
{
public:
    LivingObjects();
    ~LivingObjects();
    LivingObjects(const LivingObjects &) = delete;
    LivingObjects &operator=(const LivingObjects &) = delete;

    [[nodiscard]] int count() const;
    /// Their classes, one for each. Not while other threads make or destroy some.
    [[nodiscard]] QStringList classes() const;
};
