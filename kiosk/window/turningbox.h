// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class QBoxLayout;
class QLayout;

namespace kiosk {
/// Two parts of a screen: side by side on a wide one, one below the other on an upright one.
class TurningBox : public QWidget
{
    Q_OBJECT

public:
    /// @param firstShare, @param secondShare of the width, where they are side by side.
    TurningBox(QLayout *first, int firstShare, QLayout *second, int secondShare, QWidget *parent = nullptr);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    QBoxLayout *m_layout;
    int m_firstShare;
    int m_secondShare;
};
} // namespace kiosk
