// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include <QObject>
#include <QtPlugin>

/// A plugin of Qt, but of an interface that is not the terminal's.
class OtherPlugin : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.example.other")
};

#include "otherplugin.moc"
