// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "ledger/ledgerentry.h"

#include <chrono>

class Payment;
class SessionManager;

namespace kiosk {
class PluginHost;

/// How long the plugin may take for a commit: what comes later is not known to be confirmed.
[[nodiscard]] std::chrono::milliseconds commitTimeLimit();

/// Has the plugin register the payment with the payee. Blocks until the plugin returns; events are processed meanwhile,
/// so plugin and session must not go before that.
/// Where nothing is to be paid the plugin is not asked, and there is nothing left to confirm. Nor is a plugin asked
/// that takes no part in commits (needPaymentPredProcessing): nobody is there to confirm the payment then.
/// @return Confirmed or Unconfirmed: the plugin tells nothing, so what is not seen to have worked is not known.
/// Nor is anything of a root object that still owes the answer to an earlier question.
[[nodiscard]] Outcome commitPayment(PluginHost &host, SessionManager &session, const Payment &payment);
} // namespace kiosk
