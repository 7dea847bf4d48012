// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "support/golden.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

QString Golden::difference(const QString &path, const QByteArray &actual)
{
    QFile golden(path);
    const bool exists = golden.open(QIODevice::ReadOnly);
    if (exists && golden.readAll() == actual)
        return QString();

    const QString actualPath = QCoreApplication::applicationDirPath() + QLatin1Char('/') + QFileInfo(path).fileName() +
                               QStringLiteral(".actual");
    QFile file(actualPath);
    if (!file.open(QIODevice::WriteOnly) || file.write(actual) != actual.size())
        return QStringLiteral("cannot write %1: %2").arg(actualPath, file.errorString());
    file.close();
    if (!exists)
        return QStringLiteral("there is no golden file %1; the text is in %2").arg(path, actualPath);

    QProcess diff;
    diff.start(QStringLiteral("diff"), {QStringLiteral("-u"), path, actualPath});
    diff.waitForFinished();
    return QStringLiteral("differs from its golden file:\n") + QString::fromUtf8(diff.readAllStandardOutput());
}
