// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

/// Says where the terminal keeps its state.
class InitConfig
{
public:
    /// The work directory: TERMINAL_WORK_DIR from the environment exactly as it stands there, else "payment-terminal"
    /// under the user's data directory. That is XDG_DATA_HOME, or ".local/share" under HOME, or the same under the home
    /// directory in the system's list of users: the first of them that is an absolute path. So the folder is an
    /// absolute, clean path whatever the environment, and no other one after a change of the current directory.
    ///
    /// It is not created here. Works without an application object and before main(), since plugins ask while they are
    /// loaded.
    [[nodiscard]] static QString workDir();
    /// The same as the system's calls take it. Settings are read so often that turning it into a text and back counts.
    [[nodiscard]] static QByteArray encodedWorkDir();
};
