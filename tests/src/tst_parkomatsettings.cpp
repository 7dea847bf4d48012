// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "core/terminalappsettings.h"
#include "parkomatsettings.h"
#include "support/testcase.h"

#include <QFile>
#include <QSettings>

/// The plugin's view of its configuration.
class ParkomatSettingsTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void constants_always_areTheContracts()
    {
        QCOMPARE(ParkomatSettings::PARKOMAT_SECTION, QStringLiteral("PARKOMAT_PLUGIN"));
        QCOMPARE(ParkomatSettings::RECORD_VERSION, QStringLiteral("2"));
        QCOMPARE(ParkomatSettings::PARTNER_ID, QStringLiteral("PartnerId"));
        QCOMPARE(ParkomatSettings::PARKING_ID, QStringLiteral("ParkingId"));
        QCOMPARE(ParkomatSettings::PARKOMAT_ID, QStringLiteral("TermId"));
        QCOMPARE(ParkomatSettings::CASH_SERVICE_HOST, QStringLiteral("csHost"));
        QCOMPARE(ParkomatSettings::CASH_SERVICE_PORT, QStringLiteral("csPort"));
        QCOMPARE(ParkomatSettings::CASH_SERVICE_PATH, QStringLiteral("csPath"));
        QCOMPARE(ParkomatSettings::PARKING_CHECK, QStringLiteral("ParkingCheck"));
        QCOMPARE(ParkomatSettings::PARK_INFO_PAY, QStringLiteral("ParkInfoPay"));
    }

    void getters_emptyStore_giveDefaults()
    {
        TerminalAppSettings().setTrelmId(9007199254740993);
        const ParkomatSettings settings;
        QCOMPARE(settings.cashServiceHost(), QStringLiteral("localhost"));
        QCOMPARE(settings.cashServicePort(), static_cast<unsigned short>(13006));
        QCOMPARE(settings.cashServicePath(), QStringLiteral("api"));
        QCOMPARE(settings.partnerId(), QStringLiteral("dravik"));
        QCOMPARE(settings.parkingId(), QString());
        QCOMPARE(settings.termId(), QStringLiteral("9007199254740993"));
        QCOMPARE(settings.recordVersion(), QStringLiteral("2"));
    }

    void getters_emptyValueStored_isNotTheDefault()
    {
        ParkomatSettings settings;
        settings.setCashServiceHost(QString());
        settings.setCashServicePath(QString());
        settings.setPartnerId(QString());
        settings.setTermId(QString());
        QCOMPARE(settings.cashServiceHost(), QString());
        QCOMPARE(settings.cashServicePath(), QString());
        QCOMPARE(settings.partnerId(), QString());
        QCOMPARE(settings.termId(), QString());
    }

    void setters_anyText_storeItUnderTheirKey_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("plain") << "example";
        QTest::newRow("blanks around") << "  a b  ";
        QTest::newRow("markup and separators") << "a&b<c>\"d\";e=f,g\\h/i";
        QTest::newRow("Cyrillic") << "паркинг";
        QTest::newRow("line break") << "a\nb";
        QTest::newRow("type marker") << "@Variant(x)";
    }

    void setters_anyText_storeItUnderTheirKey()
    {
        QFETCH(QString, text);
        ParkomatSettings settings;
        settings.setCashServiceHost(text + QLatin1Char('1'));
        settings.setCashServicePath(text + QLatin1Char('2'));
        settings.setPartnerId(text + QLatin1Char('3'));
        settings.setParkingId(text + QLatin1Char('4'));
        settings.setTermId(text + QLatin1Char('5'));

        const ParkomatSettings other;
        QCOMPARE(other.cashServiceHost(), text + QLatin1Char('1'));
        QCOMPARE(other.cashServicePath(), text + QLatin1Char('2'));
        QCOMPARE(other.partnerId(), text + QLatin1Char('3'));
        QCOMPARE(other.parkingId(), text + QLatin1Char('4'));
        QCOMPARE(other.termId(), text + QLatin1Char('5'));

        QSettings file(TerminalAppSettings::fileName(), QSettings::IniFormat);
        file.beginGroup(QStringLiteral("PARKOMAT_PLUGIN"));
        QCOMPARE(file.value(QStringLiteral("csHost")).toString(), text + QLatin1Char('1'));
        QCOMPARE(file.value(QStringLiteral("csPath")).toString(), text + QLatin1Char('2'));
        QCOMPARE(file.value(QStringLiteral("PartnerId")).toString(), text + QLatin1Char('3'));
        QCOMPARE(file.value(QStringLiteral("ParkingId")).toString(), text + QLatin1Char('4'));
        QCOMPARE(file.value(QStringLiteral("TermId")).toString(), text + QLatin1Char('5'));
        QCOMPARE(file.childKeys().size(), 5);
    }

    void port_set_storesDecimalText()
    {
        ParkomatSettings().setCashServicePort(8080);
        QCOMPARE(TerminalAppSettings().getPluginSettingsValue(QStringLiteral("PARKOMAT_PLUGIN"),
                                                              QStringLiteral("csPort"), QString()),
                 QStringLiteral("8080"));
        QCOMPARE(ParkomatSettings().cashServicePort(), static_cast<unsigned short>(8080));
    }

    void port_storedText_isCutTo16Bits_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<int>("port");
        QTest::newRow("largest") << "65535" << 65535;
        QTest::newRow("one above the range") << "65536" << 0;
        QTest::newRow("far above the range") << "70000" << 4464;
        QTest::newRow("largest of 32 bits") << "4294967295" << 65535;
        QTest::newRow("above 32 bits") << "4294967296" << 0;
        QTest::newRow("negative") << "-1" << 0;
        QTest::newRow("word") << "http" << 0;
        QTest::newRow("hexadecimal") << "0x50" << 0;
        QTest::newRow("fraction") << "80.5" << 0;
        QTest::newRow("empty") << "" << 0;
    }

    void port_storedText_isCutTo16Bits()
    {
        QFETCH(QString, stored);
        QFETCH(int, port);
        TerminalAppSettings().setPluginSettingsValue(QStringLiteral("PARKOMAT_PLUGIN"), QStringLiteral("csPort"),
                                                     stored);
        QCOMPARE(static_cast<int>(ParkomatSettings().cashServicePort()), port);
    }

    void getter_afterAnotherProcessWrote_seesIt()
    {
        const ParkomatSettings settings;
        QCOMPARE(settings.partnerId(), QStringLiteral("dravik"));
        const auto child = ChildProcess::start("setsPartner", {QStringLiteral("kivard")});
        QCOMPARE(ChildProcess::finish(*child), 0);
        QCOMPARE(settings.partnerId(), QStringLiteral("kivard"));
    }

    void termId_storedNumber_hidesTheTerminalsOwn()
    {
        TerminalAppSettings().setTrelmId(7);
        QCOMPARE(ParkomatSettings().termId(), QStringLiteral("7"));
        ParkomatSettings().setTermId(QStringLiteral(" 0042 "));
        QCOMPARE(ParkomatSettings().termId(), QStringLiteral(" 0042 "));
    }

    void termId_storedNumber_stillAsksForTheTerminalsOwn()
    {
        TerminalAppSettings().setPluginSettingsValue(QStringLiteral("TERMINAL"), QStringLiteral("trelmId"),
                                                     QStringLiteral("none"));
        ParkomatSettings().setTermId(QStringLiteral("0042"));
        QCOMPARE(ParkomatSettings().termId(), QStringLiteral("0042"));
        // The terminal's complaint about its own number shows that it was asked.
        QCOMPARE(MessageLog::take().size(), 1);
    }
};

TEST_CHILD(setsPartner)
{
    ParkomatSettings().setPartnerId(arguments.at(0));
    return 0;
}

TEST_MAIN(ParkomatSettingsTest)
#include "tst_parkomatsettings.moc"
