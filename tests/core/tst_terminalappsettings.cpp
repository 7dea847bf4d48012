// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "core/terminalappsettings.h"

#include "support/testcase.h"
#include "support/testfiles.h"

#include <QSettings>

#include <cstdio>
#include <limits>

static_assert(std::is_base_of_v<InitConfig, TerminalAppSettings>);

namespace {
const QString GROUP = QStringLiteral("PARKOMAT_PLUGIN");
const QString DEFAULT = QStringLiteral("default");

bool writeIni(const QByteArray &bytes)
{
    return TestFiles::write(TerminalAppSettings::fileName(), bytes);
}

QString plugins(const QString &key)
{
    return TerminalAppSettings().getPluginSettingsValue(GROUP, key, DEFAULT);
}
} // namespace

class TerminalAppSettingsTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void fileName_isTerminalIniInTheWorkDirectory()
    {
        QCOMPARE(TerminalAppSettings::fileName(), WorkDirectory::path() + QStringLiteral("/terminal.ini"));
        QCOMPARE(TerminalAppSettings().workDir(), WorkDirectory::path());
    }

    void settings_ofANewTerminal_areTheDefaults()
    {
        const TerminalAppSettings settings;
        QCOMPARE(settings.trelmId(), 0);
        QCOMPARE(settings.onlineCheckTimeout(), 60);
        QCOMPARE(settings.autoCloseMessagesAfter(), 10);
        QCOMPARE(settings.getPluginSettingsValue(GROUP, QStringLiteral("csHost"), DEFAULT), DEFAULT);
        QCOMPARE(settings.getPluginSettingsValue(GROUP, QStringLiteral("csHost"), QString()), QString());
        QVERIFY(!QFile::exists(TerminalAppSettings::fileName()));
    }

    void pluginValue_set_isRead_data()
    {
        QTest::addColumn<QString>("group");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value");
        const auto row = [](const char *group, const char *key, const char *value) {
            QTest::addRow("%s|%s|%s", group, key, value)
                << QString::fromUtf8(group) << QString::fromUtf8(key) << QString::fromUtf8(value);
        };
        row("PARKOMAT_PLUGIN", "csHost", "localhost");
        row("PARKOMAT_PLUGIN", "csPath", "http://host/a?b=c;d,e#f");
        row("PARKOMAT_PLUGIN", "csPath", "");
        row("PARKOMAT_PLUGIN", "csPath", " a ");
        row("PARKOMAT_PLUGIN", "TermId", "0042");
        row("PARKOMAT_PLUGIN", "PartnerId", "Парковка \"Север\"");
        row("a/b", "c/d", "v");
        row("", "k", "v");
        row("General", "k", "v");
        row("ГРУППА", "ключ", "значение");
    }

    void pluginValue_set_isRead()
    {
        QFETCH(QString, group);
        QFETCH(QString, key);
        QFETCH(QString, value);
        TerminalAppSettings settings;
        settings.setPluginSettingsValue(group, key, value);
        QCOMPARE(settings.getPluginSettingsValue(group, key, DEFAULT), value);
        QCOMPARE(TerminalAppSettings().getPluginSettingsValue(group, key, DEFAULT), value);
        const QString fullName = group.isEmpty() ? key : group + QLatin1Char('/') + key;
        QCOMPARE(QSettings(TerminalAppSettings::fileName(), QSettings::IniFormat).value(fullName, DEFAULT).toString(),
                 value);
    }

    void pluginValue_absent_isTheDefaultAndEmptyIsNot()
    {
        QVERIFY(writeIni("[PARKOMAT_PLUGIN]\nempty=\nother=1\n[OTHER]\nelsewhere=1\n"));
        QCOMPARE(plugins(QStringLiteral("empty")), QString());
        QCOMPARE(plugins(QStringLiteral("absent")), DEFAULT);
        QCOMPARE(plugins(QStringLiteral("elsewhere")), DEFAULT);
        QCOMPARE(plugins(QStringLiteral("Other")), DEFAULT);
    }

    void numbers_set_areRead_data()
    {
        QTest::addColumn<qint64>("id");
        QTest::addColumn<int>("seconds");
        QTest::newRow("ordinary") << qint64(4711) << 30;
        QTest::newRow("zero") << qint64(0) << 0;
        QTest::newRow("negative") << qint64(-1) << -1;
        QTest::newRow("highest") << std::numeric_limits<qint64>::max() << std::numeric_limits<int>::max();
        QTest::newRow("lowest") << std::numeric_limits<qint64>::min() << std::numeric_limits<int>::min();
    }

    void numbers_set_areRead()
    {
        QFETCH(qint64, id);
        QFETCH(int, seconds);
        TerminalAppSettings settings;
        settings.setTrelmId(id);
        settings.setOnlineCheckTimeout(seconds);
        settings.setAutoCloseMessagesAfter(seconds);
        QCOMPARE(TerminalAppSettings().trelmId(), id);
        QCOMPARE(TerminalAppSettings().onlineCheckTimeout(), seconds);
        QCOMPARE(TerminalAppSettings().autoCloseMessagesAfter(), seconds);
    }

    void numbers_set_areHeldApart()
    {
        TerminalAppSettings settings;
        settings.setTrelmId(1);
        settings.setOnlineCheckTimeout(2);
        settings.setAutoCloseMessagesAfter(3);
        QCOMPARE(settings.trelmId(), 1);
        QCOMPARE(settings.onlineCheckTimeout(), 2);
        QCOMPARE(settings.autoCloseMessagesAfter(), 3);
    }

    void number_writtenByHand_isRead_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<int>("number");
        QTest::newRow("plain") << QByteArray("30") << 30;
        QTest::newRow("blanks") << QByteArray("  30  ") << 30;
        QTest::newRow("quoted") << QByteArray("\"30\"") << 30;
        QTest::newRow("sign") << QByteArray("+30") << 30;
        QTest::newRow("zeros before") << QByteArray("0030") << 30;
        QTest::newRow("negative") << QByteArray("-30") << -30;
    }

    void number_writtenByHand_isRead()
    {
        QFETCH(QByteArray, text);
        QFETCH(int, number);
        QVERIFY(writeIni("[TERMINAL]\ntrelmId=" + text + "\nonlineCheckTimeout=" + text +
                         "\nautoCloseMessagesAfter=" + text + "\n"));
        const TerminalAppSettings settings;
        QCOMPARE(settings.trelmId(), number);
        QCOMPARE(settings.onlineCheckTimeout(), number);
        QCOMPARE(settings.autoCloseMessagesAfter(), number);
    }

    void badNumber_gives_theDefaultAndAWarning_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("text");
        const auto rows = [](const char *key, const QStringList &tooLarge) {
            QStringList texts = tooLarge;
            for (const char *text : {"", "abc", "30s", "30 s", "3.5", "3,5", "1e3", "0x1F", "1 000", "--1", "тридцать",
                                     "٣٠", "99999999999999999999", "-99999999999999999999"})
                texts.append(QString::fromUtf8(text));
            for (const QString &text : qAsConst(texts))
                QTest::addRow("%s=%s", key, qUtf8Printable(text)) << QString::fromLatin1(key) << text;
        };
        const QStringList beyondInt = {QStringLiteral("2147483648"), QStringLiteral("-2147483649"),
                                       QStringLiteral("4294967356"), QStringLiteral("9223372036854775807")};
        rows("trelmId", {QStringLiteral("9223372036854775808"), QStringLiteral("-9223372036854775809")});
        rows("onlineCheckTimeout", beyondInt);
        rows("autoCloseMessagesAfter", beyondInt);
    }

    void badNumber_gives_theDefaultAndAWarning()
    {
        QFETCH(QString, key);
        QFETCH(QString, text);
        QVERIFY(writeIni("[TERMINAL]\n" + key.toUtf8() + '=' + text.toUtf8() + '\n'));
        const TerminalAppSettings settings;
        const qint64 id = settings.trelmId();
        const int onlineCheck = settings.onlineCheckTimeout();
        const int autoClose = settings.autoCloseMessagesAfter();
        const QList<LogLine> lines = MessageLog::take();
        QCOMPARE(id, 0);
        QCOMPARE(onlineCheck, 60);
        QCOMPARE(autoClose, 10);
        QCOMPARE(lines.size(), 1);
        QCOMPARE(lines.at(0).level, QtWarningMsg);
        QCOMPARE(lines.at(0).category, QStringLiteral("terminal.core"));
        const QString used = key == QLatin1String("trelmId")              ? QStringLiteral("0")
                             : key == QLatin1String("onlineCheckTimeout") ? QStringLiteral("60")
                                                                          : QStringLiteral("10");
        for (const QString &part :
             {TerminalAppSettings::fileName(), QStringLiteral("[TERMINAL]"), key, text, used, QStringLiteral("digits")})
            QVERIFY2(lines.at(0).text.contains(part), qPrintable(lines.at(0).text));
    }

    void change_byAnotherProcess_isSeenByTheSameObject()
    {
        const TerminalAppSettings settings;
        QCOMPARE(settings.onlineCheckTimeout(), 60);
        for (int i = 1; i < 5; ++i) {
            const auto child = ChildProcess::start("setsTheTimeout", {QString::number(i)});
            QCOMPARE(ChildProcess::finish(*child), 0);
            QCOMPARE(settings.onlineCheckTimeout(), i);
        }
    }

    void file_thatCannotBeWritten_leavesALineAndIsTold()
    {
        QVERIFY(!TerminalAppSettings::takeWriteFailure());
        QVERIFY(QFile::remove(TerminalAppSettings::fileName()) || !QFile::exists(TerminalAppSettings::fileName()));
        const QByteArray before = qgetenv("TERMINAL_WORK_DIR");
        qputenv("TERMINAL_WORK_DIR", "/proc/self");
        TerminalAppSettings().setPluginSettingsValue(GROUP, QStringLiteral("k"), QStringLiteral("v"));
        const QList<LogLine> lines = MessageLog::take();
        QVERIFY(TerminalAppSettings::takeWriteFailure());
        QVERIFY(!TerminalAppSettings::takeWriteFailure());
        TerminalAppSettings().setTrelmId(1);
        MessageLog::drop();
        qputenv("TERMINAL_WORK_DIR", before);
        QCOMPARE(lines.size(), 1);
        QCOMPARE(lines.at(0).level, QtCriticalMsg);
        QVERIFY(lines.at(0).text.contains(QStringLiteral("/proc/self/terminal.ini")));

        // Until it is asked for, whatever is written meanwhile.
        TerminalAppSettings().setTrelmId(2);
        QVERIFY(TerminalAppSettings::takeWriteFailure());
    }

    void setters_keepWhatAnEngineerWrote()
    {
        QVERIFY(writeIni("; written by hand\n[TERMINAL]\ntrelmId = 1\n# end\n"));
        TerminalAppSettings().setTrelmId(2);
        QFile file(TerminalAppSettings::fileName());
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("; written by hand\n[TERMINAL]\ntrelmId = 2\n# end\n"));
    }
};

TEST_CHILD(setsTheTimeout)
{
    TerminalAppSettings().setOnlineCheckTimeout(arguments.at(0).toInt());
    return 0;
}

TEST_MAIN(TerminalAppSettingsTest)
#include "tst_terminalappsettings.moc"
