// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "parkomataccessmanager.h"

#include <QObject>
#include <QProcess>

#include <functional>

/// The cash service as a process of its own on a free port, for as long as the object lives.
class RunningCashService
{
public:
    explicit RunningCashService(const QString &program);
    ~RunningCashService();
    RunningCashService(const RunningCashService &) = delete;
    RunningCashService &operator=(const RunningCashService &) = delete;

    /// 0 when it did not start.
    [[nodiscard]] unsigned short port() const { return m_port; }

private:
    QProcess m_process;
    unsigned short m_port = 0;
};

/// What came of one request that was posted with the client.
struct Outcome
{
    ParkingCheckResponse check;
    ParkInfoPayResponse pay;
    QVariantMap error;
};

/// Posts with a client of its own and waits for its one signal, half a minute at most.
[[nodiscard]] Outcome exchange(const std::function<void(ParkomatAccessManager &)> &post);
