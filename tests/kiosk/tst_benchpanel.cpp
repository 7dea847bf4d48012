// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "window/bench/benchpanel.h"

#include "kiosk/looks/goldenimage.h"
#include "kiosk/looks/lookchecks.h"
#include "kiosk/looks/rendering.h"
#include "kiosk/terminalbench.h"
#include "scenario/servicefaults.h"
#include "support/cashservice.h"
#include "support/testcase.h"
#include "window/bench/benchsteps.h"
#include "window/look.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QSignalSpy>
#include <QTcpServer>

#include <algorithm>

using kiosk::BenchPanel;
using kiosk::Outcome;
using Screen = kiosk::Terminal::Screen;

namespace {
/// A terminal with the fake plugin, a cash service to break, and the panel beside them.
class Desk
{
public:
    Desk()
        : m_service({QStringLiteral("--clock"), QStringLiteral("2024-03-07T14:05:09")}), m_faults(admin()),
          m_stage(std::make_unique<BenchPanel>(kiosk::Stage{m_bench.terminal(), m_bench.window(), &m_faults, QString()},
                                               admin()),
                  QSize(800, 768))
    {}

    [[nodiscard]] TerminalBench &bench() { return m_bench; }
    [[nodiscard]] CashService &service() { return m_service; }
    [[nodiscard]] QWidget &panel() { return m_stage.widget(); }

    /// @return null unless there is a button with that caption, or that first word.
    [[nodiscard]] QPushButton *button(const QString &caption)
    {
        const auto buttons = panel().findChildren<QPushButton *>();
        for (QPushButton *button : buttons) {
            const QString &text = button->text();
            if (button->isVisible() && (text == caption || text.section(QLatin1Char(' '), 0, 0) == caption))
                return button;
        }
        return nullptr;
    }
    void waitForCards() { WAIT_FOR(button(QStringLiteral("12345678")) != nullptr, true); }
    void touch(const QString &caption)
    {
        QPushButton *found = button(caption);
        QVERIFY2(found != nullptr, qPrintable(caption));
        QTest::mouseClick(found, Qt::LeftButton);
    }
    /// @param text a step, or a command.
    void giveStep(const QString &text)
    {
        type("step", text);
        touch(QStringLiteral("Сделать"));
    }
    void type(const char *line, const QString &text)
    {
        panel().findChild<QLineEdit *>(QLatin1String(line))->setText(text);
    }
    [[nodiscard]] QString outcome() { return panel().findChild<QLabel *>(QStringLiteral("benchOutcome"))->text(); }

private:
    [[nodiscard]] QUrl admin() const { return QUrl(QStringLiteral("http://127.0.0.1:%1").arg(m_service.port())); }

    CashService m_service;
    TerminalBench m_bench;
    kiosk::ServiceFaults m_faults;
    Rendering::Stage m_stage;
};

/// A card's button has two lines. Null without cards.
QPushButton *cardButton(const QWidget &panel)
{
    const auto buttons = panel.findChildren<QPushButton *>();
    const auto found = std::find_if(buttons.cbegin(), buttons.cend(), [](const QPushButton *button) {
        return button->text().contains(QLatin1Char('\n'));
    });
    return found == buttons.cend() ? nullptr : *found;
}
} // namespace

class BenchPanelTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void cards_ofTheCarPark_areThoseOfTheService()
    {
        Desk desk;
        desk.waitForCards();
        QCOMPARE(desk.button(QStringLiteral("12345678"))->text(),
                 QStringLiteral("12345678 · 150.00\u00A0руб.\nthe demo's card: owes 150.00"));
        const QStringList others = {QStringLiteral("10000000"), QStringLiteral("10000007"), QStringLiteral("10000009")};
        for (const QString &uid : others)
            QVERIFY2(desk.button(uid) != nullptr, qPrintable(uid));
    }

    // The one that a newcomer takes.
    void cards_first_isTheOneOfTheDemo()
    {
        Desk desk;
        desk.waitForCards();
        int demo = desk.button(QStringLiteral("12345678"))->y();
        const QStringList others = {QStringLiteral("10000000"), QStringLiteral("10000006"), QStringLiteral("10000009")};
        for (const QString &uid : others)
            QVERIFY2(desk.button(uid)->y() > demo, qPrintable(uid));
    }

    void cards_withoutAService_sayWhy()
    {
        TerminalBench bench;
        BenchPanel panel({bench.terminal(), bench.window()}, QUrl(QStringLiteral("http://127.0.0.1:1")));
        const auto *outcome = panel.findChild<QLabel *>(QStringLiteral("benchOutcome"));
        WAIT_FOR(outcome->text().isEmpty(), false);
        QVERIFY2(outcome->text().startsWith(QStringLiteral("Карты: ")), qPrintable(outcome->text()));
        QVERIFY2(outcome->text().contains(QLatin1String("refused")), qPrintable(outcome->text()));
    }

    void card_touched_isReadByTheTerminal()
    {
        Desk desk;
        desk.waitForCards();
        desk.touch(QStringLiteral("Начать"));
        QCOMPARE(desk.bench()->screen(), Screen::Form);
        Q_UNUSED(desk.bench().takeCalls());
        desk.touch(QStringLiteral("12345678"));
        QCOMPARE(desk.bench().takeCalls(), QStringList{QStringLiteral("card 305419896")});
        QCOMPARE(desk.outcome(), QStringLiteral("12345678 · 150.00\u00A0руб.: сделано"));
    }

    void note_touched_isPaidIn_data()
    {
        QTest::addColumn<QString>("caption");
        for (const kiosk::Step &note : kiosk::BenchSteps::notes())
            QTest::newRow(qPrintable(note.caption)) << note.caption;
    }

    void note_touched_isPaidIn()
    {
        QFETCH(const QString, caption);
        Desk desk;
        desk.bench().showDetails();
        desk.touch(caption);
        QCOMPARE(desk.bench()->purchase().cash(), FixNumber(100, caption));
    }

    void note_thatTheTerminalRefuses_saysWhy()
    {
        Desk desk;
        desk.touch(QStringLiteral("100"));
        QVERIFY2(desk.outcome().startsWith(QLatin1String("100: ")), qPrintable(desk.outcome()));
        QVERIFY(!desk.outcome().endsWith(QStringLiteral("сделано")));
        MessageLog::drop();
    }

    void fault_ofEachButton_isOneThatTheServiceTakes_data()
    {
        QTest::addColumn<QString>("caption");
        for (const kiosk::Step &fault : kiosk::BenchSteps::faults())
            QTest::newRow(qPrintable(fault.caption)) << fault.caption;
    }

    void fault_ofEachButton_isOneThatTheServiceTakes()
    {
        QFETCH(const QString, caption);
        Desk desk;
        desk.touch(caption);
        WAIT_FOR(desk.outcome(), caption + QStringLiteral(": сделано"));
    }

    void fault_typed_isSetOrRefused()
    {
        Desk desk;
        desk.type("faultRule", QStringLiteral("ParkInfoPay#2:empty"));
        desk.touch(QStringLiteral("Задать"));
        WAIT_FOR(desk.outcome(), QStringLiteral("ParkInfoPay#2:empty: сделано"));
        desk.type("faultRule", QStringLiteral("nonsense"));
        desk.touch(QStringLiteral("Задать"));
        WAIT_FOR(desk.outcome().startsWith(QLatin1String("nonsense: the cash service: ")), true);
    }

    // Each verb of the vocabulary, in one notation or the other.
    void step_typed_isDone_data()
    {
        QTest::addColumn<QString>("step");
        QTest::addColumn<QString>("outcome");
        const auto row = [](const char *step, const char *outcome) {
            QTest::newRow(step) << QString::fromUtf8(step) << QString::fromUtf8(outcome);
        };
        row("start", "start: сделано");
        row("session-card {id: 77}", "session-card: {id: 77}: сделано");
        row("session-card: {id: 77}", "session-card: {id: 77}: сделано");
        row("settings {ParkingId: 12}", "settings: {ParkingId: 12}: сделано");
        row("expect {screen: idle}", "expect: {screen: idle}: сделано");
        row("expect {screen: receipt, within: 0}",
            "expect: {screen: receipt, within: 0}: after 0 ms: expected screen \"receipt\"; there was \"idle\"");
        row("wait 0", "wait: 0: сделано");
        row("screenshot a", "screenshot: a: no picture is kept: give --shots");
        row("service {fault: any:empty}", "service: {fault: any:empty}: сделано");
        row("stop", "stop: stop: not now");
        row("press ok", "press: ok: there is no button \"ok\" to touch");
        row("push ok", "push ok: step:1:1: there is no step \"push\"; the steps are ");
        row("expect {screen: nowhere}", "expect {screen: nowhere}: step:1:18: \"nowhere\" is none of ");
        row("press: [", "press: [: step:1:1: ");
        row("", ": step:1:1: write a step as VERB or VERB: VALUE");
    }

    void step_typed_isDone()
    {
        QFETCH(QString, step);
        QFETCH(QString, outcome);
        Desk desk;
        desk.giveStep(step);
        WAIT_FOR(desk.outcome().startsWith(outcome), true);
        MessageLog::drop();
    }

    void sessionCard_typed_isLeftForTheNextStart()
    {
        Desk desk;
        desk.giveStep(QStringLiteral("session-card {id: 77}"));
        desk.touch(QStringLiteral("Начать"));
        const QVariantMap card = {{QStringLiteral("id"), QStringLiteral("77")}};
        QCOMPARE(desk.bench().sessionData(), (QVariantMap{{QStringLiteral("18156"), card}}));
    }

    // What is expected is for the next touch to bring about.
    void step_whileAnotherGoesOn_isDoneBesideIt()
    {
        const QString wait = QStringLiteral("wait: 600000: ");
        const QString expect = QStringLiteral("expect: {screen: details, within: 600000}: ");
        const QString goesOn = QStringLiteral("выполняется");
        const QString isDone = QStringLiteral("сделано");
        Desk desk;
        desk.giveStep(QStringLiteral("wait 600000"));
        QCOMPARE(desk.outcome(), wait + goesOn);
        desk.giveStep(QStringLiteral("expect {screen: details, within: 600000}"));
        QCOMPARE(desk.outcome(), wait + goesOn + '\n' + expect + goesOn);
        desk.touch(QStringLiteral("Начать"));
        QCOMPARE(desk.outcome(), QStringLiteral("Начать: ") + isDone + '\n' + wait + goesOn + '\n' + expect + goesOn);
        desk.bench().fill("SummToPay", QStringLiteral("150.00"));
        desk.bench().signal("needShowPayDetail");
        WAIT_FOR(desk.outcome(), expect + isDone + '\n' + wait + goesOn);
    }

    void quit_touched_endsTheTerminal()
    {
        Desk desk;
        const QSignalSpy ready(&desk.bench().terminal(), &kiosk::Terminal::quitReady);
        desk.touch(QStringLiteral("Выключить"));
        WAIT_FOR(ready.count(), 1);
        QCOMPARE(desk.outcome(), QStringLiteral("Выключить: сделано"));
    }

    void panel_besideTheWindow_isOnTheScreen_data()
    {
        QTest::addColumn<int>("windowsRight");
        QTest::newRow("room beside it") << -400;
        QTest::newRow("some of the room") << 300;
        QTest::newRow("no room beside it") << 800;
    }

    void panel_besideTheWindow_isOnTheScreen()
    {
        QFETCH(int, windowsRight);
        TerminalBench bench;
        BenchPanel panel({bench.terminal(), bench.window()}, QUrl(QStringLiteral("http://127.0.0.1:1")));
        const QRect screen = bench.window().screen()->availableGeometry();
        bench.window().move(screen.left() + windowsRight - bench.window().width(), screen.top() - 5);
        panel.moveBeside(bench.window());
        const int room = screen.width() - panel.sizeHint().width();
        QCOMPARE(panel.x() - screen.left(), qMax(0, qMin(room, windowsRight)));
        QCOMPARE(panel.y(), screen.top());
        MessageLog::drop();
    }

    void panel_openedBesideTheWindow_comesOnceWithTheAnswer_data()
    {
        QTest::addColumn<QString>("service");
        QTest::newRow("cards") << "answers";
        QTest::newRow("no service") << "none";
        QTest::newRow("a silent service") << "silent";
    }

    void panel_openedBesideTheWindow_comesOnceWithTheAnswer()
    {
        QFETCH(QString, service);
        const CashService real;
        QTcpServer silent;
        QVERIFY(silent.listen(QHostAddress::LocalHost));
        const bool hasService = service == QLatin1String("answers");
        const bool isSilent = service == QLatin1String("silent");
        const int port = hasService ? real.port() : isSilent ? silent.serverPort() : 1;
        TerminalBench bench;
        BenchPanel panel({bench.terminal(), bench.window()}, QUrl(QStringLiteral("http://127.0.0.1:%1").arg(port)));
        bench.window().move(0, 0);
        panel.openBeside(bench.window(), isSilent ? std::chrono::milliseconds(1) : std::chrono::minutes(10));
        QVERIFY(!panel.isVisible());
        WAIT_FOR(panel.isVisible(), true);
        QCOMPARE(panel.size(), panel.sizeHint());
        const QPointer<QPushButton> card = cardButton(panel);
        QCOMPARE(!card.isNull(), hasService);

        // Who closes it is done with it, although each commit has the cards shown anew.
        panel.close();
        Q_EMIT bench->committingChanged(true);
        if (hasService)
            WAIT_FOR(card.isNull(), true);
        QVERIFY(!panel.isVisible());
        MessageLog::drop();
    }

    void panel_ofItsSize_canBeUsed_data()
    {
        QTest::addColumn<QString>("step");
        QTest::newRow("as it opens") << QString();
        QTest::newRow("an outcome") << QStringLiteral("start");
        QTest::newRow("an outcome of many lines") << QStringLiteral("push");
    }

    void panel_ofItsSize_canBeUsed()
    {
        QFETCH(QString, step);
        Desk desk;
        desk.waitForCards();
        if (!step.isEmpty())
            desk.giveStep(step);
        Rendering::settle(desk.panel());
        QCOMPARE(LookChecks::clipped(desk.panel()).join(QLatin1Char('\n')), QString());
        QCOMPARE(LookChecks::overlapping(desk.panel()).join(QLatin1Char('\n')), QString());
        QCOMPARE(LookChecks::nameless(desk.panel()).join(QLatin1Char('\n')), QString());
        QCOMPARE(LookChecks::paleTexts(desk.panel(), 4.5).join(QLatin1Char('\n')), QString());
    }

    void panel_withTheServicesCards_looksAsItDid()
    {
        Desk desk;
        desk.waitForCards();
        desk.giveStep(QStringLiteral("push ok"));
        Rendering::settle(desk.panel());
        const QString difference = GoldenImage::differenceFromFile(QStringLiteral(KIOSK_GOLDEN "/bench-panel.png"),
                                                                   Rendering::picture(desk.panel()));
        QVERIFY2(difference.isEmpty(), qPrintable(difference));
    }
};

int main(int argc, char **argv)
{
    Rendering::prepareFonts();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    kiosk::Look::apply(application);
    TEST_RUN(BenchPanelTest)
}

#include "tst_benchpanel.moc"
