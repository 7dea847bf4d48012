// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "bus/logbinary.h"

#include "bus/visiblecontrols.h"

#include <QTextCodec>

QDebug operator<<(QDebug debug, const logbinary &binary)
{
    const QTextCodec *codec = QTextCodec::codecForName(binary.m_encoding);
    const QString text = codec == nullptr ? QString::fromLatin1(binary.m_bytes.constData(), binary.m_bytes.size())
                                          : codec->toUnicode(binary.m_bytes);
    const QDebugStateSaver saver(debug);
    debug.noquote() << VisibleControls::in(text, VisibleControls::LineEnds::KEPT);
    return debug;
}
