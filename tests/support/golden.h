// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

/// Compares texts with files that hold what they must be.
namespace Golden {
/// Compares @a actual byte for byte with the file @a path.
/// @return an empty text when they are the same; else what differs, as "diff -u" says it. The actual text is then in a
/// file beside the test program, named in the message, so that it can be looked at or taken over.
[[nodiscard]] QString difference(const QString &path, const QByteArray &actual);
} // namespace Golden

/// Fails the test function with a diff unless @a actual is what TEST_DATA/name holds.
#define COMPARE_GOLDEN(actual, name)                                                                                   \
    do {                                                                                                               \
        const QString goldenDifference = Golden::difference(QStringLiteral(TEST_DATA "/") + (name), (actual));         \
        QVERIFY2(goldenDifference.isEmpty(), qPrintable(goldenDifference));                                            \
    } while (false)
