// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "messagebus.h"

#include "kiosklog.h"

namespace kiosk {
void MessageBus::take(const QString &type, const QVariantMap &message)
{
    qCInfo(KIOSK_LOG) << "nobody takes the form's message" << type << message;
}
} // namespace kiosk
