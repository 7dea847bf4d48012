// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "plugin/pluginhost.h"

#include "plugin/pluginfile.h"
#include "plugin/pluginprobe.h"
#include "plugininterface/ipaybyprovider.h"

#include "kiosk/mood.h"
#include "support/testcase.h"
#include "support/waiting.h"
#include "support/workdirectory.h"

#include <QApplication>
#include <QFile>
#include <QSignalSpy>

using kiosk::PluginHost;
using kiosk::PluginProbe;
using kiosk::PluginFile::describe;
using kiosk::PluginFile::find;

namespace {
const QString FAKE = QStringLiteral(FAKE_PLUGIN_FILE);
const QString OTHER = QStringLiteral(OTHER_PLUGIN_FILE);
const QString HOLLOW = QStringLiteral(HOLLOW_PLUGIN_FILE);

PluginProbe probe()
{
    return {QCoreApplication::applicationFilePath(), {QStringLiteral("--child"), QStringLiteral("probe")}};
}

QString textFile(const QString &name)
{
    QFile file(WorkDirectory::path() + QLatin1Char('/') + name);
    if (file.open(QIODevice::WriteOnly))
        file.write("not a library");
    return file.fileName();
}

QStringList takeCalls(QObject *root)
{
    QStringList calls;
    QMetaObject::invokeMethod(root, "takeCalls", Q_RETURN_ARG(QStringList, calls));
    return calls;
}
} // namespace

class PluginHostTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void load_ofAPlugin_makesItAvailable()
    {
        PluginHost host(FAKE);
        host.load(probe());
        QCOMPARE(host.brokenReason(), QString());
        QVERIFY(host.plugin() != nullptr);
        QCOMPARE(host.identity().path, FAKE);
        QCOMPARE(host.identity().interfaceId, QStringLiteral(PAY_BY_PROVIDER_IID));
        QCOMPARE(host.identity().qtVersion.section(QLatin1Char('.'), 0, 1), QStringLiteral("5.15"));
        QCOMPARE(host.identity().description, QStringLiteral("Плагин для испытаний"));
        QCOMPARE(host.identity().version, QStringLiteral("1.2.3"));
        QCOMPARE(host.identity().build, QStringLiteral("2024-03-07T14:05:09"));
        QCOMPARE(host.identity().id, 7);
        QCOMPARE(host.identity().stringId, QStringLiteral("fakePlugin"));
    }

    void load_ofWhatCannotBeUsed_saysWhy_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QByteArray>("mood");
        QTest::addColumn<QString>("reason");
        QTest::newRow("no file") << "/nonexistent/libplugin.so" << QByteArray() << "Нет такого файла";
        QTest::newRow("no path") << QString() << QByteArray() << "Нет такого файла";
        QTest::newRow("a folder") << QStringLiteral("/") << QByteArray() << "В этой папке нет плагина";
        QTest::newRow("no library") << textFile(QStringLiteral("a.so")) << QByteArray() << "не является плагином Qt";
        QTest::newRow("another interface") << OTHER << QByteArray() << "другого интерфейса";
        QTest::newRow("an object without the interface") << HOLLOW << QByteArray() << "не отвечает за интерфейс";
        QTest::newRow("dies") << FAKE << QByteArray("dies") << "завершил программу при загрузке";
        QTest::newRow("ends the program") << FAKE << QByteArray("ends") << "(код 3)";
        QTest::newRow("hangs") << FAKE << QByteArray("hangs") << "не загрузился за 500 мс";
        QTest::newRow("another payee") << FAKE << QByteArray("another payee") << "получателя 18156";
    }

    void load_ofWhatCannotBeUsed_saysWhy()
    {
        QFETCH(QString, path);
        QFETCH(QByteArray, mood);
        QFETCH(QString, reason);
        if (path.endsWith(QStringLiteral("/a.so")))
            Q_UNUSED(textFile(QStringLiteral("a.so")));
        const Mood set(mood);
        PluginProbe impatient = probe();
        if (mood == "hangs")
            impatient.patience = std::chrono::milliseconds(500);
        PluginHost host(path);
        host.load(impatient);
        QVERIFY2(host.brokenReason().contains(reason), qPrintable(host.brokenReason()));
        QVERIFY(host.plugin() == nullptr);
        QCOMPARE(host.identity().path, path);
        const QList<LogLine> log = MessageLog::take();
        QCOMPARE(log.last().level, QtCriticalMsg);
        QVERIFY(log.last().text.contains(host.brokenReason()));
    }

    void load_ofAPluginThatDies_namesTheSignal()
    {
        const Mood set("dies");
        PluginHost host(FAKE);
        host.load(probe());
        MessageLog::drop();
        QVERIFY2(host.brokenReason().contains(QStringLiteral("Aborted")), qPrintable(host.brokenReason()));
    }

    void load_withoutAProbeProgram_saysSo()
    {
        PluginHost host(FAKE);
        host.load(PluginProbe{QStringLiteral("/nonexistent/probe"), {}});
        MessageLog::drop();
        QVERIFY(host.brokenReason().contains(QStringLiteral("нечем проверить")));
    }

    void describe_ofAnotherPlugin_tellsItsInterface()
    {
        QCOMPARE(describe(OTHER).interfaceId, QStringLiteral("org.example.other"));
        QCOMPARE(describe(textFile(QStringLiteral("a.so"))).interfaceId, QString());
    }

    void find_inAFolder_takesTheFirstOfTheInterface()
    {
        QCOMPARE(find(WorkDirectory::path()), WorkDirectory::path());
        Q_UNUSED(textFile(QStringLiteral("a.so")));
        const auto link = [](const QString &target, const char *name) {
            return QFile::link(target, WorkDirectory::path() + QLatin1Char('/') + QLatin1String(name));
        };
        QVERIFY(link(OTHER, "b.so"));
        QCOMPARE(find(WorkDirectory::path()), WorkDirectory::path());
        QVERIFY(link(FAKE, "d.so"));
        QVERIFY(link(HOLLOW, "c.so"));
        QCOMPARE(find(WorkDirectory::path()), WorkDirectory::path() + QStringLiteral("/c.so"));
    }

    void renew_ofTheRootObject_waitsUntilItIsGone()
    {
        PluginHost host(FAKE);
        host.load();
        const QPointer<QObject> before = host.root();
        Q_UNUSED(takeCalls(host.root()));
        QSignalSpy renewed(&host, &PluginHost::renewed);
        host.renew();
        QVERIFY(host.isRenewing());
        QVERIFY(host.root() == nullptr);
        QVERIFY(host.plugin() == nullptr);
        QVERIFY(before);
        WAIT_FOR(renewed.count(), 1);
        QVERIFY(!before);
        QVERIFY(!host.isRenewing());
        QVERIFY(host.plugin() != nullptr);
        QCOMPARE(takeCalls(host.root()), QStringList{QStringLiteral("~FakePlugin")});
    }
};

TEST_CHILD(probe)
{
    return PluginProbe::runInChild(arguments.value(0));
}

WIDGET_TEST_MAIN(PluginHostTest)
#include "tst_pluginhost.moc"
