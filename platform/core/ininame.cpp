// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "core/ininame.h"

namespace {
bool isPlain(ushort c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '-' ||
           c == '.';
}

QString unescaped(std::string_view written)
{
    const QString text = QString::fromUtf8(written.data(), static_cast<int>(written.size()));
    QString name;
    for (int i = 0; i < text.size(); ++i) {
        if (text.at(i) == QLatin1Char('\\')) {
            name += QLatin1Char('/');
            continue;
        }
        if (text.at(i) == QLatin1Char('%')) {
            const bool isWide = text.midRef(i + 1, 1) == QLatin1String("U");
            const QStringRef digits = isWide ? text.midRef(i + 2, 4) : text.midRef(i + 1, 2);
            bool isCode = false;
            const ushort code = digits.toUShort(&isCode, 16);
            if (isCode && digits.size() == (isWide ? 4 : 2)) {
                name += QChar(code);
                i += digits.size() + (isWide ? 1 : 0);
                continue;
            }
        }
        name += text.at(i);
    }
    return name;
}
} // namespace

bool IniName::isName(std::string_view written, const QString &name)
{
    int at = 0;
    for (const char c : written) {
        const bool isItself = static_cast<signed char>(c) >= 0 && c != '%' && c != '\\';
        if (!isItself)
            return unescaped(written) == name;
        // Plain characters stand for themselves, so the first that differs decides.
        if (at == name.size() || name.at(at) != QLatin1Char(c))
            return false;
        ++at;
    }
    return at == name.size();
}

QByteArray IniName::written(const QString &name)
{
    QByteArray text;
    for (const QChar c : name) {
        const ushort code = c.unicode();
        if (code == '/')
            text += '\\';
        else if (isPlain(code))
            text += static_cast<char>(code);
        else if (code <= 0xff)
            text += '%' + QByteArray::number(code, 16).rightJustified(2, '0').toUpper();
        else
            text += "%U" + QByteArray::number(code, 16).rightJustified(4, '0').toUpper();
    }
    return text;
}
