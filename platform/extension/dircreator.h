// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// Makes directories with the access rights that their contents need.
class DirCreator
{
public:
    enum Access
    {
        /// Everybody may read, write and enter.
        DEFAULT_ALL = 0777,
        /// Only the owner may.
        OWNER_ONLY = 0700
    };

    /// Makes sure that the directory @a path exists. A directory made here gets exactly the rights @a access, whatever
    /// the umask; parents missing on the way are made for the owner alone. One that exists is left as it is.
    /// @return false, with a critical log line saying why, when there is no such directory afterwards.
    static bool checkAndCreate(const QString &path, Access access);
};
