// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "extension/settingsmapcodec.h"

#include <QCborArray>
#include <QCborMap>
#include <QCborValue>

#include <limits>

namespace {
QCborValue toCbor(const QVariant &value)
{
    constexpr auto highest = static_cast<qulonglong>(std::numeric_limits<qint64>::max());
    switch (static_cast<QMetaType::Type>(value.type())) {
    case QMetaType::QVariantMap: {
        QCborMap map;
        const QVariantMap entries = value.toMap();
        for (auto it = entries.cbegin(); it != entries.cend(); ++it)
            map.insert(it.key(), toCbor(it.value()));
        return map;
    }
    case QMetaType::QVariantList: {
        QCborArray array;
        const QVariantList entries = value.toList();
        for (const QVariant &entry : entries)
            array.append(toCbor(entry));
        return array;
    }
    case QMetaType::ULongLong:
        // CBOR values in Qt are signed: the number would come back negative.
        return value.toULongLong() > highest ? QCborValue(value.toString()) : QCborValue::fromVariant(value);
    default:
        return QCborValue::fromVariant(value);
    }
}
} // namespace

QByteArray SettingsMapCodec::encode(const QSettings::SettingsMap &map)
{
    return toCbor(map).toCbor();
}

std::optional<QSettings::SettingsMap> SettingsMapCodec::decode(const QByteArray &bytes)
{
    QCborParserError error = {};
    const QCborValue value = QCborValue::fromCbor(bytes, &error);
    if (error.error != QCborError::NoError || error.offset != bytes.size() || !value.isMap())
        return std::nullopt;
    return value.toMap().toVariantMap();
}
