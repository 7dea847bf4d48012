// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "exchange.h"

#include <QEventLoop>
#include <QRegularExpression>
#include <QTimer>

namespace {
constexpr int LONGEST_WAIT_MS = 30'000;
}

RunningCashService::RunningCashService(const QString &program)
{
    m_process.start(program, {QStringLiteral("--listen"), QStringLiteral("127.0.0.1:0")});
    // Its first line ends in where it listens: http://127.0.0.1:PORT/api
    while (!m_process.canReadLine() && m_process.waitForReadyRead(LONGEST_WAIT_MS)) {
    }
    const QRegularExpression portAndPath(QStringLiteral(":(\\d+)/"));
    m_port = portAndPath.match(QString::fromUtf8(m_process.readLine())).captured(1).toUShort();
}

RunningCashService::~RunningCashService()
{
    m_process.terminate();
    m_process.waitForFinished(LONGEST_WAIT_MS);
}

Outcome exchange(const std::function<void(ParkomatAccessManager &)> &post)
{
    Outcome outcome;
    QEventLoop loop;
    ParkomatAccessManager client;
    QObject::connect(&client, &ParkomatAccessManager::parkingCheckResponse, &loop, [&](const auto &response) {
        outcome.check = response;
        loop.quit();
    });
    QObject::connect(&client, &ParkomatAccessManager::parkInfoPayResponse, &loop, [&](const auto &response) {
        outcome.pay = response;
        loop.quit();
    });
    QObject::connect(&client, &ParkomatAccessManager::error, &loop, [&](const QVariantMap &error) {
        outcome.error = error;
        loop.quit();
    });
    QTimer::singleShot(LONGEST_WAIT_MS, &loop, &QEventLoop::quit);
    post(client);
    loop.exec();
    return outcome;
}
