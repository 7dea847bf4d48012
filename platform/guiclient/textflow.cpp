// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/textflow.h"

#include <QPainter>
#include <QTextOption>

#include <cmath>

namespace {
QTextOption option(Qt::Alignment alignment)
{
    QTextOption option(alignment & Qt::AlignHorizontal_Mask);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    return option;
}
} // namespace

TextFlow::TextFlow(const QString &text, const QFont &font, int width, Qt::Alignment alignment)
    : m_layout(QString(text).replace(QLatin1Char('\n'), QChar::LineSeparator), font)
{
    m_layout.setTextOption(option(alignment));
    m_layout.beginLayout();
    qreal y = 0;
    for (QTextLine line = m_layout.createLine(); line.isValid(); line = m_layout.createLine()) {
        line.setLineWidth(width);
        line.setPosition({0, y});
        y += line.height();
    }
    m_layout.endLayout();
    m_height = static_cast<int>(std::ceil(y));
}

void TextFlow::draw(QPainter &painter, const QPoint &top) const
{
    m_layout.draw(&painter, top, {}, painter.clipBoundingRect());
}
