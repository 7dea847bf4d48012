// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class QBoxLayout;
class QLayout;

namespace kiosk {
/// Two halves of a screen: side by side on a wide one, one below the other on an upright one.
class TurningBox : public QWidget
{
    Q_OBJECT

public:
    TurningBox(QLayout *first, int firstShare, QLayout *second, int secondShare, QWidget *parent = nullptr);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    QBoxLayout *m_layout;
};
} // namespace kiosk
