// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "window/facts.h"

#include "window/parts.h"

#include <QGridLayout>

namespace kiosk {
namespace {
/// Lets a path break at its separators; to the eye nothing is added.
QString breakable(QString path)
{
    const QChar zeroWidthSpace(0x200B);
    for (const char separator : {'/', '.', '-', '_'})
        path.replace(QLatin1Char(separator), QLatin1Char(separator) + QString(zeroWidthSpace));
    return path;
}
} // namespace

Facts::Facts(QWidget *parent) : QFrame(parent), m_grid(new QGridLayout(this))
{
    Parts::setRole(*this, "card");
    m_grid->setContentsMargins(24, 16, 24, 16);
    m_grid->setHorizontalSpacing(16);
    m_grid->setVerticalSpacing(6);
    m_grid->setColumnStretch(0, 5);
    m_grid->setColumnStretch(1, 6);
}

void Facts::clear()
{
    while (QLayoutItem *item = m_grid->takeAt(0)) {
        delete item->widget();
        delete item;
    }
}

void Facts::addHeading(const QString &text)
{
    m_grid->addWidget(Parts::label(text, "heading"), m_grid->rowCount(), 0, 1, 2);
}

void Facts::addRow(const QString &caption, const QString &value, const char *role)
{
    const int row = m_grid->rowCount();
    QLabel *text = Parts::label(value, role);
    text->setAlignment(Qt::AlignRight | Qt::AlignTop);
    m_grid->addWidget(Parts::label(caption, "caption"), row, 0);
    m_grid->addWidget(text, row, 1);
}

void Facts::addBelow(const QString &caption, const QString &value)
{
    const int row = m_grid->rowCount();
    m_grid->addWidget(Parts::label(caption, "caption"), row, 0, 1, 2);
    m_grid->addWidget(Parts::label(breakable(value), "fact"), row + 1, 0, 1, 2);
}
} // namespace kiosk
