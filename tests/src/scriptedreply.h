// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "clientprobe.h"
#include "freshjournal.h"
#include "support/messagelog.h"

#include <QNetworkReply>
#include <QSslError>

#include <algorithm>
#include <cstring>
#include <functional>
#include <utility>

// What the tests of the client without a network have in common.

/// All that happens while a reply is reported, in order: signals, log lines, what is done to the reply, the journal.
class Trace
{
public:
    Trace() { FreshJournal::make(); }
    // A test that has failed leaves replies behind, which still write here when they go.
    ~Trace() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }
    Trace(const Trace &) = delete;
    Trace &operator=(const Trace &) = delete;

    void add(const QString &what)
    {
        gather();
        m_steps.append(what);
    }

    [[nodiscard]] QStringList take()
    {
        gather();
        return std::exchange(m_steps, {});
    }

private:
    /// What has been logged since, and whether the journal advanced meanwhile: that takes a record away.
    void gather()
    {
        const QList<LogLine> lines = MessageLog::take();
        for (const LogLine &line : lines)
            m_steps.append(toStep(line));
        if (m_isJournalFresh && !FreshJournal::isThere()) {
            m_isJournalFresh = false;
            m_steps.append(QStringLiteral("journal"));
        }
    }

    static QString toStep(const LogLine &line)
    {
        const QString level = line.level == QtCriticalMsg ? QStringLiteral("critical") : QStringLiteral("warning");
        if (line.category == QLatin1String("default") && line.file == QLatin1String("src/baseparkomatresponse.cpp"))
            return QStringLiteral("parser: ") + line.text;
        if (line.category == QLatin1String("default") && line.file == QLatin1String("src/parkomataccessmanager.cpp") &&
            line.function == QLatin1String("void ParkomatAccessManager::finished(QNetworkReply*)"))
            return level + QStringLiteral(": ") + line.text;
        return QStringLiteral("unexpected: ") + toString(line);
    }

    QStringList m_steps;
    bool m_isJournalFresh = true;
};

/// A reply that never saw a network and writes down what is done to it.
class ScriptedReply : public QNetworkReply
{
public:
    ScriptedReply(Trace &trace, const QByteArray &body, bool isComplete = true) : m_trace(trace), m_body(body)
    {
        open(QIODevice::ReadOnly);
        setFinished(isComplete);
    }

    ScriptedReply(Trace &trace, NetworkError code, const QString &text, bool isComplete = true)
        : ScriptedReply(trace, Answers::CHECK, isComplete)
    {
        setError(code, text);
        m_mayBeRead = false;
    }

    ~ScriptedReply() override { m_trace.add(QStringLiteral("deleted")); }

    void abort() override { m_trace.add(QStringLiteral("aborted")); }

    void close() override
    {
        m_trace.add(QStringLiteral("closed"));
        QNetworkReply::close();
    }

    /// As from a server, without making an error of it.
    void setStatus(int status) { setAttribute(QNetworkRequest::HttpStatusCodeAttribute, status); }

    [[nodiscard]] qint64 bytesAvailable() const override { return m_body.size() + QNetworkReply::bytesAvailable(); }
    [[nodiscard]] const QList<QSslError> &ignored() const { return m_ignored; }

protected:
    qint64 readData(char *data, qint64 maxSize) override
    {
        if (!m_mayBeRead)
            m_trace.add(QStringLiteral("read"));
        const qint64 size = std::min<qint64>(maxSize, m_body.size());
        std::memcpy(data, m_body.constData(), static_cast<size_t>(size));
        m_body.remove(0, static_cast<int>(size));
        return size;
    }

    void ignoreSslErrorsImplementation(const QList<QSslError> &errors) override
    {
        m_trace.add(QStringLiteral("ignored %1").arg(errors.size()));
        m_ignored = errors;
    }

private:
    Trace &m_trace;
    QByteArray m_body;
    bool m_mayBeRead = true;
    QList<QSslError> m_ignored;
};

/// Puts a client's signals into a trace and may then do something more, as a listener would.
inline void traceSignals(ParkomatAccessManager &client, Trace &trace, const std::function<void()> &then = {})
{
    const auto add = [&trace, then](const QString &what) {
        trace.add(what);
        if (then)
            then();
    };
    QObject::connect(&client, &ParkomatAccessManager::error, [add](const QVariantMap &map) {
        add(QStringLiteral("error %1 %2")
                .arg(map[QStringLiteral("error")].toInt())
                .arg(map[QStringLiteral("errorMessage")].toString()));
    });
    QObject::connect(&client, &ParkomatAccessManager::parkInfoPayResponse, [add](const ParkInfoPayResponse &response) {
        add(QStringLiteral("pay ") + response.sessionId());
    });
    QObject::connect(
        &client, &ParkomatAccessManager::parkingCheckResponse,
        [add](const ParkingCheckResponse &response) { add(QStringLiteral("check ") + response.sessionId()); });
}

inline void runDeferredDeletes()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

/// The log lines of a body of one line.
inline QStringList bodyLines(const QByteArray &body)
{
    const QString text = QString::fromUtf8(body);
    return {QStringLiteral("parser: ") + text, QStringLiteral("warning: ") + text, QStringLiteral("warning: ") + text};
}
