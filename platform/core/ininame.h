// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

#include <string_view>

/// How the names of sections and keys stand in an ini file: QSettings' escapes, "%" and a code.
namespace IniName {
/// Whether the name as it stands in the file means @a name.
[[nodiscard]] bool isName(std::string_view written, const QString &name);
[[nodiscard]] QByteArray written(const QString &name);
} // namespace IniName
