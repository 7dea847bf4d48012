// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QSet>
#include <QStringList>

/// The process's descriptors and threads at one moment, each with its identity: they tell a leak from what comes and
/// goes. How many there are does not tell that: Qt's own threads open descriptors for a moment now and then, and a
/// thread that has ended is still counted for a while.
class OpenResources
{
public:
    /// As they are now.
    OpenResources() : m_then(open()) {}

    /// What has come since and is there now, by name: "descriptor 7 socket:[4711]", "thread 815".
    [[nodiscard]] QStringList added() const;
    /// What has come since and does not go while events happen, for a minute: empty when nothing was left behind.
    [[nodiscard]] QStringList left() const;

private:
    [[nodiscard]] static QSet<QString> open();

    QSet<QString> m_then;
};
