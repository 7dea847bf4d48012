// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "parkomatsettings.h"

#include "core/terminalappsettings.h"

const QString ParkomatSettings::PARKOMAT_SECTION = QStringLiteral("PARKOMAT_PLUGIN");
const QString ParkomatSettings::RECORD_VERSION = QStringLiteral("2");
const QString ParkomatSettings::PARTNER_ID = QStringLiteral("PartnerId");
const QString ParkomatSettings::PARKING_ID = QStringLiteral("ParkingId");
const QString ParkomatSettings::PARKOMAT_ID = QStringLiteral("TermId");
const QString ParkomatSettings::CASH_SERVICE_HOST = QStringLiteral("csHost");
const QString ParkomatSettings::CASH_SERVICE_PORT = QStringLiteral("csPort");
const QString ParkomatSettings::CASH_SERVICE_PATH = QStringLiteral("csPath");
const QString ParkomatSettings::PARKING_CHECK = QStringLiteral("ParkingCheck");
const QString ParkomatSettings::PARK_INFO_PAY = QStringLiteral("ParkInfoPay");

namespace {
QString stored(const QString &key, const QString &defaultValue)
{
    return TerminalAppSettings().getPluginSettingsValue(ParkomatSettings::PARKOMAT_SECTION, key, defaultValue);
}

void store(const QString &key, const QString &value)
{
    TerminalAppSettings().setPluginSettingsValue(ParkomatSettings::PARKOMAT_SECTION, key, value);
}
} // namespace

QString ParkomatSettings::cashServiceHost() const
{
    return stored(CASH_SERVICE_HOST, QStringLiteral("localhost"));
}

void ParkomatSettings::setCashServiceHost(const QString &host)
{
    store(CASH_SERVICE_HOST, host);
}

unsigned short ParkomatSettings::cashServicePort() const
{
    return static_cast<unsigned short>(stored(CASH_SERVICE_PORT, QStringLiteral("13006")).toUInt(nullptr, 10));
}

void ParkomatSettings::setCashServicePort(unsigned short port)
{
    store(CASH_SERVICE_PORT, QString::number(port));
}

QString ParkomatSettings::cashServicePath() const
{
    return stored(CASH_SERVICE_PATH, QStringLiteral("api"));
}

void ParkomatSettings::setCashServicePath(const QString &path)
{
    store(CASH_SERVICE_PATH, path);
}

QString ParkomatSettings::partnerId() const
{
    return stored(PARTNER_ID, QStringLiteral("dravik"));
}

void ParkomatSettings::setPartnerId(const QString &id)
{
    store(PARTNER_ID, id);
}

QString ParkomatSettings::parkingId() const
{
    return stored(PARKING_ID, QString());
}

void ParkomatSettings::setParkingId(const QString &id)
{
    store(PARKING_ID, id);
}

QString ParkomatSettings::termId() const
{
    return stored(PARKOMAT_ID, QString::number(TerminalAppSettings().trelmId()));
}

void ParkomatSettings::setTermId(const QString &id)
{
    store(PARKOMAT_ID, id);
}

QString ParkomatSettings::recordVersion() const
{
    return RECORD_VERSION;
}
