// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

class QWidget;

/// Keeps the second half of a double tap from the view that the first half has brought up: many a customer taps twice,
/// and would answer a question that he has not seen yet.
class DoubleTapGuard : public QObject
{
    Q_OBJECT

public:
    /// @param viewer in which taps are guarded; the guard's parent.
    explicit DoubleTapGuard(QWidget *viewer);

    /// Called when another view comes up. The next touch or key ends it.
    void arm();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget *m_viewer;
};
