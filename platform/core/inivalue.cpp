// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "core/inivalue.h"

#include <algorithm>

namespace {
struct Escape
{
    char letter;
    char meaning;
};

// What stands for each other in values, besides \x and a code: C's escapes.
constexpr Escape ESCAPES[] = {{'a', '\a'}, {'b', '\b'}, {'f', '\f'}, {'n', '\n'},  {'r', '\r'}, {'t', '\t'},
                              {'v', '\v'}, {'"', '"'},  {'?', '?'},  {'\'', '\''}, {'\\', '\\'}};

bool isHexDigit(ushort c)
{
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

const Escape *escapeFor(ushort code)
{
    const auto *escape =
        std::find_if(std::begin(ESCAPES), std::end(ESCAPES), [code](const Escape &e) { return code == e.meaning; });
    return escape == std::end(ESCAPES) ? nullptr : escape;
}

/// Reads the value one character after the other; see read().
class ValueReader
{
public:
    explicit ValueReader(const QString &text) : m_text(text) {}

    QString read()
    {
        while (m_at < m_text.size()) {
            const QChar c = m_text.at(m_at++);
            if (c == QLatin1Char('\\'))
                readEscape();
            else if (c == QLatin1Char('"'))
                readQuote();
            else
                m_value += c;
            if (c == QLatin1Char('\\'))
                m_fixedSize = m_value.size();
        }
        if (!m_isQuoted)
            chopBlanks();
        return m_value;
    }

private:
    void readQuote()
    {
        // Blanks between the value's start and its quotes, or behind them, are no part of it.
        if (!m_isQuoted)
            chopBlanks();
        m_isOpen = !m_isOpen;
        m_isQuoted = true;
        if (!m_isOpen)
            skipBlanks();
    }

    void readEscape()
    {
        if (m_at == m_text.size())
            return;
        const QChar c = m_text.at(m_at++);
        const auto *escape = std::find_if(std::begin(ESCAPES), std::end(ESCAPES),
                                          [c](const Escape &e) { return c == QLatin1Char(e.letter); });
        if (escape != std::end(ESCAPES)) {
            m_value += QLatin1Char(escape->meaning);
        } else if (c == QLatin1Char('x') && m_at < m_text.size() && isHexDigit(m_text.at(m_at).unicode())) {
            readCode(16);
        } else if (c >= QLatin1Char('0') && c <= QLatin1Char('7')) {
            --m_at;
            readCode(8);
        } else if (c == QLatin1Char('\r') && m_at < m_text.size() && m_text.at(m_at) == QLatin1Char('\n')) {
            // A line that goes on; "\n" alone falls out below, as does any escape that means nothing.
            ++m_at;
        }
    }

    void readCode(int base)
    {
        ushort code = 0;
        for (; m_at < m_text.size(); ++m_at) {
            const ushort c = m_text.at(m_at).unicode();
            if (!isHexDigit(c) || (base == 8 && (c < '0' || c > '7')))
                break;
            const int digit = c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10;
            code = static_cast<ushort>(code * base + digit);
        }
        m_value += QChar(code);
    }

    void skipBlanks()
    {
        while (m_at < m_text.size() && (m_text.at(m_at) == QLatin1Char(' ') || m_text.at(m_at) == QLatin1Char('\t')))
            ++m_at;
    }

    /// A blank that was written as an escape is meant.
    void chopBlanks()
    {
        while (m_value.size() > m_fixedSize &&
               (m_value.endsWith(QLatin1Char(' ')) || m_value.endsWith(QLatin1Char('\t'))))
            m_value.chop(1);
    }

    const QString m_text;
    QString m_value;
    int m_at = 0;
    /// Up to the last escape.
    int m_fixedSize = 0;
    bool m_isOpen = false;
    bool m_isQuoted = false;
};

/// A text that begins with "@" says what type it is of; one that merely begins so has the sign doubled.
QString withoutType(const QString &text)
{
    if (!text.startsWith(QLatin1Char('@')))
        return text;
    if (text.startsWith(QLatin1String("@@")))
        return text.mid(1);
    if (text == QLatin1String("@Invalid()"))
        return QString();
    for (const QLatin1String type : {QLatin1String("@String("), QLatin1String("@ByteArray(")}) {
        if (text.startsWith(type) && text.endsWith(QLatin1Char(')')))
            return text.mid(type.size(), text.size() - type.size() - 1);
    }
    return text;
}
} // namespace

QString IniValue::read(std::string_view written)
{
    const bool isPlain = written.find_first_of("\\\"") == std::string_view::npos;
    const QString text = QString::fromUtf8(written.data(), static_cast<int>(written.size()));
    return withoutType(isPlain ? text : ValueReader(text).read());
}

QByteArray IniValue::written(const QString &value)
{
    const QString text = value.startsWith(QLatin1Char('@')) ? QLatin1Char('@') + value : value;
    QByteArray bytes;
    bool needsQuotes = text.startsWith(QLatin1Char(' ')) || text.endsWith(QLatin1Char(' '));
    bool isBehindCode = false;
    for (const QChar c : text) {
        const ushort code = c.unicode();
        needsQuotes = needsQuotes || code == ';' || code == ',' || code == '=';
        // A digit behind a code would be read as part of it.
        const bool isItself = code >= 0x20 && code < 0x7f && !(isBehindCode && isHexDigit(code));
        isBehindCode = false;
        if (isItself) {
            if (code == '"' || code == '\\')
                bytes += '\\';
            bytes += static_cast<char>(code);
        } else if (const Escape *escape = escapeFor(code)) {
            bytes += '\\';
            bytes += escape->letter;
        } else {
            bytes += "\\x" + QByteArray::number(code, 16);
            isBehindCode = true;
        }
    }
    return needsQuotes ? '"' + bytes + '"' : bytes;
}
