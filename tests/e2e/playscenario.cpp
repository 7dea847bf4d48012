// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "ledger/ledger.h"

#include "support/cashservice.h"
#include "support/workdirectory.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QTextStream>

// Plays one scenario: a cash service whose clock stands still, the kiosk in a work directory of its own, drawn into
// memory. Behind the scenario the terminal's ledger is held against the cash service's, and what went over the wire
// against wire.txt. Exit status: the kiosk's, or 3 where they do not agree.

namespace {
using kiosk::LedgerEntry;
using kiosk::Outcome;

constexpr int DISAGREEMENT = 3;

/// What one side knows of a payment and the other should.
struct Registered
{
    qint64 uid = 0;
    /// In hundredths.
    qint64 amount = 0;
    QString session;
};

/// The payments that the cash service has taken: not those that it has refused, nor the repetitions of one.
QVector<Registered> registered(const QJsonArray &payments)
{
    QVector<Registered> found;
    for (const QJsonValue &payment : payments) {
        if (payment[QStringLiteral("outcome")].toString() == QStringLiteral("registered"))
            found.append({payment[QStringLiteral("uin")].toVariant().toLongLong(),
                          payment[QStringLiteral("amount")].toVariant().toLongLong(),
                          payment[QStringLiteral("sessionId")].toString()});
    }
    return found;
}

/// What is wrong with a payment by itself, and with what the cash service has under its number.
QStringList disagreements(const LedgerEntry &entry, const QVector<Registered> &registered)
{
    QStringList found;
    if (entry.cash != entry.total + entry.change)
        found.append(QStringLiteral("the cash is not total and change together"));
    if (entry.outcome == Outcome::Open || entry.outcome == Outcome::Committing)
        found.append(QStringLiteral("it has no outcome"));
    qint64 times = 0;
    for (const Registered &one : registered) {
        if (one.uid != entry.uid)
            continue;
        ++times;
        if (one.amount != entry.total.value())
            found.append(QStringLiteral("the cash service has %1 for %2").arg(one.amount).arg(entry.total.value()));
        if (entry.outcome == Outcome::Interrupted)
            found.append(QStringLiteral("interrupted, but the cash service has it"));
    }
    if (times > 1)
        found.append(QStringLiteral("the cash service has it %1 times").arg(times));
    // Where nothing was due nobody was asked.
    if (times == 0 && entry.outcome == Outcome::Confirmed && entry.total > FixNumber())
        found.append(QStringLiteral("confirmed, but the cash service does not have it"));
    for (QString &what : found)
        what = QStringLiteral("payment %1: %2").arg(entry.uid).arg(what);
    return found;
}

/// Both ways: no payment on one side that the other cannot account for.
QStringList disagreements(const QVector<LedgerEntry> &entries, const QVector<Registered> &registered)
{
    QStringList found;
    QSet<qint64> uids;
    for (const LedgerEntry &entry : entries) {
        found += disagreements(entry, registered);
        uids.insert(entry.uid);
    }
    for (const Registered &one : registered) {
        if (!uids.contains(one.uid))
            found.append(QStringLiteral("the cash service has payment %1, the terminal has not").arg(one.uid));
        if (one.session.isEmpty())
            found.append(QStringLiteral("payment %1: registered without a session").arg(one.uid));
    }
    return found;
}

/// What wire.txt asks of the scenario's requests, and they have not; or what is wrong with that file itself.
QStringList missingOnTheWire(const QFileInfo &scenario, const CashService &service)
{
    QFile file(QStringLiteral(WIRE_FILE));
    if (!file.open(QIODevice::ReadOnly))
        return {QStringLiteral(WIRE_FILE ": ") + file.errorString()};
    static const QRegularExpression row(QStringLiteral("^(\\S+)\\s+(\\S+)\\s+(.*)$"));
    QStringList missing;
    const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    for (const QString &line : lines) {
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        const QRegularExpressionMatch match = row.match(line);
        if (!match.hasMatch() || !scenario.dir().exists(match.captured(1) + QStringLiteral(".yaml")))
            missing.append(QStringLiteral("%1: no row, or of no scenario: %2").arg(QStringLiteral(WIRE_FILE), line));
        if (match.captured(1) != scenario.baseName())
            continue;
        const QStringList bodies = service.requests(match.captured(2));
        if (bodies.isEmpty())
            missing.append(QStringLiteral("there was no %1").arg(match.captured(2)));
        for (const QString &body : bodies) {
            if (!body.contains(match.captured(3)))
                missing.append(QStringLiteral("there is no \"%1\" in %2").arg(match.captured(3), body));
        }
    }
    return missing;
}

int play(const QString &scenario, quint16 port)
{
    QProcess kiosk;
    kiosk.setProcessChannelMode(QProcess::ForwardedChannels);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    kiosk.setProcessEnvironment(environment);
    kiosk.start(QStringLiteral(KIOSK_PROGRAM),
                {QStringLiteral("--play"), scenario, QStringLiteral("--work-dir"), WorkDirectory::path(),
                 QStringLiteral("--plugin-file"), QStringLiteral(PLUGIN_FILE), QStringLiteral("--set"),
                 QStringLiteral("csPort=%1").arg(port), QStringLiteral("--bench"),
                 QStringLiteral("http://127.0.0.1:%1/admin").arg(port)});
    kiosk.waitForFinished(-1);
    return kiosk.exitStatus() == QProcess::NormalExit ? kiosk.exitCode() : -1;
}
} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const CashService service({QStringLiteral("--clock"), QStringLiteral("2024-03-07T14:05:09")});
    const QString scenario = QCoreApplication::arguments().value(1);
    const int status = play(scenario, service.port());
    if (status != 0)
        return status;
    const kiosk::Ledger ledger(WorkDirectory::path() + QStringLiteral("/kiosk.db"));
    const QStringList found = disagreements(ledger.latest(1000), registered(service.payments())) +
                              missingOnTheWire(QFileInfo(scenario), service);
    for (const QString &disagreement : found)
        QTextStream(stderr) << disagreement << '\n';
    return found.isEmpty() ? 0 : DISAGREEMENT;
}
