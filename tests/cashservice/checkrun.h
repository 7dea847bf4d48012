// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "check/check.h"

#include <QString>
#include <QStringList>

#include <mutex>
#include <ostream>
#include <sstream>
#include <string>

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

/// What a check writes, which can be asked while it is running: each check is flushed as soon as it is made.
class CheckOutput : public std::stringbuf
{
public:
    [[nodiscard]] bool hasLine(const std::string &line) const
    {
        const std::lock_guard lock(m_mutex);
        return m_flushed.find(line + "\n") != std::string::npos;
    }

protected:
    int sync() override
    {
        const std::lock_guard lock(m_mutex);
        m_flushed = str();
        return 0;
    }

private:
    mutable std::mutex m_mutex;
    std::string m_flushed;
};

inline Outcome check(const CheckOptions &options, CheckOutput &output)
{
    std::ostream out(&output);
    const int status = runCheck(options, out);
    return {status, QString::fromStdString(output.str()).trimmed().split(QLatin1Char('\n'))};
}

inline Outcome check(const CheckOptions &options)
{
    CheckOutput output;
    return check(options, output);
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
