// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace kiosk {
/// What the service menu and the screen of a terminal without a plugin tell about the plugin. What is not known is
/// empty.
struct PluginIdentity
{
    // Of the file, known before it is loaded.
    QString path;
    /// Which interface the file says it has.
    QString interfaceId;
    /// Which Qt it was built with: "5.15.8".
    QString qtVersion;

    // As the plugin tells it.
    QString description;
    QString version;
    /// When it was built, ISO 8601 without a zone.
    QString build;
    /// 0: not known.
    int id = 0;
    QString stringId;
};
} // namespace kiosk
