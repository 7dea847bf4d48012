// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "check/check.h"

#include <QString>
#include <QStringList>

#include <sstream>

/// What a check has said of a service.
struct Outcome
{
    int status = -1;
    QStringList lines;
};

inline CheckOptions optionsFor(const std::string &url)
{
    CheckOptions options;
    options.url = url;
    options.payInFull = true;
    return options;
}

inline Outcome check(const CheckOptions &options)
{
    std::ostringstream out;
    const int status = runCheck(options, out);
    return {status, QString::fromStdString(out.str()).trimmed().split(QLatin1Char('\n'))};
}

/// The names of the checks that do not hold, sorted.
inline QStringList broken(const Outcome &outcome)
{
    const QString word = QStringLiteral("breaks  ");
    QStringList names;
    for (const QString &line : outcome.lines) {
        if (line.startsWith(word))
            names.append(line.mid(word.size()));
    }
    names.sort();
    return names;
}

/// The last line.
inline QString result(std::size_t holding, std::size_t all)
{
    return QStringLiteral("RESULT: %1 of %2 checks hold").arg(holding).arg(all);
}
