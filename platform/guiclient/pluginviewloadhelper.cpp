// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "guiclient/pluginviewloadhelper.h"

#include "guiclient/formviewer.h"

PluginViewLoadHelper::PluginViewLoadHelper(int pluginId, const QString &pluginStringId, const QString &projectDir,
                                           FormViewer *viewer)
    : m_pluginId(pluginId), m_pluginStringId(pluginStringId), m_projectDir(projectDir), m_viewer(viewer)
{}

FormViewer *PluginViewLoadHelper::viewer() const
{
    return m_viewer;
}
