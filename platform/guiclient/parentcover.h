// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPointer>

class QWidget;

/// Keeps a widget as large as its parent and, when it is shown, above the parent's other children. A child of that
/// widget. Where the parent's layout places the widget, the layout is left to it.
class ParentCover : public QObject
{
    Q_OBJECT

public:
    explicit ParentCover(QWidget *widget);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void watchParent();
    void cover();

    QWidget *m_widget;
    QPointer<QWidget> m_parent;
};
