// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "scenario/steprunner.h"

#include "scenario/expectations.h"
#include "scenario/servicefaults.h"
#include "terminal.h"
#include "view/view.h"

#include <QDir>
#include <QPointer>

namespace kiosk {
StepRunner::StepRunner(const Stage &stage, QObject *parent) : QObject(parent), m_stage(stage)
{
    constexpr int lookEveryMs = 10;
    m_look.setInterval(lookEveryMs);
    connect(&m_look, &QTimer::timeout, this, &StepRunner::lookAgain);
}

void StepRunner::run(const Step &step)
{
    View view(m_stage.terminal, m_stage.window);
    // The cash service may take its time, and who gave the step may be gone by then.
    const auto tell = [self = QPointer<StepRunner>(this)](const QString &failure) {
        if (self)
            Q_EMIT self->finished(failure, {});
    };
    switch (step.verb) {
    case Verb::Press:
        tell(view.press(step.text));
        break;
    case Verb::Type:
        tell(view.type(step.text));
        break;
    case Verb::Expect:
        expect(step);
        break;
    case Verb::Screenshot:
        if (m_stage.shotsDir.isEmpty())
            Q_EMIT finished({}, QStringLiteral("no picture is kept: give --shots"));
        else
            tell(takeScreenshot(step.text));
        break;
    case Verb::Wait:
        QTimer::singleShot(step.milliseconds, this, [tell] { tell({}); });
        break;
    case Verb::SetFault:
    case Verb::ClearFaults:
        if (m_stage.faults == nullptr)
            tell(QStringLiteral("there is no cash service to break: give --bench"));
        else if (step.verb == Verb::SetFault)
            m_stage.faults->set(step.text, tell);
        else
            m_stage.faults->clear(tell);
        break;
    default:
        Q_EMIT finished({}, carryOut(step));
        break;
    }
}

QString StepRunner::carryOut(const Step &step)
{
    Terminal &terminal = m_stage.terminal;
    switch (step.verb) {
    case Verb::Start:
        return terminal.start();
    case Verb::Stop:
        return terminal.stop();
    case Verb::Card:
        return terminal.readCard(step.values);
    case Verb::SessionCard:
        return terminal.leaveSessionCard(step.values);
    case Verb::Cash:
        return terminal.takeCash(step.amount);
    case Verb::OpenService:
        return terminal.openService();
    case Verb::Save:
        return terminal.saveService();
    case Verb::Close:
        return terminal.closeService();
    case Verb::Settings:
        return terminal.writeSettings(step.values);
    case Verb::Quit:
        return terminal.quit();
    default:
        Q_UNREACHABLE();
    }
}

void StepRunner::expect(const Step &step)
{
    m_expected = step.expectation;
    m_waiting.start();
    m_look.start();
    lookAgain();
}

void StepRunner::lookAgain()
{
    // Before the look: what is there when the time is up counts, however long the look took.
    const bool isTimeUp = m_waiting.hasExpired(m_expected.within);
    const QString missing = difference(m_expected, m_stage.terminal, m_stage.window);
    if (!missing.isEmpty() && !isTimeUp)
        return;
    m_look.stop();
    Q_EMIT finished(
        missing.isEmpty() ? QString() : QStringLiteral("after %1 ms: %2").arg(m_expected.within).arg(missing), {});
}

QString StepRunner::takeScreenshot(const QString &name)
{
    const QString path = QDir(m_stage.shotsDir).filePath(name + QStringLiteral(".png"));
    const bool isTaken = QDir().mkpath(m_stage.shotsDir) && m_stage.window.grab().save(path);
    return isTaken ? QString() : QStringLiteral("%1 cannot be written").arg(path);
}
} // namespace kiosk
