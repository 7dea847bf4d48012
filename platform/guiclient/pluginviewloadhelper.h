// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPointer>

class FormViewer;

/// Tells where the views of one plugin come from and where they go: plugin, project folder, viewer.
///
/// Made by the plugin, which becomes its parent. It loads nothing by itself, and holds the viewer weakly: a payment's
/// form goes before the plugin does.
class PluginViewLoadHelper : public QObject
{
    Q_OBJECT

public:
    /// @param projectDir empty where the session has no form project.
    /// @param viewer may be null.
    PluginViewLoadHelper(int pluginId, const QString &pluginStringId, const QString &projectDir, FormViewer *viewer);

    [[nodiscard]] int pluginId() const { return m_pluginId; }
    [[nodiscard]] QString pluginStringId() const { return m_pluginStringId; }
    [[nodiscard]] QString projectDir() const { return m_projectDir; }
    /// Null once the viewer has gone.
    [[nodiscard]] FormViewer *viewer() const;

private:
    int m_pluginId;
    QString m_pluginStringId;
    QString m_projectDir;
    QPointer<FormViewer> m_viewer;
};
