// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "kiosk/looks/goldenimage.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QHash>
#include <QRect>

#include <algorithm>
#include <climits>
#include <cstdlib>

namespace GoldenImage {
namespace {
/// Of 256. A card's frame differs more than that from the ground.
constexpr int CHANNEL_TOLERANCE = 24;
/// So many pixels of a tile may differ by more than that: a letter's edge or two, smoothed in another way.
constexpr int TILE = 32;
constexpr int TILE_TOLERANCE = 12;

bool differs(QRgb one, QRgb other)
{
    const int most = std::max({std::abs(qRed(one) - qRed(other)), std::abs(qGreen(one) - qGreen(other)),
                               std::abs(qBlue(one) - qBlue(other))});
    return most > CHANNEL_TOLERANCE;
}

int differingPixels(const QImage &expected, const QImage &actual, const QRect &tile)
{
    int count = 0;
    for (int y = tile.top(); y <= tile.bottom(); ++y) {
        for (int x = tile.left(); x <= tile.right(); ++x)
            count += differs(expected.pixel(x, y), actual.pixel(x, y)) ? 1 : 0;
    }
    return count;
}

/// Neighbours among the colours: not 16 of 256 steps apart in any channel.
QRgb neighbourhood(QRgb colour)
{
    constexpr QRgb mask = 0xf0f0f0;
    return colour & mask;
}

/// With a palette, which is a third as large a file: of neighbouring shades, as the edges of letters have them, each
/// becomes the commonest. A picture that has too many for a palette stays as it is.
QImage indexed(const QImage &image)
{
    QHash<QRgb, QHash<QRgb, int>> counts;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            ++counts[neighbourhood(image.pixel(x, y))][image.pixel(x, y)];
    }
    if (counts.size() > UCHAR_MAX)
        return image;
    QVector<QRgb> palette;
    QHash<QRgb, uchar> indices;
    for (auto shades = counts.cbegin(); shades != counts.cend(); ++shades) {
        indices.insert(shades.key(), static_cast<uchar>(palette.size()));
        palette.append(std::max_element(shades->cbegin(), shades->cend()).key());
    }
    QImage result(image.size(), QImage::Format_Indexed8);
    result.setColorTable(palette);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            result.scanLine(y)[x] = indices.value(neighbourhood(image.pixel(x, y)));
    }
    return result;
}

QString sizeText(const QSize &size)
{
    return QStringLiteral("%1 x %2").arg(size.width()).arg(size.height());
}
} // namespace

QString difference(const QImage &expected, const QImage &actual)
{
    if (expected.size() != actual.size())
        return QStringLiteral("the size is %1, not %2").arg(sizeText(actual.size()), sizeText(expected.size()));
    QRect changed;
    for (int y = 0; y < actual.height(); y += TILE) {
        for (int x = 0; x < actual.width(); x += TILE) {
            const QRect tile = QRect(x, y, TILE, TILE).intersected(actual.rect());
            if (differingPixels(expected, actual, tile) > TILE_TOLERANCE)
                changed |= tile;
        }
    }
    if (changed.isEmpty())
        return {};
    return QStringLiteral("it differs within x %1 to %2, y %3 to %4")
        .arg(changed.left())
        .arg(changed.right())
        .arg(changed.top())
        .arg(changed.bottom());
}

QString differenceFromFile(const QString &path, const QImage &actual)
{
    if (qEnvironmentVariableIsSet("RENEW_GOLDEN_IMAGES")) {
        // 0: the smallest file.
        return indexed(actual).save(path, "PNG", 0) ? QStringLiteral("renewed: look at ") + path
                                                    : QStringLiteral("cannot be written: ") + path;
    }
    const QImage expected(path);
    const QString found = expected.isNull() ? QStringLiteral("there is no picture") : difference(expected, actual);
    if (found.isEmpty())
        return {};
    const QString kept = QCoreApplication::applicationDirPath() + QLatin1Char('/') + QFileInfo(path).fileName();
    const bool isKept = actual.save(kept);
    return QStringLiteral("%1: %2; what it looks like now is %3")
        .arg(path, found, isKept ? QStringLiteral("in ") + kept : QStringLiteral("not written"));
}
} // namespace GoldenImage
