// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "kiosk/looks/goldenimage.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QHash>
#include <QRect>

#include <algorithm>
#include <cstdlib>
#include <tuple>

namespace GoldenImage {
namespace {
/// How many of 256 steps a channel may differ: edges are smoothed in other ways, and drawn in the nearest colour of a
/// palette; a card's frame differs more than that from the ground.
constexpr int EDGE_TOLERANCE = 16;
/// Surfaces are filled, and the same everywhere.
constexpr int SURFACE_TOLERANCE = 2;
/// So many pixels of a tile may differ by more than that: a letter's edge or two, smoothed in another way.
constexpr int TILE = 32;
constexpr int TILE_TOLERANCE = 12;

int steps(QRgb one, QRgb other)
{
    return std::max({std::abs(qRed(one) - qRed(other)), std::abs(qGreen(one) - qGreen(other)),
                     std::abs(qBlue(one) - qBlue(other))});
}

/// Whether all pixels around it have its colour: it is no edge of anything.
bool isOfASurface(const QImage &image, int x, int y)
{
    const QRect around = QRect(x - 1, y - 1, 3, 3).intersected(image.rect());
    const QRgb colour = image.pixel(x, y);
    for (int row = around.top(); row <= around.bottom(); ++row) {
        for (int column = around.left(); column <= around.right(); ++column) {
            if (image.pixel(column, row) != colour)
                return false;
        }
    }
    return true;
}

bool differs(const QImage &expected, const QImage &actual, int x, int y)
{
    const int found = steps(expected.pixel(x, y), actual.pixel(x, y));
    if (found <= SURFACE_TOLERANCE || found > EDGE_TOLERANCE)
        return found > EDGE_TOLERANCE;
    return isOfASurface(expected, x, y) || isOfASurface(actual, x, y);
}

int differingPixels(const QImage &expected, const QImage &actual, const QRect &tile)
{
    int count = 0;
    for (int y = tile.top(); y <= tile.bottom(); ++y) {
        for (int x = tile.left(); x <= tile.right(); ++x)
            count += differs(expected, actual, x, y) ? 1 : 0;
    }
    return count;
}

/// The commonest first.
QVector<QRgb> colours(const QImage &image)
{
    QHash<QRgb, int> counts;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            ++counts[image.pixel(x, y)];
    }
    QVector<QRgb> found = counts.keys().toVector();
    std::sort(found.begin(), found.end(), [&](QRgb one, QRgb other) {
        return std::make_tuple(-counts.value(one), one) < std::make_tuple(-counts.value(other), other);
    });
    return found;
}

/// The commonest as they are, those of surfaces among them; of the others each that is further than @a distance steps
/// from all before.
QVector<QRgb> palette(const QVector<QRgb> &commonestFirst, int distance)
{
    constexpr int exact = 96;
    QVector<QRgb> kept = commonestFirst.mid(0, exact);
    for (const QRgb colour : commonestFirst.mid(exact)) {
        if (std::all_of(kept.begin(), kept.end(), [&](QRgb other) { return steps(colour, other) > distance; }))
            kept.append(colour);
    }
    return kept;
}

/// With a palette, which is a third as large a file: rare shades, as the edges of letters have them, become the nearest
/// that it has.
QImage indexed(const QImage &image)
{
    constexpr int most = 256;
    const QVector<QRgb> all = colours(image);
    QVector<QRgb> kept = all;
    for (int distance = 1; kept.size() > most; ++distance)
        kept = palette(all, distance);
    return image.convertToFormat(QImage::Format_Indexed8, kept);
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
