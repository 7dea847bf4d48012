// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "baseparkomatresponse.h"

#include "bus/loglist.h"
#include "parkinfopayresponse.h"
#include "parkingcheckresponse.h"
#include "parkomatlog.h"

#include <QXmlStreamReader>

#include <optional>
#include <utility>

namespace {
// In characters. Far more than an answer needs, and so little that a body cannot grow much by repeating one.
constexpr int LONGEST_ENTITY = 64;

struct Root
{
    /// In lower case: its case is free on the wire.
    QString operation;
    int resultCode;
};

std::optional<Root> readRoot(QXmlStreamReader *reader)
{
    if (reader == nullptr)
        return std::nullopt;
    reader->setEntityExpansionLimit(LONGEST_ENTITY);
    if (!reader->readNextStartElement() || reader->name() != QLatin1String("Response"))
        return std::nullopt;
    const QXmlStreamAttributes attributes = reader->attributes();
    return Root{attributes.value(QLatin1String("Operation")).toString().toLower(),
                attributes.value(QLatin1String("ResultCode")).toInt(nullptr, 10)};
}

BaseParkomatResponse::Properties readProperties(QXmlStreamReader *reader)
{
    BaseParkomatResponse::Properties properties;
    while (reader->readNextStartElement()) {
        const QString text = reader->readElementText(QXmlStreamReader::ErrorOnUnexpectedElement);
        // Not so where the document breaks off: half an amount must not be taken for an amount.
        if (reader->isEndElement())
            properties.insert(reader->name().toString(), text);
    }
    return properties;
}
} // namespace

BaseParkomatResponse::BaseParkomatResponse(BaseParkomatResponse &&other) noexcept
    : m_resultCode(other.m_resultCode), m_errorInfo(std::exchange(other.m_errorInfo, QString()))
{}

BaseParkomatResponse &BaseParkomatResponse::operator=(BaseParkomatResponse &&other) noexcept
{
    m_resultCode = other.m_resultCode;
    m_errorInfo.swap(other.m_errorInfo);
    return *this;
}

BaseParkomatResponse *BaseParkomatResponse::parse(const QString &text)
{
    qCWarning(DEFAULT_LOG).noquote() << loglist(text.split(QLatin1Char('\n')));
    QXmlStreamReader reader(text);
    return parse(&reader);
}

BaseParkomatResponse *BaseParkomatResponse::parse(const QByteArray &data)
{
    qCWarning(DEFAULT_LOG).noquote() << loglist(QString::fromUtf8(data).split(QLatin1Char('\n')));
    QXmlStreamReader reader(data);
    return parse(&reader);
}

BaseParkomatResponse *BaseParkomatResponse::parse(QXmlStreamReader *reader)
{
    const std::optional<Root> root = readRoot(reader);
    if (!root)
        return nullptr;
    const Properties properties = readProperties(reader);
    if (root->operation == ParkInfoPayResponse::OPERATION)
        return new ParkInfoPayResponse(root->resultCode, properties);
    if (root->operation == ParkingCheckResponse::OPERATION)
        return new ParkingCheckResponse(root->resultCode, properties);
    return nullptr;
}

bool BaseParkomatResponse::parseOperation(QXmlStreamReader *reader, const QString &operation)
{
    const std::optional<Root> root = readRoot(reader);
    if (!root || root->operation != operation)
        return false;
    m_resultCode = root->resultCode;
    return parseProperties(readProperties(reader));
}
