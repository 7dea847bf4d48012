// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "extension/initconfig.h"

#include <QDir>
#include <QFile>

#include <array>

#include <pwd.h>
#include <unistd.h>

namespace {
/// The value of a variable that names a directory. A relative one, which would be another directory for each program,
/// is left out of account, as one that is not set.
QByteArray absolutePath(const char *variable)
{
    const QByteArray path = qgetenv(variable);
    return path.startsWith('/') ? path : QByteArray();
}

/// As it stands in the system's list of users.
QByteArray homeOfThisUser()
{
    constexpr std::size_t longestEntry = 16384;
    std::array<char, longestEntry> buffer = {};
    passwd user = {};
    passwd *found = nullptr;
    ::getpwuid_r(::geteuid(), &user, buffer.data(), buffer.size(), &found);
    return found != nullptr && *user.pw_dir == '/' ? QByteArray(user.pw_dir) : QByteArray("/");
}

QByteArray dataDir()
{
    const QByteArray data = absolutePath("XDG_DATA_HOME");
    if (!data.isEmpty())
        return data;
    const QByteArray home = absolutePath("HOME");
    return (home.isEmpty() ? homeOfThisUser() : home) + "/.local/share";
}
} // namespace

QString InitConfig::workDir()
{
    return QFile::decodeName(encodedWorkDir());
}

QByteArray InitConfig::encodedWorkDir()
{
    const QByteArray configured = qgetenv("TERMINAL_WORK_DIR");
    if (!configured.isEmpty())
        return configured;
    return QFile::encodeName(QDir::cleanPath(QFile::decodeName(dataDir() + "/payment-terminal")));
}
