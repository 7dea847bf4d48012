// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "scenario/player.h"

#include "kiosklog.h"

namespace kiosk {
Player::Player(const Scenario &scenario, const Stage &stage, QObject *parent)
    : QObject(parent), m_scenario(scenario), m_runner(stage)
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
    if (failure.isEmpty()) {
        start();
        return;
    }
    const Step &step = m_scenario.steps.at(m_next - 1);
    Q_EMIT finished(
        QStringLiteral("%1:%2: step %3 (%4): %5")
            .arg(m_scenario.path, QString::number(step.line), QString::number(m_next), step.caption, failure));
}
} // namespace kiosk
