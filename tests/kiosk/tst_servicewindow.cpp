// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "kiosk/fulldisk.h"
#include "kiosk/shownwindow.h"
#include "support/testcase.h"
#include "window/idlescreen.h"
#include "window/servicescreen.h"

#include <QApplication>
#include <QMouseEvent>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>

using kiosk::Terminal;
using Screen = Terminal::Screen;

/// What a service engineer sees and touches.
class ServiceWindowTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void service_menu_showsSavesAndCloses()
    {
        TerminalBench bench;
        ShownWindow shown(bench.terminal());
        bench->openService();
        WAIT_FOR(bench->screen(), Screen::Service);
        QVERIFY(bench->settingsPage()->isVisible());
        QVERIFY(shown.window().isAncestorOf(bench->settingsPage()));
        QCOMPARE(shown.text("serviceStatus"), QString());
        Q_UNUSED(bench.takeCalls());
        shown.touch("saveButton");
        QCOMPARE(bench.takeCalls(), QStringList{QStringLiteral("saveSettings")});
        QCOMPARE(shown.text("serviceStatus"), QStringLiteral("Настройки сохранены."));
        shown.touch("pluginTab");
        QVERIFY(shown.allText().contains(QStringLiteral("Плагин для испытаний")));
        shown.touch("closeButton");
        WAIT_FOR(bench->screen(), Screen::Idle);
        QVERIFY(shown.isUp<kiosk::IdleScreen>());
    }

    void service_payments_areListedWithTheirOutcome()
    {
        TerminalBench bench;
        ShownWindow shown(bench.terminal());
        bench.plan("confirmation", QStringLiteral("left up"));
        shown.pay(bench);
        shown.touch("receiptButton");
        bench->openService();
        WAIT_FOR(bench->screen(), Screen::Service);
        shown.touch("paymentsTab");
        const QString text = shown.allText();
        QVERIFY2(text.contains(QStringLiteral("Подтверждение не получено:")), qPrintable(text));
        QVERIFY2(text.contains(QStringLiteral("карта 000123456")), qPrintable(text));
        QVERIFY(!shown.isUp("ledgerFault"));
    }

    void payments_moreThanFit_areDraggedUnderTheFinger()
    {
        TerminalBench bench;
        ShownWindow shown(bench.terminal());
        for (int i = 0; i < 8; ++i) {
            WAIT_FOR(bench.host().isRenewing(), false);
            bench.showDetails();
            bench.takeCash("150");
            bench->pay();
            WAIT_FOR(bench->screen(), Screen::Receipt);
            bench->closeReceipt();
        }
        bench->openService();
        WAIT_FOR(bench->screen(), Screen::Service);
        shown.touch("paymentsTab");
        auto *const list = shown.part<QScrollArea>("ledgerList");
        WAIT_FOR(list->verticalScrollBar()->maximum() > 0, true);
        auto *const text = list->widget()->findChild<QLabel *>();
        const QPoint finger = text->rect().center();
        QTest::mousePress(text, Qt::LeftButton, Qt::NoModifier, finger);
        QMouseEvent drag(QEvent::MouseMove, finger - QPoint(0, 100), text->mapToGlobal(finger - QPoint(0, 100)),
                         Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(text, &drag);
        QCOMPARE(list->verticalScrollBar()->value(), 100);
        QTest::mouseRelease(text, Qt::LeftButton, Qt::NoModifier, finger);
    }

    void save_whereThereIsNothingToSave_isNotOffered()
    {
        TerminalBench bench;
        ShownWindow shown(bench.terminal());
        bench->openService();
        WAIT_FOR(bench->screen(), Screen::Service);
        QVERIFY(shown.isUp("saveButton"));
        for (const char *tab : {"paymentsTab", "pluginTab"}) {
            shown.touch(tab);
            QVERIFY(!shown.isUp("saveButton"));
            QVERIFY(shown.isUp("closeButton"));
        }
        shown.touch("settingsTab");
        QVERIFY(shown.isUp("saveButton"));
    }

    void save_withoutThePluginsPage_saysThatNothingIsSaved()
    {
        TerminalBench bench;
        ShownWindow shown(bench.terminal());
        bench->openService();
        WAIT_FOR(bench->screen(), Screen::Service);
        Q_UNUSED(bench.takeCalls());
        delete bench->settingsPage();
        shown.touch("saveButton");
        QCOMPARE(bench.takeCalls(), QStringList{QStringLiteral("~FakeSettings")});
        QVERIFY2(shown.text("serviceStatus").startsWith(QStringLiteral("Не сохранено:")),
                 qPrintable(shown.text("serviceStatus")));
        QVERIFY(!shown.isUp("saveButton"));
        // As it says itself.
        shown.touch("closeButton");
        WAIT_FOR(bench->screen(), Screen::Idle);
        bench->openService();
        QCOMPARE(shown.text("serviceStatus"), QString());
        shown.touch("saveButton");
        QCOMPARE(shown.text("serviceStatus"), QStringLiteral("Настройки сохранены."));
    }

    void save_thatCannotBeWritten_saysSoAndIsOfferedAgain()
    {
        TerminalBench bench;
        ShownWindow shown(bench.terminal());
        bench->openService();
        WAIT_FOR(bench->screen(), Screen::Service);
        {
            const FullDisk full;
            shown.touch("saveButton");
        }
        QCOMPARE(TerminalBench::takeLines(QtCriticalMsg).size(), 1);
        QVERIFY2(shown.text("serviceStatus").startsWith(QStringLiteral("Не сохранено: файл настроек")),
                 qPrintable(shown.text("serviceStatus")));
        shown.touch("saveButton");
        QCOMPARE(shown.text("serviceStatus"), QStringLiteral("Настройки сохранены."));
    }

    void service_ofAPluginWithoutSettings_offersNothingToSave()
    {
        TerminalBench bench;
        bench.plan("settings", QStringLiteral("none"));
        ShownWindow shown(bench.terminal());
        bench->openService();
        WAIT_FOR(bench->screen(), Screen::Service);
        QVERIFY(shown.allText().contains(QStringLiteral("У плагина нет настроек.")));
        QVERIFY(!shown.isUp("saveButton"));
    }

    void service_leftAlone_closesAndSavesNothing()
    {
        kiosk::TerminalOptions options;
        options.serviceSeconds = 2;
        TerminalBench bench(options);
        ShownWindow shown(bench.terminal());
        bench->openService();
        WAIT_FOR(bench->screen(), Screen::Service);
        const QPointer<QWidget> page = bench->settingsPage();
        // Touches keep it open.
        for (int i = 0; i < 4; ++i) {
            TestClock::skip(1000);
            shown.touch("paymentsTab");
            QCoreApplication::processEvents();
        }
        QCOMPARE(bench->screen(), Screen::Service);
        Q_UNUSED(bench.takeCalls());
        letPass(2500);
        QCOMPARE(bench->screen(), Screen::Idle);
        WAIT_FOR(page.isNull(), true);
        QCOMPARE(bench.takeCalls(), QStringList{QStringLiteral("~FakeSettings")});
        QVERIFY(shown.isUp<kiosk::IdleScreen>());
    }

    void service_whileTheLedgerIsNotWritten_saysSo()
    {
        TerminalBench bench;
        ShownWindow shown(bench.terminal());
        shown.pay(bench);
        {
            const FullDisk disk;
            shown.touch("receiptButton");
            bench->openService();
            WAIT_FOR(bench->screen(), Screen::Service);
            QVERIFY(shown.isUp("ledgerFault"));
            QVERIFY(shown.text("ledgerFault").contains(bench->ledgerFault()));
        }
        shown.touch("closeButton");
        bench->openService();
        WAIT_FOR(bench->screen(), Screen::Service);
        QVERIFY(!shown.isUp("ledgerFault"));
        MessageLog::drop();
    }
};

WIDGET_TEST_MAIN(ServiceWindowTest)

#include "tst_servicewindow.moc"
