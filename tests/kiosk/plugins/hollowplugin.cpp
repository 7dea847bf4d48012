// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "plugininterface/ipaybyprovider.h"

#include <QObject>

/// Says that it has the terminal's interface, and has not.
class HollowPlugin : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID PAY_BY_PROVIDER_IID)
};

#include "hollowplugin.moc"
