// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "parkingfile.h"
#include "support/testcase.h"
#include "support/workdirectory.h"
#include "support/zone.h"

#include <QFile>

#include <set>

namespace {
constexpr cash::Moment LAUNCH = 1'709'809'509;

const char GOOD[] = "parking: here\n"
                    "tariff:\n"
                    "  per-hour: 50\n"
                    "  free: 15m\n"
                    "  daily-maximum: 500.00\n"
                    "cards:\n"
                    "  - uid: 12ABCDEF\n"
                    "    entered: 2024-03-07T11:35:09\n";
} // namespace

/// Car parks in YAML, and everything that can be wrong with one.
class ParkingFileTest : public TestCase
{
    Q_OBJECT

private:
    Zone m_zone{"Europe/Moscow"};

    static std::string write(const QByteArray &text)
    {
        const QString path = WorkDirectory::path() + QStringLiteral("/park.yaml");
        QFile file(path);
        if (file.open(QIODevice::WriteOnly))
            file.write(text);
        return path.toStdString();
    }

    /// The mistakes without the file's name.
    static QString mistakesIn(const QByteArray &text)
    {
        const std::string path = write(text);
        try {
            (void)cash::readParkingFile(path, LAUNCH);
        } catch (const cash::ParkingFileError &error) {
            return QString::fromStdString(error.what())
                .replace(QString::fromStdString(path) + QLatin1Char(':'), QString());
        }
        return QString();
    }

    static void row(const QByteArray &name, const QByteArray &from, const QByteArray &to, const QByteArray &mistakes)
    {
        QTest::newRow(name) << from << to << QString::fromUtf8(mistakes);
    }

private Q_SLOTS:
    void file_thatIsShipped_isTheSeededPark()
    {
        QVERIFY(cash::readParkingFile(SHIPPED_PARK, LAUNCH) == cash::seededCarPark(LAUNCH));
        QVERIFY(!(cash::readParkingFile(SHIPPED_PARK, LAUNCH) == cash::seededCarPark(LAUNCH + 1)));
    }

    void seededPark_cards_goOutWithAllDigits()
    {
        std::set<cash::CardState> states;
        for (const auto &[uid, card] : cash::seededCarPark(LAUNCH).cards) {
            QVERIFY(uid >= 0x10000000U);
            QCOMPARE(uid, card.uid);
            states.insert(card.state);
        }
        QCOMPARE(states.size(), std::size_t(7));
    }

    void uid_onTheWire_hasItsLowestByteFirst()
    {
        QCOMPARE(cash::wireUid(0x12345678), std::string("78563412"));
        QCOMPARE(cash::uidFromWire("78563412").value_or(0), 0x12345678U);
        QVERIFY(!cash::uidFromWire(""));
        QVERIFY(!cash::uidFromWire("7856341"));
        QVERIFY(!cash::uidFromWire("7856341G"));
    }

    void file_good_isRead()
    {
        const cash::CarPark park = cash::readParkingFile(write(GOOD), LAUNCH);
        QCOMPARE(park.parkingId, std::string("here"));
        QVERIFY(park.tariff == (cash::Tariff{5000, 900, 50000}));
        QCOMPARE(park.cards.size(), std::size_t(1));
        const cash::Card &card = park.cards.at(0x12ABCDEF);
        QCOMPARE(qint64(card.entered), qint64(LAUNCH - 9000));
        QCOMPARE(card.state, cash::CardState::Parked);
    }

    void file_withAMistake_saysWhereAndWhat_data()
    {
        QTest::addColumn<QByteArray>("from");
        QTest::addColumn<QByteArray>("to");
        QTest::addColumn<QString>("mistakes");
        row("no YAML", "tariff:", "tariff: [", "4:7: ");
        row("a list in place of keys", GOOD, "- a\n",
            "1:1: the file: write KEY: VALUE lines; the keys are parking, tariff, cards");
        row("empty", GOOD, "", "1:1: the file: write KEY: VALUE lines; the keys are parking, tariff, cards");
        row("missing key", "parking: here\n", "", "1:1: the file: \"parking\" is missing");
        row("unknown key", "  free:", "  fee: 1\n  free:",
            "4:3: there is no key \"fee\" here; the keys are per-hour, daily-maximum, free");
        row("key twice", "  free:", "  per-hour: 1\n  free:", "4:3: \"per-hour\" is there twice");
        row("empty identifier", "here", "\"\"", "1:10: write the car park's identifier");
        row("amount with a comma", "50\n", "50,00\n", "3:13: \"50,00\" is no amount; write one like 50.00");
        row("amount below zero", "50\n", "-1\n", "3:13: \"-1\" is no amount; write one like 50.00");
        row("amount as a list", "50\n", "[50]\n", "3:13: write a plain value");
        row("time without a unit", "15m", "15", "4:9: \"15\" is no time; write one like 15m, or 0m; at most 36500d");
        row("cards are no list", "  - uid: 12ABCDEF\n    entered: 2024-03-07T11:35:09\n", "  uid: 1\n",
            "7:3: cards: write a list, each card behind a dash");
        row("UID too short", "12ABCDEF", "12ABCDE",
            "7:10: \"12ABCDE\" is no UID; write eight hexadecimal digits, the highest first");
        row("UID twice", GOOD,
            "parking: x\ntariff: {per-hour: 1, free: 0m, daily-maximum: 1}\ncards:\n"
            "  - {uid: 10000000, entered: 1h before launch}\n  - {uid: 10000000, entered: 1h before launch}\n",
            "5:11: there is a card with the UID 10000000 above");
        row("no entry", "2024-03-07T11:35:09", "yesterday",
            "8:14: \"yesterday\" is no entry; write 2024-03-07T11:35:09, of the years 2000 to 2099, or 2h30m before "
            "launch");
        row("no time before the launch", "2024-03-07T11:35:09", "long before launch",
            "8:14: \"long before launch\" says no time; write one like 2h30m before launch; at most 36500d");
        for (const char *moment : {"0000-01-01T00:00:00", "0001-01-01T00:00:00", "1999-12-31T23:59:59",
                                   "2100-01-01T00:00:00", "99999999-01-01T00:00:00"})
            row(QByteArray("entry in ") + moment, "2024-03-07T11:35:09", moment,
                "8:14: \"" + QByteArray(moment) +
                    "\" is no entry; write 2024-03-07T11:35:09, of the years 2000 to 2099, or 2h30m before launch");
        row("entry too long before the launch", "2024-03-07T11:35:09", "99999999d before launch",
            "8:14: \"99999999d before launch\" says no time; write one like 2h30m before launch; at most 36500d");
        row("free time without end", "15m", "99999999d",
            "4:9: \"99999999d\" is no time; write one like 15m, or 0m; at most 36500d");
        row("delay without end", "    entered:", "    answer-after: 36501d\n    entered:",
            "8:19: \"36501d\" is no time; write one like 500ms or 5s; at most 36500d");
        row("second document", "    entered: 2024-03-07T11:35:09\n",
            "    entered: 2024-03-07T11:35:09\n---\nparking: there\n",
            "10:1: there is a second document; write one alone");
        row("second document that is empty", "    entered: 2024-03-07T11:35:09\n",
            "    entered: 2024-03-07T11:35:09\n---\n", "10:1: there is a second document; write one alone");
        row("unknown state", "    entered:", "    state: gone\n    entered:",
            "8:12: there is no state \"gone\"; there are parked, paid, blocked, maintenance, unknown, malformed, "
            "conflict");
        row("wrong delay", "    entered:", "    answer-after: soon\n    entered:",
            "8:19: \"soon\" is no time; write one like 500ms or 5s; at most 36500d");
        row("several at once", GOOD, "tariff:\n  per-hour: x\ncards:\n  - uid: y\n    color: red\n---\n- a\n",
            "1:1: the file: \"parking\" is missing\n"
            "2:3: tariff: \"daily-maximum\" is missing\n"
            "2:3: tariff: \"free\" is missing\n"
            "2:13: \"x\" is no amount; write one like 50.00\n"
            "4:5: the card: \"entered\" is missing\n"
            "4:10: \"y\" is no UID; write eight hexadecimal digits, the highest first\n"
            "5:5: there is no key \"color\" here; the keys are uid, entered, state, paid, answer-after, note\n"
            "7:1: there is a second document; write one alone");
    }

    void file_withAMistake_saysWhereAndWhat()
    {
        QFETCH(const QByteArray, from);
        QFETCH(const QByteArray, to);
        QFETCH(const QString, mistakes);
        const QByteArray text = QByteArray(GOOD).replace(from, to);
        QVERIFY(text != GOOD);
        const QString found = mistakesIn(text);
        // What the YAML reader itself says is its own business.
        if (mistakes.endsWith(QLatin1Char(' ')))
            QVERIFY2(found.startsWith(mistakes) && found.size() > mistakes.size(), qPrintable(found));
        else
            QCOMPARE(found, mistakes);
    }

    void file_thatIsNotThere_saysSo()
    {
        QVERIFY_EXCEPTION_THROWN((void)cash::readParkingFile("/nowhere/park.yaml", LAUNCH), cash::ParkingFileError);
    }
};

TEST_MAIN(ParkingFileTest)
#include "tst_parkingfile.moc"
