// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

/// Puts the process into a time zone and back into the one before when it dies.
class Zone
{
public:
    /// @param name as TZ takes it: "Europe/Moscow".
    explicit Zone(const QByteArray &name);
    ~Zone();
    Zone(const Zone &) = delete;
    Zone &operator=(const Zone &) = delete;

private:
    bool m_wasSet;
    QByteArray m_before;
};
