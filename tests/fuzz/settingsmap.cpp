// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "extension/settingsmapcodec.h"

#include "fuzztarget.h"

/// The plain bytes of a settings file: what is read can be written, and is then read as the same again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::optional<QSettings::SettingsMap> map = SettingsMapCodec::decode(FuzzTarget::bytes(data, size));
    if (!map)
        return 0;
    const QByteArray written = SettingsMapCodec::encode(*map);
    const std::optional<QSettings::SettingsMap> read = SettingsMapCodec::decode(written);
    FUZZ_REQUIRE(read.has_value());
    FUZZ_REQUIRE(read->keys() == map->keys());
    // By bytes, not by value: a number that is none differs from itself.
    FUZZ_REQUIRE(SettingsMapCodec::encode(*read) == written);
    return 0;
}
