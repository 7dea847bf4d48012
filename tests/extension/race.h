// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "support/childprocess.h"

#include <QFile>

#include <cstdio>
#include <vector>

#include <sys/file.h>

/// Children that all go at once, and so run into each other.
namespace Race {
/// Called first in the child: it comes back when all have come. @param gate its first argument.
inline void passGate(const QString &gate)
{
    QFile file(gate);
    const bool isOpen = file.open(QIODevice::ReadWrite);
    std::puts("ready");
    std::fflush(stdout);
    if (!isOpen || ::flock(file.handle(), LOCK_SH) != 0)
        qFatal("the gate %s cannot be passed", qPrintable(gate));
}

/// Starts children that are let go when all have come; they are running then.
/// @param gate a path where a file may be made.
[[nodiscard]] inline std::vector<std::unique_ptr<QProcess>> start(int count, const char *name, const QString &gate,
                                                                  const QStringList &arguments = {})
{
    constexpr int limitMs = 240'000;
    QFile file(gate);
    if (!file.open(QIODevice::ReadWrite) || ::flock(file.handle(), LOCK_EX) != 0)
        qFatal("the gate %s cannot be closed", qPrintable(gate));
    std::vector<std::unique_ptr<QProcess>> children;
    for (int i = 0; i < count; ++i)
        children.push_back(ChildProcess::start(name, QStringList(gate) + arguments));
    for (const auto &child : children) {
        if (!child->waitForReadyRead(limitMs) || child->readAll() != "ready\n")
            qFatal("a child %s has not come to the gate", name);
    }
    return children;
}
} // namespace Race
