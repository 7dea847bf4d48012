// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "support/zone.h"

#include <QtGlobal>

#include <time.h>

Zone::Zone(const QByteArray &name) : m_wasSet(qEnvironmentVariableIsSet("TZ")), m_before(qgetenv("TZ"))
{
    qputenv("TZ", name);
    ::tzset();
}

Zone::~Zone()
{
    if (m_wasSet)
        qputenv("TZ", m_before);
    else
        qunsetenv("TZ");
    ::tzset();
}
