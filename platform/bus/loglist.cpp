// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "bus/loglist.h"

#include "bus/visiblecontrols.h"

QDebug operator<<(QDebug debug, const loglist &entries)
{
    const QDebugStateSaver saver(debug);
    debug.noquote() << VisibleControls::in(entries.m_list.join(QLatin1Char('\n')), VisibleControls::LineEnds::KEPT);
    return debug;
}
