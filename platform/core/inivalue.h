// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

#include <string_view>

/// How text values stand in an ini file: QSettings' escapes, which are C's, and quotes.
namespace IniValue {
[[nodiscard]] QString read(std::string_view written);
[[nodiscard]] QByteArray written(const QString &value);
} // namespace IniValue
