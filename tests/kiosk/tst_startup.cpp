// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "window/startup.h"

#include "kiosk/mood.h"
#include "ledger/ledger.h"
#include "plugin/pluginhost.h"
#include "plugin/pluginprobe.h"
#include "window/brokenscreen.h"
#include "window/startingscreen.h"
#include "window/startwindow.h"

#include "support/testcase.h"
#include "support/workdirectory.h"

#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QSqlDatabase>
#include <QTimer>

using kiosk::Startup;
using kiosk::StartWindow;

namespace {
QString ledgerPath()
{
    return WorkDirectory::path() + QStringLiteral("/kiosk.db");
}

/// All that can be read.
QString read(const QWidget &window)
{
    QString text;
    const auto labels = window.findChildren<QLabel *>();
    for (const QLabel *label : labels)
        text += label->isVisible() ? label->text() + QLatin1Char('\n') : QString();
    return text.remove(QChar(0x200B));
}

template <typename Screen>
bool isUp(const QWidget &window)
{
    return window.findChild<Screen *>()->isVisible();
}

kiosk::PluginProbe probe()
{
    return {QCoreApplication::applicationFilePath(), {QStringLiteral("--child"), QStringLiteral("probe")}};
}

bool isRefusal(const LogLine &line)
{
    return line.level == QtCriticalMsg && line.text.startsWith(QStringLiteral("no ledger, it is tried again: "));
}

class ShownStartWindow : public StartWindow
{
public:
    ShownStartWindow() : StartWindow({})
    {
        show();
        // Qt's offscreen platform has something to say about that.
        MessageLog::drop();
    }
};
} // namespace

/// What is on the screen before there is a terminal.
class StartupTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void ledger_thatCannotBeOpened_isShownAndTriedAgain()
    {
        QFile file(ledgerPath());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(QByteArray(8192, 'x'));
        file.close();
        ShownStartWindow window;
        QVERIFY(isUp<kiosk::StartingScreen>(window));
        Startup startup(window);
        // After the second try somebody takes the file away.
        QString shown;
        int tries = 0;
        QTimer look;
        connect(&look, &QTimer::timeout, &window, [&] {
            tries += static_cast<int>(MessageLog::takeIf(isRefusal).size());
            if (tries < 2 || !shown.isEmpty())
                return;
            shown = isUp<kiosk::BrokenScreen>(window) ? read(window) : QStringLiteral("another screen");
            file.remove();
        });
        look.start(0);
        const auto ledger = startup.openLedger(ledgerPath(), std::chrono::milliseconds(10));
        QVERIFY(ledger != nullptr);
        QVERIFY(shown.contains(QStringLiteral("Журнал платежей не открывается")));
        QVERIFY2(shown.contains(ledgerPath()) && shown.contains(QStringLiteral("not a database")), qPrintable(shown));
        QVERIFY(isUp<kiosk::StartingScreen>(window));
        Q_UNUSED(MessageLog::takeIf(isRefusal));
        // Nothing is left of the tries.
        QCOMPARE(QSqlDatabase::connectionNames().size(), 1);
    }

    void plugin_thatHangs_leavesTheWindowAlive()
    {
        const Mood set("hangs");
        ShownStartWindow window;
        Startup startup(window);
        int moments = 0;
        QTimer moment;
        connect(&moment, &QTimer::timeout, &window, [&] { ++moments; });
        moment.start(1);
        kiosk::PluginHost host(QStringLiteral(FAKE_PLUGIN_FILE));
        kiosk::PluginProbe impatient = probe();
        impatient.patience = std::chrono::milliseconds(500);
        QVERIFY(startup.load(host, impatient));
        MessageLog::drop();
        QVERIFY(host.brokenReason().contains(QStringLiteral("не загрузился")));
        QVERIFY(moments > 0);
        QVERIFY(isUp<kiosk::StartingScreen>(window));
    }

    void window_closed_endsWhatIsWaitedFor()
    {
        const Mood set("hangs");
        ShownStartWindow window;
        Startup startup(window);
        QTimer::singleShot(0, &window, &QWidget::close);
        kiosk::PluginHost host(QStringLiteral(FAKE_PLUGIN_FILE));
        QVERIFY(!startup.load(host, probe()));
        QVERIFY(host.brokenReason().contains(QStringLiteral("выключают")));
        MessageLog::drop();
        QVERIFY(window.isVisible());
        QVERIFY(startup.openLedger(ledgerPath()) == nullptr);
        QVERIFY(!QFile::exists(ledgerPath()));
        // To Qt the program is over; no loop would turn for the tests behind this one.
        QTimer::singleShot(0, qApp, &QCoreApplication::quit);
        QCoreApplication::exec();
    }
};

TEST_CHILD(probe)
{
    return kiosk::PluginProbe::runInChild(arguments.value(0));
}

WIDGET_TEST_MAIN(StartupTest)
#include "tst_startup.moc"
