// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QMap>
#include <QString>

class QXmlStreamReader;

/// An answer of the cash service: its result code, its error text, and the one place where a received body becomes an
/// object.
///
/// The wire format: a root element "Response" (no SOAP envelope around it) with the attributes "Operation" and
/// "ResultCode", and one child element with text only for each property. Unknown children are no error.
///
/// The HTTP client calls parse() with the body of a reply and tells the two kinds of answer apart by dynamic_cast.
/// Answers are values: they are copied, compared and sent through signals.
class BaseParkomatResponse
{
public:
    /// From element name to element text; names are case-sensitive.
    using Properties = QMap<QString, QString>;

    /// The only result code that means success.
    static constexpr int SUCCESS = 1;

    /// Result code -1, no error text.
    BaseParkomatResponse() = default;
    explicit BaseParkomatResponse(int resultCode) : m_resultCode(resultCode) {}
    BaseParkomatResponse(const BaseParkomatResponse &) = default;
    /// Takes over the error text of @a other, which is left without one.
    BaseParkomatResponse(BaseParkomatResponse &&other) noexcept;
    BaseParkomatResponse &operator=(const BaseParkomatResponse &) = default;
    /// Exchanges the error texts and copies the result code.
    BaseParkomatResponse &operator=(BaseParkomatResponse &&other) noexcept;
    virtual ~BaseParkomatResponse() = default;

    /// Fills the fields from @a properties. A missing or malformed one leaves its field empty; nothing is reported.
    /// @return whether the result code is SUCCESS.
    virtual bool parseProperties(const Properties &properties) = 0;

    /// Writes the whole body to the log, one line each, then reads it.
    /// @return a ParkingCheckResponse or a ParkInfoPayResponse that the caller deletes; null when the body is no answer
    /// of the cash service. A body that breaks off behind its root's start tag is one, with the properties that came
    /// before.
    [[nodiscard]] static BaseParkomatResponse *parse(const QString &text);
    /// The XML declaration decides on the encoding of @a data; only the log takes it for UTF-8.
    [[nodiscard]] static BaseParkomatResponse *parse(const QByteArray &data);
    /// As above, without the log. @param reader may be null; it is read up to the root's end and no further.
    [[nodiscard]] static BaseParkomatResponse *parse(QXmlStreamReader *reader);

    [[nodiscard]] int resultCode() const { return m_resultCode; }
    void setResultCode(const int &resultCode) { m_resultCode = resultCode; }

    [[nodiscard]] QString errorInfo() const { return m_errorInfo; }
    void setErrorInfo(const QString &errorInfo) { m_errorInfo = errorInfo; }

    /// By result code alone: the error text is deliberately left out, here and in the answers built on this.
    friend bool operator==(const BaseParkomatResponse &left, const BaseParkomatResponse &right)
    {
        return left.m_resultCode == right.m_resultCode;
    }
    friend bool operator!=(const BaseParkomatResponse &left, const BaseParkomatResponse &right)
    {
        return !(left == right);
    }

protected:
    /// Reads an answer of one operation into this object.
    /// @param operation the operation's name in lower case.
    /// @return what parseProperties() returns; false, with nothing changed, when it is no answer of that operation.
    bool parseOperation(QXmlStreamReader *reader, const QString &operation);

private:
    int m_resultCode = -1;
    QString m_errorInfo;
};
