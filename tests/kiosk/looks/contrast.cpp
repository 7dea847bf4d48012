// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "kiosk/looks/contrast.h"

#include <QHash>
#include <QImage>

#include <algorithm>
#include <cmath>

namespace Contrast {
namespace {
double linear(double channel)
{
    return channel <= 0.03928 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor &colour)
{
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
}
} // namespace

double ratio(const QColor &one, const QColor &other)
{
    const double first = luminance(one);
    const double second = luminance(other);
    return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

double ofText(const QImage &picture)
{
    QHash<QRgb, int> counts;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            ++counts[picture.pixel(x, y)];
    }
    const auto keys = counts.keys();
    const auto ground =
        std::max_element(keys.begin(), keys.end(), [&](QRgb one, QRgb other) { return counts[one] < counts[other]; });
    if (ground == keys.end())
        return 1;
    double most = 1;
    for (const QRgb colour : keys)
        most = std::max(most, ratio(QColor(colour), QColor(*ground)));
    return most;
}
} // namespace Contrast
