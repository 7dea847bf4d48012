// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "parkomatrequestwriter.h"

#include "parkomatdatastorage.h"
#include "parkomatsettings.h"
#include "parkomattimestamp.h"

#include <QTextCodec>

namespace {
// With room to spare: the text is allocated once.
constexpr int LONGEST_DOCUMENT = 1000;
} // namespace

ParkomatRequestWriter::ParkomatRequestWriter()
    : m_writer(&m_document), m_now(LocalMoment::now()), m_offset(ParkomatTimeStamp::offset(m_now.utc()))
{
    // By name the codec would be looked up for each request.
    static QTextCodec *const utf8 = QTextCodec::codecForName("UTF-8");
    m_document.reserve(LONGEST_DOCUMENT);
    m_writer.setCodec(utf8);
    m_writer.setAutoFormatting(true);
    m_writer.setAutoFormattingIndent(4);
}

void ParkomatRequestWriter::writeStart(const QString &operation)
{
    m_writer.writeStartDocument();
    m_writer.writeStartElement(QStringLiteral("Request"));
    writeAttribute(QStringLiteral("RecordVersion"), ParkomatSettings().recordVersion());
    // Always 1, whatever the journal's counter says.
    writeAttribute(QStringLiteral("NumRequest"), QStringLiteral("1"));
    writeAttribute(QStringLiteral("Operation"), operation);
}

void ParkomatRequestWriter::writeAttribute(const QString &name, const QString &value)
{
    m_writer.writeAttribute(name, value);
}

void ParkomatRequestWriter::writeHeader(const ParkomatCardData &card)
{
    const ParkomatSettings settings;
    writeTextElement(QStringLiteral("PartnerId"), settings.partnerId());
    writeTextElement(QStringLiteral("ParkingId"), settings.parkingId());
    writeTextElement(QStringLiteral("TermId"), settings.termId());
    writeTextElement(QStringLiteral("SessionId"), ParkomatDataStorage().getNewSessionId());
    writeTextElement(QStringLiteral("CardUid"), card.uidHex());
    writeTextElement(QStringLiteral("CardId"), card.id());
    writeTextElement(QStringLiteral("RequestTime"), ParkomatTimeStamp::render(m_now, m_offset));
}

void ParkomatRequestWriter::writeStartElement(const QString &name)
{
    m_writer.writeStartElement(name);
}

void ParkomatRequestWriter::writeTextElement(const QString &name, const QString &text)
{
    m_writer.writeTextElement(name, text);
}

void ParkomatRequestWriter::writeTimeElement(const QString &name, const QDateTime &moment)
{
    writeTextElement(name, ParkomatTimeStamp::render(moment, m_offset));
}

QString ParkomatRequestWriter::finish()
{
    m_writer.writeEndDocument();
    return m_document;
}
