// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/captionbutton.h"

#include "guiclient/textflow.h"

#include <QStyleOptionButton>
#include <QStylePainter>

#include <algorithm>

namespace {
// In pixels; a longer one breaks.
constexpr int WIDEST_WORD = 320;
} // namespace

CaptionButton::CaptionButton(QWidget *parent) : QPushButton(parent)
{
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

QSize CaptionButton::frame() const
{
    return QPushButton::sizeHint() - fontMetrics().size(Qt::TextShowMnemonic, text());
}

QString CaptionButton::wrapped(int width) const
{
    return TextFlow(text(), font(), std::max(1, width - frame().width()), Qt::AlignCenter).lines();
}

QSize CaptionButton::sizeHint() const
{
    int widestWord = 0;
    for (const QString &word : text().simplified().split(QLatin1Char(' ')))
        widestWord = std::max(widestWord, fontMetrics().size(Qt::TextShowMnemonic, word).width());
    return {frame().width() + std::min(widestWord, WIDEST_WORD), QPushButton::sizeHint().height()};
}

int CaptionButton::heightForWidth(int width) const
{
    ensurePolished();
    return std::max(QPushButton::sizeHint().height(),
                    frame().height() + fontMetrics().size(Qt::TextShowMnemonic, wrapped(width)).height());
}

void CaptionButton::paintEvent(QPaintEvent * /*event*/)
{
    QStyleOptionButton option;
    initStyleOption(&option);
    option.text = wrapped(width());
    QStylePainter(this).drawControl(QStyle::CE_PushButton, option);
}
