// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "secondparser.h"

#include <QFile>
#include <QRegularExpression>
#include <QTest>

/// Rows of documents that each break one rule of their schema and are good but for that: without them, a schema that
/// lets everything pass would hold as well.
namespace SchemaBreaks {
/// The text that documents come to be broken from, in one line, so that rows can name what they replace.
inline QString inOneLine(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    return QString::fromUtf8(file.readAll()).remove(QRegularExpression(QStringLiteral("\n *")));
}

inline void addColumns()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("to");
    QTest::addColumn<QString>("breach");
}

/// @param from a regular expression, for what @a to takes the place of in the good document.
/// @param breach what the complaint must say.
inline void add(const QByteArray &rule, const QByteArray &kind, const QString &from, const QByteArray &to,
                const QByteArray &breach)
{
    QTest::newRow((kind + ": " + rule).constData())
        << QString::fromUtf8(kind) << from << QString::fromUtf8(to) << QString::fromUtf8(breach);
}

/// Verifies what the row says of @a good, which the schema finds nothing wrong with.
inline void verify(const QString &schemaName, const QString &good)
{
    QFETCH(const QString, from);
    QFETCH(const QString, to);
    QFETCH(const QString, breach);
    const SecondParser::Schema schema(schemaName);
    QCOMPARE(schema.breaches(SecondParser::Document(good.toUtf8())), QStringList());

    const SecondParser::Document bad(QString(good).replace(QRegularExpression(from), to).toUtf8());
    QVERIFY(bad.isWellFormed());
    const QString found = schema.breaches(bad).join(QLatin1Char('\n'));
    QVERIFY2(found.contains(breach), qPrintable(found));
}
} // namespace SchemaBreaks
