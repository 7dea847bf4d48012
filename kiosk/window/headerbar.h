// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "core/trelminfo.h"

#include <QBasicTimer>
#include <QFrame>

class QLabel;

namespace kiosk {
/// The strip on top of every screen: which terminal this is, whom to call, what time it is. Its "P" sign, held down,
/// is the way into the service menu.
class HeaderBar : public QFrame
{
    Q_OBJECT

public:
    explicit HeaderBar(const TrelmInfo &info, QWidget *parent = nullptr);

Q_SIGNALS:
    void serviceWanted();

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    void showTime();

    QLabel *m_date;
    QLabel *m_time;
    QBasicTimer m_timer;
};
} // namespace kiosk
