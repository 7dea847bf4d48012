// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <yaml-cpp/yaml.h>

#include <optional>
#include <string>

namespace kiosk {
/// Where a second document begins in the text, if there is one: on what is written in it. The library's own way to load
/// them all never ends where a comma stands between documents.
/// @throw YAML::Exception
[[nodiscard]] std::optional<YAML::Mark> secondDocument(const std::string &text);
} // namespace kiosk
