// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "benchmarkcase.h"
#include "parkomatdatastorage.h"

#include <QFile>

#include <stdexcept>

namespace {
BenchmarkCase::Operation issueIdentifier()
{
    const QString id = ParkomatDataStorage().getNewSessionId();
    if (!id.startsWith(QLatin1String("004224")) || !id.endsWith(QLatin1String("001")))
        throw std::runtime_error("this is no session identifier");
    if (QFile::exists(ParkomatDataStorage::MAIN_FILE) || QFile::exists(ParkomatDataStorage::BACK_FILE))
        throw std::runtime_error("there is a journal file");
    return [] { (void)ParkomatDataStorage().getNewSessionId(); };
}
} // namespace

BenchmarkCases sessionCases()
{
    return {{"session", "session-identifier", 130'000, issueIdentifier}};
}
