// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QLoggingCategory>

/// Qt's own category, "default". Lines written with qCWarning(DEFAULT_LOG) are what qWarning() would write, but cost
/// nothing while the category is switched off.
inline const QLoggingCategory &DEFAULT_LOG()
{
    if (const QLoggingCategory *category = QLoggingCategory::defaultCategory())
        return *category;
    // Qt's own is gone at the very end of a process, where Qt destroys plugins that their host kept.
    static const QLoggingCategory last("default");
    return last;
}
