// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QPushButton>
#include <QTimer>

namespace kiosk {
/// A button that acts when it is held down for a while, so that no passing touch opens what is behind it.
class HoldButton : public QPushButton
{
    Q_OBJECT

public:
    static constexpr int HOLD_MS = 1500;

    explicit HoldButton(const QString &text, QWidget *parent = nullptr);

Q_SIGNALS:
    /// It was held down for HOLD_MS.
    void held();

private:
    QTimer m_timer;
};
} // namespace kiosk
