// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/inputline.h"

#include <QKeyEvent>

#include <algorithm>

namespace {
bool isDigit(QChar character)
{
    return character >= QLatin1Char('0') && character <= QLatin1Char('9');
}
} // namespace

InputLine::InputLine(bool digitsOnly, QWidget *parent) : QLineEdit(parent), m_digitsOnly(digitsOnly)
{
    setContextMenuPolicy(Qt::NoContextMenu);
    setAlignment(Qt::AlignCenter);
}

void InputLine::keyPressEvent(QKeyEvent *event)
{
    const QString text = event->text();
    const bool isPrinting = !text.isEmpty() && text.at(0).isPrint();
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        Q_EMIT entered();
    else if (event->key() == Qt::Key_Escape)
        Q_EMIT escaped();
    else if (!m_digitsOnly || !isPrinting || std::all_of(text.cbegin(), text.cend(), isDigit))
        QLineEdit::keyPressEvent(event);
}
