// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QString>

/// Compares pictures with those that were looked at and found good.
namespace GoldenImage {
/// How two pictures differ; empty: not so that anybody would see it. Edges of letters may be smoothed in another way;
/// anything that has moved by a pixel or two, is missing, or has another colour is a difference, and so is a surface
/// whose colour has changed by some steps.
[[nodiscard]] QString difference(const QImage &expected, const QImage &actual);

/// Compares with the file @a path. With RENEW_GOLDEN_IMAGES set in the environment the file is written instead, for a
/// person to look at before it is committed; the comparison then fails, so that no test passes by writing.
/// @return an empty text, or what differs and where the actual picture lies.
[[nodiscard]] QString differenceFromFile(const QString &path, const QImage &actual);
} // namespace GoldenImage
