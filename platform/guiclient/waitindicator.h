// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QBasicTimer>
#include <QWidget>

/// Dots that go round: something is being done. It moves only while it can be seen.
class WaitIndicator : public QWidget
{
    Q_OBJECT

public:
    explicit WaitIndicator(QWidget *parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void timerEvent(QTimerEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QBasicTimer m_timer;
    int m_step = 0;
};
