// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

// Bodies as "deflate" and "gzip" pack them. Qt's own packing is the first one behind four bytes of length; the second
// one has another head and tail around the same stream.

inline QByteArray deflated(const QByteArray &body)
{
    return qCompress(body).mid(4);
}

inline QByteArray gzipped(const QByteArray &body)
{
    const auto littleEndian = [](quint32 number) {
        QByteArray bytes;
        for (int i = 0; i < 4; ++i)
            bytes += static_cast<char>((number >> (8 * i)) & 0xff);
        return bytes;
    };
    quint32 checksum = 0xffffffff;
    for (const char c : body) {
        checksum ^= static_cast<quint8>(c);
        for (int bit = 0; bit < 8; ++bit)
            checksum = (checksum >> 1) ^ ((checksum & 1) != 0 ? 0xedb88320 : 0);
    }
    const QByteArray stream = deflated(body);
    return QByteArrayLiteral("\x1f\x8b\x08\0\0\0\0\0\0\xff") + stream.mid(2, stream.size() - 6) +
           littleEndian(~checksum) + littleEndian(static_cast<quint32>(body.size()));
}
