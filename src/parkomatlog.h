// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QLoggingCategory>

/// Qt's own category, "default". Lines written with qCWarning(DEFAULT_LOG) are what qWarning() would write, but cost
/// nothing while the category is switched off.
inline const QLoggingCategory &DEFAULT_LOG()
{
    return *QLoggingCategory::defaultCategory();
}
