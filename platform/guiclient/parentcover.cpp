// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/parentcover.h"

#include <QEvent>
#include <QLayout>
#include <QWidget>

namespace {
bool isPlacedBy(QLayout *layout, const QWidget *widget)
{
    if (layout == nullptr)
        return false;
    for (int i = 0; i < layout->count(); ++i) {
        QLayoutItem *item = layout->itemAt(i);
        if (item->widget() == widget || isPlacedBy(item->layout(), widget))
            return true;
    }
    return false;
}
} // namespace

ParentCover::ParentCover(QWidget *widget) : QObject(widget), m_widget(widget)
{
    widget->installEventFilter(this);
    watchParent();
}

void ParentCover::watchParent()
{
    QWidget *parent = m_widget->parentWidget();
    if (m_parent)
        m_parent->removeEventFilter(this);
    m_parent = parent;
    if (parent != nullptr)
        parent->installEventFilter(this);
}

void ParentCover::cover()
{
    const QWidget *parent = m_parent;
    if (parent != nullptr && !isPlacedBy(parent->layout(), m_widget))
        m_widget->setGeometry(parent->rect());
}

bool ParentCover::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_parent && event->type() == QEvent::Resize && !m_widget->isHidden())
        cover();
    if (watched == m_widget && event->type() == QEvent::ParentChange)
        watchParent();
    if (watched == m_widget && event->type() == QEvent::ShowToParent) {
        cover();
        if (m_parent)
            m_widget->raise();
    }
    return false;
}
