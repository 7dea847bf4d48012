// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "scenario/player.h"

#include "kiosklog.h"
#include "view/view.h"

namespace kiosk {
Player::Player(const Scenario &scenario, const Stage &stage, QObject *parent)
    : QObject(parent), m_scenario(scenario), m_stage(stage), m_runner(stage)
{
    connect(&m_runner, &StepRunner::finished, this, &Player::takeResult);
}

void Player::start()
{
    // From the event loop each time: the stack does not grow, and what a step began has its turn first.
    QTimer::singleShot(0, this, &Player::runNext);
}

void Player::runNext()
{
    if (m_next == m_scenario.steps.size()) {
        Q_EMIT finished({});
        return;
    }
    const Step &step = m_scenario.steps.at(m_next);
    ++m_next;
    qCInfo(KIOSK_LOG).noquote() << "step" << m_next << step.caption;
    m_runner.run(step);
}

void Player::takeResult(const QString &failure)
{
    const Step &step = m_scenario.steps.at(m_next - 1);
    if (failure.isEmpty()) {
        const View view(m_stage.terminal, m_stage.window);
        Q_EMIT stepHeld(m_next, step.caption, view.screen(), view.text());
        start();
        return;
    }
    Q_EMIT finished(
        QStringLiteral("%1:%2: step %3 (%4): %5")
            .arg(m_scenario.path, QString::number(step.line), QString::number(m_next), step.caption, failure));
}
} // namespace kiosk
