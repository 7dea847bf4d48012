// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

class QSocketNotifier;

namespace kiosk {
/// Turns SIGTERM, SIGINT and SIGHUP into an event, and gives the program its EndLimit. One at a time may live.
class SignalWatch : public QObject
{
    Q_OBJECT

public:
    explicit SignalWatch(QObject *parent = nullptr);
    ~SignalWatch() override;

Q_SIGNALS:
    void endWanted();

private:
    QSocketNotifier *m_notifier;
};
} // namespace kiosk
