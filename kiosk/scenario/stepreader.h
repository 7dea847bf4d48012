// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include "scenario/step.h"
#include "scenario/yamlreader.h"

namespace kiosk {
/// Reads a step: a verb alone, or VERB: VALUE. Mistakes go to the reader.
[[nodiscard]] Step readStep(const YAML::Node &node, YamlReader &reader);

/// Reads a map of the plugin's settings.
[[nodiscard]] YamlReader::ReadNode pluginSettings(YamlReader &reader, QVariantMap &target);
} // namespace kiosk
