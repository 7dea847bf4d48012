// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QTimer>

namespace kiosk {
/// Notices that whoever stood there has gone: no touch, no key and no restart() for a while.
class Inactivity : public QObject
{
    Q_OBJECT

public:
    explicit Inactivity(QObject *parent = nullptr);

    /// Begins to wait so many seconds, from now on.
    void start(int seconds);
    void stop();
    /// Somebody is there: waits from now on, if it waits at all.
    void restart();
    /// Until expired(), rounded up; 0: it does not wait.
    [[nodiscard]] int secondsLeft() const;

Q_SIGNALS:
    void expired();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QTimer m_timer;
};
} // namespace kiosk
