// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "core/trelminfo.h"
#include "ledger/ledgerentry.h"
#include "plugin/pluginidentity.h"

#include <QVector>

/// What the screens of the looks tests show: values such as terminals have, and rather long ones.
namespace Samples {
/// 7 March 2024, 14:05:09.
[[nodiscard]] QDateTime now();
[[nodiscard]] TrelmInfo terminal();
[[nodiscard]] kiosk::PluginIdentity plugin();
/// @param comission what the terminal takes on top.
[[nodiscard]] kiosk::LedgerEntry payment(kiosk::Outcome outcome, const QString &due, const QString &cash,
                                         const QString &comission = {});
/// One payment of each outcome.
[[nodiscard]] QVector<kiosk::LedgerEntry> ledger();
} // namespace Samples
