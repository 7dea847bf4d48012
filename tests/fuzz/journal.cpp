// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "extension/cryptedsettingsstorage.h"
#include "fuzztarget.h"
#include "parkomatdatastorage.h"
#include "support/testclock.h"
#include "support/workdirectory.h"

#include <QDate>

namespace {
const QString RECORD = QStringLiteral("PARKOMAT/data");

/// One journal record in a file that is never written: this is about the record alone.
QVariantMap readRecord(const QString &record)
{
    static QSettings storage(WorkDirectory::path() + QStringLiteral("/record.ini"), QSettings::IniFormat);
    storage.setValue(RECORD, record);
    ParkomatDataStorage journal;
    QVariantMap data = {{QStringLiteral("left"), QStringLiteral("over")}};
    const bool isRead = journal.getData(&storage, data);
    FUZZ_REQUIRE(isRead || data.isEmpty());
    FUZZ_REQUIRE(storage.group().isEmpty());
    FUZZ_REQUIRE(storage.value(RECORD).toString() == record);
    return data;
}

/// What the journal must take for the day's counter, worked out anew from the two records.
quint16 expectedCounter(const QVariantMap &main, const QVariantMap &back)
{
    const QVariantMap &data = main.isEmpty() ? back : main;
    const QDate date = QDate::fromString(data.value(QStringLiteral("date")).toString(), QStringLiteral("yyyy.MM.dd"));
    return date == QDate::currentDate() ? static_cast<quint16>(data.value(QStringLiteral("operation")).toUInt()) : 0;
}

void store(const QString &file, const QString &record)
{
    CryptedSettingsStorage(file).setValue(RECORD, record);
}

bool isStored(const QString &file)
{
    return CryptedSettingsStorage(file).contains(RECORD);
}

/// The two files as they are on a terminal. The one that does not count loses its record, as does none when both say
/// the same.
void requireJournal(const QString &mainRecord, const QString &backRecord)
{
    const QVariantMap main = readRecord(mainRecord);
    const QVariantMap back = readRecord(backRecord);
    ParkomatDataStorage journal;
    store(ParkomatDataStorage::MAIN_FILE, mainRecord);
    store(ParkomatDataStorage::BACK_FILE, backRecord);
    const quint16 counter = journal.getPrevOperation();
    FUZZ_REQUIRE(counter == expectedCounter(main, back));
    FUZZ_REQUIRE(isStored(ParkomatDataStorage::MAIN_FILE) == (main == back || !main.isEmpty()));
    FUZZ_REQUIRE(isStored(ParkomatDataStorage::BACK_FILE) == (main == back || main.isEmpty()));
    FUZZ_REQUIRE(journal.getPrevOperation() == counter);
    FUZZ_REQUIRE(journal.getNewSessionId().endsWith(QString::number(counter + 1)));
}
} // namespace

/// Two journal records, the input's first two lines: Base64 of JSON, or whatever else lies there. A line that begins
/// with a brace is JSON that is encoded here, so that the fuzzer need not find Base64 by itself; 7 March 2024 stands
/// for today in it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    // Today must not end while it is looked at. Not another day: libFuzzer tells its own time by the same clock.
    TestClock::freeze(QDateTime::currentDateTimeUtc());
    const QByteArray today = QDate::currentDate().toString(QStringLiteral("yyyy.MM.dd")).toLatin1();
    QStringList records;
    const QList<QByteArray> lines = FuzzTarget::bytes(data, size).split('\n');
    for (QByteArray line : lines)
        records.append(line.startsWith('{') ? QString::fromLatin1(line.replace("2024.03.07", today).toBase64())
                                            : QString::fromUtf8(line.constData(), line.size()));
    readRecord(records.at(0));
    if (records.size() > 1)
        requireJournal(records.at(0), records.at(1));
    TestClock::release();
    return 0;
}
