// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "support/cashservice.h"
#include "support/testcase.h"
#include "support/workdirectory.h"

#include <QFile>
#include <QProcess>

namespace {
const QByteArray IDLE = "steps:\n  - expect: {screen: idle, within: 60000}\n";

QString scenario(const QByteArray &text)
{
    QFile file(WorkDirectory::path() + QStringLiteral("/s.yaml"));
    if (file.open(QIODevice::WriteOnly))
        file.write(text);
    return file.fileName();
}

struct Played
{
    int status;
    QString said;
};

/// An environment without a display. @param platform for QT_QPA_PLATFORM; empty: not set.
QProcessEnvironment withoutADisplay(const QString &platform)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("DISPLAY"));
    environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
    if (!platform.isEmpty())
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), platform);
    // The system's own words are looked for.
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    return environment;
}

/// Plays a scenario to its end.
Played play(const QString &path, const QStringList &arguments = {},
            const QProcessEnvironment &environment = withoutADisplay(QStringLiteral("offscreen")))
{
    QProcess kiosk;
    kiosk.setProcessEnvironment(environment);
    kiosk.setProcessChannelMode(QProcess::MergedChannels);
    kiosk.start(QStringLiteral(KIOSK_PROGRAM), QStringList{QStringLiteral("--plugin-file"), QStringLiteral(PLUGIN_FILE),
                                                           QStringLiteral("--play"), path} +
                                                   arguments);
    kiosk.waitForFinished(-1);
    const int status = kiosk.exitStatus() == QProcess::NormalExit ? kiosk.exitCode() : -1;
    return {status, QString::fromUtf8(kiosk.readAll())};
}
} // namespace

/// What the program takes from where it is started: arguments, environment and files.
class ProgramStartTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    /// What the scenario has and the command line has not stays the scenario's.
    void set_besideAScenariosSettings_wins()
    {
        const CashService service;
        const QString path = scenario("settings: {csHost: 127.0.0.1, csPort: 1, TermId: \"7\", ParkingId: \"12\"}\n"
                                      "steps:\n"
                                      "  - start\n"
                                      "  - card: {id: \"305419896\", cardId: \"0000123456\"}\n"
                                      "  - expect: {screen: details, within: 60000,\n"
                                      "             parameters: {TermNo: \"8\", ParkNumber: \"12\"}}\n");
        const Played played = play(path, {QStringLiteral("--set"), QStringLiteral("csPort=%1").arg(service.port()),
                                          QStringLiteral("--set"), QStringLiteral("TermId=8")});
        QVERIFY2(played.status == 0, qPrintable(played.said));
    }

    void screen_whereThereIsNoDisplay_isInMemoryUnlessToldOtherwise_data()
    {
        QTest::addColumn<QString>("platform");
        QTest::addColumn<QString>("library");
        QTest::newRow("nothing is told") << QString() << "libqoffscreen.so";
        QTest::newRow("told") << QStringLiteral("minimal") << "libqminimal.so";
    }

    void screen_whereThereIsNoDisplay_isInMemoryUnlessToldOtherwise()
    {
        QFETCH(QString, platform);
        QFETCH(QString, library);
        QProcessEnvironment environment = withoutADisplay(platform);
        // Qt tells which of its libraries it loads.
        environment.insert(QStringLiteral("QT_DEBUG_PLUGINS"), QStringLiteral("1"));
        const Played played = play(scenario(IDLE), {}, environment);
        QVERIFY2(played.status == 0, qPrintable(played.said));
        const QStringList lines = played.said.split(QLatin1Char('\n'));
        const QStringList loaded = lines.filter(QStringLiteral("loaded library")).filter(QStringLiteral("/platforms/"));
        QVERIFY2(!loaded.isEmpty(), qPrintable(played.said));
        QCOMPARE(loaded.filter(library), loaded);
    }

    void play_ofWhatIsNoScenario_isUnusableAndSaysWhy_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("reason");
        const QString folder = WorkDirectory::path();
        QTest::newRow("no file") << folder + QStringLiteral("/none.yaml") << "%1: No such file or directory";
        QTest::newRow("a folder") << folder << "%1: file to open is a directory";
        QTest::newRow("an empty file") << folder + QStringLiteral("/s.yaml") << "%1:1:1: the scenario: it is empty";
        QTest::newRow("what cannot be read") << "/proc/self/mem"
                                             << "%1: Input/output error";
    }

    void play_ofWhatIsNoScenario_isUnusableAndSaysWhy()
    {
        QFETCH(QString, path);
        QFETCH(QString, reason);
        Q_UNUSED(scenario({}));
        const Played played = play(path);
        QCOMPARE(played.status, 2);
        QVERIFY2(played.said.contains(reason.arg(path)), qPrintable(played.said));
    }
};

TEST_MAIN(ProgramStartTest)
#include "tst_programstart.moc"
