// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "bus/visiblecontrols.h"

#include <algorithm>

namespace {
/// Terminals act on the second range of control characters (0x80 to 0x9f) as well.
bool isControl(QChar c)
{
    return c.unicode() < 0x20 || (c.unicode() >= 0x7f && c.unicode() < 0xa0);
}

bool isLineEnd(QChar c)
{
    return c == QLatin1Char('\n') || c == QLatin1Char('\r');
}
} // namespace

QString VisibleControls::in(const QString &text, LineEnds lineEnds)
{
    const bool keepsLineEnds = lineEnds == LineEnds::KEPT;
    const auto isHidden = [keepsLineEnds](QChar c) {
        return isControl(c) && c != QLatin1Char('\t') && !(keepsLineEnds && isLineEnd(c));
    };
    // Nearly every text is logged as it is.
    if (std::none_of(text.cbegin(), text.cend(), isHidden))
        return text;
    QString visible;
    visible.reserve(text.size());
    for (const QChar c : text) {
        if (isHidden(c))
            visible += QStringLiteral("\\x%1").arg(c.unicode(), 2, 16, QLatin1Char('0'));
        else
            visible += c;
    }
    return visible;
}
