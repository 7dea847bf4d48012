// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QSettings>

#include <optional>

/// The plain form of a settings file, before it is sealed: one CBOR map from full key ("GROUP/key") to value.
///
/// Text, numbers, booleans, bytes, moments, lists and maps come back as they were; whole numbers come back as 64-bit
/// ones, and one too large for a signed one as its text. Everything else comes back as its text.
class SettingsMapCodec
{
public:
    [[nodiscard]] static QByteArray encode(const QSettings::SettingsMap &map);
    /// @return nothing when the bytes are not exactly one such map.
    [[nodiscard]] static std::optional<QSettings::SettingsMap> decode(const QByteArray &bytes);
};
