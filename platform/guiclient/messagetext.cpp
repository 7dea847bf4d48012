// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/messagetext.h"

#include "guiclient/textflow.h"

#include <QFontInfo>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>

namespace {
// Below that one cannot read it standing.
constexpr int SMALLEST_LETTERS = 26;
constexpr int SCROLL_BAR_WIDTH = 16;
// Kept free for it, so that text that fits just so does not move when it gets longer.
constexpr int SCROLL_BAR_ROOM = SCROLL_BAR_WIDTH + 8;

QFont ofSize(QFont font, int letterSize)
{
    font.setPixelSize(letterSize);
    return font;
}
} // namespace

MessageText::MessageText(QWidget *parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setAlignment(Qt::AlignCenter);
}

MessageText::~MessageText() = default;

const TextFlow &MessageText::flow()
{
    const Situation now{text(), font(), contentsRect().size(), alignment()};
    if (m_flow && m_situation == now)
        return *m_flow;
    if (m_situation.text != now.text)
        m_offset = 0;
    m_situation = now;
    const int width = std::max(1, now.size.width() - 2 * SCROLL_BAR_ROOM);
    m_letterSize = QFontInfo(now.font).pixelSize();
    m_flow = std::make_unique<TextFlow>(now.text, now.font, width, now.alignment);
    const auto isTooLarge = [&] { return m_flow->height() > now.size.height() || m_flow->breaksWords(); };
    while (isTooLarge() && m_letterSize > SMALLEST_LETTERS) {
        m_letterSize = std::max(SMALLEST_LETTERS, m_letterSize * 9 / 10);
        m_flow = std::make_unique<TextFlow>(now.text, ofSize(now.font, m_letterSize), width, now.alignment);
    }
    m_offset = std::clamp(m_offset, 0, std::max(0, m_flow->height() - now.size.height()));
    return *m_flow;
}

int MessageText::letterSize()
{
    flow();
    return m_letterSize;
}

int MessageText::scrollRange()
{
    return std::max(0, flow().height() - contentsRect().height());
}

QSize MessageText::sizeHint() const
{
    ensurePolished();
    constexpr int width = 640;
    return {width, heightForWidth(width)};
}

QSize MessageText::minimumSizeHint() const
{
    // One line.
    return {2 * SCROLL_BAR_ROOM + SMALLEST_LETTERS, text().isEmpty() ? 0 : SMALLEST_LETTERS * 6 / 5};
}

int MessageText::heightForWidth(int width) const
{
    // A gap would look as if something were missing.
    if (text().isEmpty())
        return 0;
    const QSize frame = size() - contentsRect().size();
    const int available = std::max(1, width - frame.width() - 2 * SCROLL_BAR_ROOM);
    return TextFlow(text(), font(), available, alignment()).height() + frame.height();
}

void MessageText::paintEvent(QPaintEvent *event)
{
    // Not QLabel's, which would write the text its own way.
    QFrame::paintEvent(event); // NOLINT(bugprone-parent-virtual-call)
    const QRect area = contentsRect();
    const int spare = area.height() - flow().height();
    int top = -m_offset;
    if (spare > 0)
        top = (alignment() & Qt::AlignTop) != 0 ? 0 : (alignment() & Qt::AlignBottom) != 0 ? spare : spare / 2;
    QPainter painter(this);
    painter.setClipRect(area);
    painter.setPen(palette().color(foregroundRole()));
    m_flow->draw(painter, area.topLeft() + QPoint(SCROLL_BAR_ROOM, top));
    if (spare < 0)
        drawScrollBar(painter, area);
}

void MessageText::drawScrollBar(QPainter &painter, const QRect &area)
{
    QRectF bar(area.right() + 1 - SCROLL_BAR_WIDTH, area.top(), SCROLL_BAR_WIDTH, area.height());
    QColor colour = palette().color(foregroundRole());
    const auto draw = [&](qreal opacity) {
        colour.setAlphaF(opacity);
        painter.setPen(Qt::NoPen);
        painter.setBrush(colour);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.drawRoundedRect(bar, SCROLL_BAR_WIDTH / 2.0, SCROLL_BAR_WIDTH / 2.0);
    };
    draw(0.12);
    const qreal scale = bar.height() / m_flow->height();
    bar.setTop(area.top() + m_offset * scale);
    bar.setHeight(area.height() * scale);
    draw(0.7);
}

void MessageText::scrollTo(int offset)
{
    const int bounded = std::clamp(offset, 0, scrollRange());
    if (bounded == m_offset)
        return;
    m_offset = bounded;
    update();
}

void MessageText::mousePressEvent(QMouseEvent *event)
{
    // What does not scroll itself may lie in something that does.
    event->setAccepted(scrollRange() > 0);
    m_grabbedAt = event->pos().y() + m_offset;
}

void MessageText::mouseMoveEvent(QMouseEvent *event)
{
    event->setAccepted(scrollRange() > 0);
    scrollTo(m_grabbedAt - event->pos().y());
}

void MessageText::wheelEvent(QWheelEvent *event)
{
    event->setAccepted(scrollRange() > 0);
    scrollTo(m_offset - event->angleDelta().y());
}
