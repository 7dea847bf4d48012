// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "ledger/ledger.h"

#include "support/cashservice.h"
#include "support/workdirectory.h"

#include <QCoreApplication>
#include <QProcess>
#include <QTextStream>

// Plays one scenario: a cash service whose clock stands still, the kiosk in a work directory of its own, drawn into
// memory. Behind the scenario the terminal's ledger is held against the cash service's. Exit status: the kiosk's, or 3
// where the ledgers do not agree.

namespace {
using kiosk::LedgerEntry;
using kiosk::Outcome;

constexpr int DISAGREEMENT = 3;

/// What the cash service has recorded under the payment's number, in hundredths; 0: nothing.
qint64 recorded(const QJsonArray &payments, qint64 uid)
{
    qint64 sum = 0;
    for (const QJsonValue &payment : payments) {
        if (payment[QStringLiteral("uin")].toVariant().toLongLong() == uid &&
            payment[QStringLiteral("outcome")].toString() == QStringLiteral("registered"))
            sum += payment[QStringLiteral("amount")].toVariant().toLongLong();
    }
    return sum;
}

QStringList disagreements(const QVector<LedgerEntry> &entries, const QJsonArray &payments)
{
    QStringList found;
    for (const LedgerEntry &entry : entries) {
        if (entry.cash != entry.total + entry.change)
            found.append(QStringLiteral("payment %1: the cash is not total and change together").arg(entry.uid));
        if (entry.outcome == Outcome::Confirmed && recorded(payments, entry.uid) != entry.total.value())
            found.append(QStringLiteral("payment %1: confirmed, but the cash service has %2 for %3")
                             .arg(entry.uid)
                             .arg(recorded(payments, entry.uid))
                             .arg(entry.total.value()));
        if (entry.outcome == Outcome::Open || entry.outcome == Outcome::Committing)
            found.append(QStringLiteral("payment %1 has no outcome").arg(entry.uid));
    }
    return found;
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
    const int status = play(QCoreApplication::arguments().value(1), service.port());
    if (status != 0)
        return status;
    const kiosk::Ledger ledger(WorkDirectory::path() + QStringLiteral("/kiosk.db"));
    const QStringList found = disagreements(ledger.latest(1000), service.payments());
    for (const QString &disagreement : found)
        QTextStream(stderr) << disagreement << '\n';
    return found.isEmpty() ? 0 : DISAGREEMENT;
}
