// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/textflow.h"

#include <QPainter>
#include <QTextOption>

#include <cmath>

TextFlow::TextFlow(const QString &text, const QFont &font, int width, Qt::Alignment alignment)
    : m_layout(QString(text).replace(QLatin1Char('\n'), QChar::LineSeparator), font)
{
    QTextOption option(alignment & Qt::AlignHorizontal_Mask);
    option.setWrapMode(QTextOption::WordWrap);
    layOut(width, option);
    if (!m_breaksWords)
        return;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layOut(width, option);
}

void TextFlow::layOut(int width, const QTextOption &option)
{
    m_layout.setTextOption(option);
    m_layout.beginLayout();
    qreal y = 0;
    for (QTextLine line = m_layout.createLine(); line.isValid(); line = m_layout.createLine()) {
        line.setLineWidth(width);
        line.setPosition({0, y});
        y += line.height();
        m_breaksWords = m_breaksWords || line.naturalTextWidth() > width;
    }
    m_layout.endLayout();
    m_height = static_cast<int>(std::ceil(y));
}

QString TextFlow::lines() const
{
    QStringList lines;
    for (int i = 0; i < m_layout.lineCount(); ++i) {
        const QTextLine line = m_layout.lineAt(i);
        lines.append(m_layout.text().mid(line.textStart(), line.textLength()).remove(QChar::LineSeparator).trimmed());
    }
    return lines.join(QLatin1Char('\n'));
}

void TextFlow::draw(QPainter &painter, const QPoint &top) const
{
    m_layout.draw(&painter, top, {}, painter.clipBoundingRect());
}
