// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "localmoment.h"
#include "parkomatcarddata.h"

#include <QXmlStreamWriter>

/// Writes what both requests to the cash service have in common: the document, the root and its header.
///
/// Used on the stack for one rendering. It draws fresh values: the settings, a new session identifier, the clock.
class ParkomatRequestWriter
{
public:
    ParkomatRequestWriter();

    /// Opens the document with the root element "Request", its record version, number and operation.
    void writeStart(const QString &operation);
    void writeAttribute(const QString &name, const QString &value);
    /// The seven elements that every request begins with, "PartnerId" to "RequestTime".
    void writeHeader(const ParkomatCardData &card);
    void writeStartElement(const QString &name);
    void writeTextElement(const QString &name, const QString &text);
    /// A moment in local time with the offset of the system's zone as it is now, not as it was at that moment.
    void writeTimeElement(const QString &name, const QDateTime &moment);
    /// Closes every element that is open. @return the whole document.
    [[nodiscard]] QString finish();

private:
    QString m_document;
    QXmlStreamWriter m_writer;
    const LocalMoment m_now;
    const QString m_offset;
};
