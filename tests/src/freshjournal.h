// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "journalfiles.h"

/// A journal with a record that it takes away when it advances, in both of its files: tells whether it did.
namespace FreshJournal {
inline void make()
{
    for (const QString &path : {ParkomatDataStorage::MAIN_FILE, ParkomatDataStorage::BACK_FILE}) {
        CryptedSettingsStorage file(path);
        ParkomatDataStorage().setData(&file, {});
    }
}

/// Whether neither file has advanced.
[[nodiscard]] inline bool isThere()
{
    return CryptedSettingsStorage(ParkomatDataStorage::MAIN_FILE).contains(JournalFiles::RECORD) &&
           CryptedSettingsStorage(ParkomatDataStorage::BACK_FILE).contains(JournalFiles::RECORD);
}
} // namespace FreshJournal
