// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QFile>
#include <QList>
#include <QString>
#include <QStringList>

/// What is expected of one event at one stage, as data/handler-matrix.txt explains it.
struct MatrixRow
{
    QString stage;
    QString event;
    /// "screen | happened | sent | held | later"; empty: this cannot be.
    QString outcome;
};

/// The rows of a matrix, in order.
[[nodiscard]] inline QList<MatrixRow> readMatrix(const QString &path)
{
    QList<MatrixRow> rows;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return rows;
    QString stage;
    const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString &line : lines) {
        if (line.startsWith(QLatin1Char('#')))
            continue;
        if (line.startsWith(QLatin1Char('['))) {
            stage = line.mid(1, line.size() - 2);
            continue;
        }
        QStringList cells = line.split(QLatin1Char('|'));
        for (QString &cell : cells)
            cell = cell.trimmed();
        const QString event = cells.takeFirst();
        const bool isPossible = !cells.value(0).startsWith(QLatin1String("- "));
        rows.append({stage, event, isPossible ? cells.join(QLatin1String(" | ")) : QString()});
    }
    return rows;
}
