// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "window/statusicon.h"

#include <QPainter>
#include <QPainterPath>

namespace kiosk {
namespace {
constexpr int SIDE = 72;

QColor colour(StatusIcon::Kind kind)
{
    switch (kind) {
    case StatusIcon::Kind::Good:
        return {0x14, 0x72, 0x3B};
    case StatusIcon::Kind::Doubtful:
        return {0x9A, 0x5B, 0x00};
    case StatusIcon::Kind::Bad:
        break;
    }
    return {0xB3, 0x26, 0x1E};
}

/// In a square of 24.
QPainterPath sign(StatusIcon::Kind kind)
{
    QPainterPath path;
    if (kind == StatusIcon::Kind::Good) {
        path.moveTo(7, 12.5);
        path.lineTo(10.5, 16);
        path.lineTo(17, 8.5);
    } else if (kind == StatusIcon::Kind::Doubtful) {
        path.moveTo(12, 6.5);
        path.lineTo(12, 13);
        path.moveTo(12, 17);
        path.lineTo(12, 17.2);
    } else {
        path.moveTo(8, 8);
        path.lineTo(16, 16);
        path.moveTo(16, 8);
        path.lineTo(8, 16);
    }
    return path;
}

QString name(StatusIcon::Kind kind)
{
    switch (kind) {
    case StatusIcon::Kind::Good:
        return QStringLiteral("Успешно");
    case StatusIcon::Kind::Doubtful:
        return QStringLiteral("Внимание");
    case StatusIcon::Kind::Bad:
        break;
    }
    return QStringLiteral("Ошибка");
}
} // namespace

StatusIcon::StatusIcon(Kind kind, QWidget *parent) : QWidget(parent), m_kind(kind)
{
    setFixedSize(SIDE, SIDE);
    setKind(kind);
}

void StatusIcon::setKind(Kind kind)
{
    m_kind = kind;
    setAccessibleName(name(kind));
    update();
}

QSize StatusIcon::sizeHint() const
{
    return {SIDE, SIDE};
}

void StatusIcon::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(width() / 24.0, height() / 24.0);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour(m_kind));
    painter.drawEllipse(QRectF(0.5, 0.5, 23, 23));
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(Qt::white, 2.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(sign(m_kind));
}
} // namespace kiosk
