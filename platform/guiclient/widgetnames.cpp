// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/widgetnames.h"

WidgetNames::WidgetNames(bool portrait, QObject *parent) : QObject(parent), m_portrait(portrait) {}

QString WidgetNames::messageViewFileName() const
{
    return m_portrait ? QStringLiteral("messageview-portrait.ui") : QStringLiteral("messageview.ui");
}
