// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include <QObject>

/// The least that Qt loads as a plugin.
class EmptyPlugin : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.trelm.terminal.plugins.empty")
};

#include "emptyplugin.moc"
