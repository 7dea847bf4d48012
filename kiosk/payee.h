// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "core/providerparameter.h"

#include <QList>

class Provider;
class QObject;

namespace kiosk {
/// The one payee of this terminal: parking.
namespace Payee {
constexpr qint64 PROVIDER_ID = 18156;

// Names of parameters that the terminal reads itself.
constexpr auto CARD_NUMBER = "card_num";
constexpr auto SUM_DUE = "SummToPay";
constexpr auto PARKING_SESSION = "UIN";

/// The payee with its seven parameters, still without values. @param owner becomes its parent.
[[nodiscard]] Provider *makeProvider(QObject *owner);
/// @return an empty text where there is no parameter of that name.
[[nodiscard]] QString valueOf(const QList<ProviderParameter> &parameters, const char *name);
} // namespace Payee
} // namespace kiosk
