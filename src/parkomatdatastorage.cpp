// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "parkomatdatastorage.h"

#include "bus/logbinary.h"
#include "core/terminalappsettings.h"
#include "extension/cryptedsettingsstorage.h"
#include "extension/dircreator.h"
#include "localmoment.h"
#include "parkomatlog.h"
#include "parkomatsettings.h"

#include <QDate>
#include <QDir>
#include <QJsonDocument>
#include <QLocale>
#include <QMutexLocker>

const QString ParkomatDataStorage::MAIN_FILE =
    QStringLiteral("%1/parkomat/s_main.enc").arg(TerminalAppSettings().workDir());
const QString ParkomatDataStorage::BACK_FILE =
    QStringLiteral("%1/parkomat/s_back.enc").arg(TerminalAppSettings().workDir());
QMutex ParkomatDataStorage::_dataMutex;

namespace {
constexpr char GROUP[] = "PARKOMAT";
constexpr char RECORD[] = "data";
constexpr char OPERATION[] = "operation";
constexpr char DATE[] = "date";
constexpr char DATE_FORMAT[] = "yyyy.MM.dd";

constexpr int SHORTEST_TERM_ID = 4;
} // namespace

ParkomatDataStorage::ParkomatDataStorage(QObject *parent) : QObject(parent)
{
    const QString directory = QDir::fromNativeSeparators(TerminalAppSettings().workDir()) + QStringLiteral("/parkomat");
    DirCreator::checkAndCreate(directory, DirCreator::DEFAULT_ALL);
}

bool ParkomatDataStorage::getData(QSettings *storage, QVariantMap &data)
{
    data.clear();
    if (storage == nullptr)
        return false;

    storage->beginGroup(QLatin1String(GROUP));
    // The default is no Base64: an absent record is reported below as one that cannot be read.
    const QByteArray text = storage->value(QLatin1String(RECORD), QStringLiteral("{}")).toString().trimmed().toLatin1();
    storage->endGroup();
    if (text.isEmpty())
        return false;

    const QByteArray json = QByteArray::fromBase64(text);
    QJsonParseError error = {};
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError) {
        qCCritical(DEFAULT_LOG).noquote() << error.errorString() << logbinary(json, "UTF-8");
        return false;
    }
    data = document.toVariant().toMap();
    return true;
}

void ParkomatDataStorage::setData(QSettings *storage, const QVariantMap &data)
{
    if (storage == nullptr)
        return;

    storage->beginGroup(QLatin1String(GROUP));
    if (!data.isEmpty())
        storage->remove(QLatin1String(RECORD));
    else
        storage->setValue(
            QLatin1String(RECORD),
            QString::fromLatin1(QJsonDocument::fromVariant(data).toJson(QJsonDocument::Compact).toBase64()));
    storage->endGroup();
    storage->sync();
}

void ParkomatDataStorage::setOperation(quint16 operation)
{
    const QMutexLocker locker(&_dataMutex);
    CryptedSettingsStorage main(MAIN_FILE, nullptr);
    CryptedSettingsStorage back(BACK_FILE, nullptr);
    const QVariantMap data = {
        {QLatin1String(OPERATION), static_cast<int>(operation)},
        {QLatin1String(DATE), QLocale::c().toString(LocalMoment::now().date(), QLatin1String(DATE_FORMAT))}};
    setData(&main, data);
    setData(&back, data);
}

QVariantMap ParkomatDataStorage::reconciled()
{
    const QMutexLocker locker(&_dataMutex);
    CryptedSettingsStorage main(MAIN_FILE, nullptr);
    CryptedSettingsStorage back(BACK_FILE, nullptr);
    QVariantMap mainData;
    QVariantMap backData;
    getData(&main, mainData);
    getData(&back, backData);
    if (mainData == backData)
        return mainData;
    if (mainData.isEmpty()) {
        setData(&main, backData);
        return backData;
    }
    setData(&back, mainData);
    return mainData;
}

quint16 ParkomatDataStorage::getPrevOperation()
{
    const QVariantMap data = reconciled();
    const QString text = data.value(QLatin1String(DATE)).toString();
    // No record is the usual case: Qt's parser takes its time for an empty text, too.
    const QDate date = text.isEmpty() ? QDate() : QDate::fromString(text, QLatin1String(DATE_FORMAT));
    if (date != LocalMoment::now().date())
        return 0;
    return static_cast<quint16>(data.value(QLatin1String(OPERATION)).toUInt());
}

void ParkomatDataStorage::addOperation()
{
    setOperation(static_cast<quint16>(getPrevOperation() + 1));
}

QString ParkomatDataStorage::getNewSessionId()
{
    QString termId = ParkomatSettings().termId().trimmed();
    // Deliberately in place of the identifier, not in front of it.
    if (termId.size() < SHORTEST_TERM_ID)
        termId = QString(SHORTEST_TERM_ID - termId.size(), QLatin1Char('0'));

    const int n = getPrevOperation() + 1;
    // Three readings of the clock, each for its own part.
    const QString seq = LocalMoment::now().dayOfYear() + QString::number(n).rightJustified(3, QLatin1Char('0'));
    const QString year = LocalMoment::now().shortYear();
    return termId + year + LocalMoment::now().shortTime() + seq;
}
