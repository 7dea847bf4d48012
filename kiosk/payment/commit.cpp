// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "payment/commit.h"

#include "core/paypack.h"
#include "core/terminalappsettings.h"
#include "kiosklog.h"
#include "payment/confirmationwatch.h"
#include "plugin/pluginhost.h"
#include "plugininterface/ipaybyprovider.h"

#include <QElapsedTimer>

namespace kiosk {
std::chrono::milliseconds commitTimeLimit()
{
    // The plugin waits as long: by contract it cuts the seconds to 16 bits.
    return std::chrono::seconds(static_cast<quint16>(TerminalAppSettings().onlineCheckTimeout()));
}

Outcome commitPayment(PluginHost &host, SessionManager &session, const Payment &payment)
{
    // A later check found nothing due: all of the cash is owed to the customer.
    if (payment.summ() <= FixNumber())
        return Outcome::Confirmed;
    if (host.plugin() == nullptr || !host.plugin()->needPaymentPredProcessing())
        return Outcome::Unconfirmed;
    const qint64 limit = commitTimeLimit().count();
    ConfirmationWatch watch(host.root());
    PayPack pack;
    pack.addPayment(payment);
    // Not the wall clock, which may be set meanwhile.
    QElapsedTimer clock;
    clock.start();
    host.plugin()->doPaymentPredProcessing(&session, &pack);
    const qint64 elapsed = clock.elapsed();
    const bool isConfirmed = !host.isAwaitingLateAnswer() && elapsed < limit && watch.isConfirmed();
    if (!isConfirmed)
        host.setAwaitingLateAnswer();
    const Outcome outcome = isConfirmed ? Outcome::Confirmed : Outcome::Unconfirmed;
    qCInfo(KIOSK_LOG).noquote() << "payment" << payment.uid() << "of" << payment.total().toString() << toText(outcome)
                                << "after" << elapsed << "of" << limit << "ms";
    return outcome;
}
} // namespace kiosk
