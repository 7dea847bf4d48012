// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "terminal.h"

#include "core/terminalappsettings.h"
#include "parkomatdatastorage.h"
#include "parkomatsettings.h"

#include <QFile>
#include <QLoggingCategory>

#include <stdexcept>

namespace {
void dropMessage(QtMsgType, const QMessageLogContext &, const QString &) {}

void writeSettings()
{
    TerminalAppSettings().setTrelmId(4224);
    ParkomatSettings settings;
    settings.setCashServiceHost(QStringLiteral("192.168.10.20"));
    settings.setCashServicePort(13006);
    settings.setCashServicePath(QStringLiteral("/api"));
    settings.setPartnerId(QStringLiteral("dravik"));
    settings.setParkingId(QStringLiteral("12"));
    settings.setTermId(QStringLiteral("004224"));
    if (settings.termId() != QLatin1String("004224"))
        throw std::runtime_error("the settings were not written to the work directory");
}

void removeJournal()
{
    for (const QString &file : {ParkomatDataStorage::MAIN_FILE, ParkomatDataStorage::BACK_FILE}) {
        if (QFile::exists(file) && !QFile::remove(file))
            throw std::runtime_error("a journal file cannot be removed");
    }
}
} // namespace

void Terminal::reset()
{
    qInstallMessageHandler(dropMessage);
    QLoggingCategory::setFilterRules(QString());
    writeSettings();
    removeJournal();
}

QVariantMap Terminal::cardMap()
{
    return {{QStringLiteral("id"), QStringLiteral("305419896")},
            {QStringLiteral("cardId"), QStringLiteral("0000123456")},
            {QStringLiteral("pdata"), QStringLiteral("12093514040703240000000000000001")}};
}
