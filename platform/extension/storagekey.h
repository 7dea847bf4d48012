// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <array>
#include <optional>

/// The secret that this terminal's settings files are sealed with. It is wiped from memory when the object dies.
///
/// The key is a file of its own in the work directory, readable by its owner alone, so that a sealed file that leaves
/// the terminal cannot be read elsewhere.
class StorageKey
{
public:
    static constexpr std::size_t SIZE = 32;

    /// The terminal's key; it is made when there is none yet. Processes that start at the same moment all get the one
    /// key: it appears under its name whole, and only where no key was.
    /// @return nothing, with a critical log line saying what to do, when there is no usable key.
    [[nodiscard]] static std::optional<StorageKey> obtain();
    /// Where the key lies: "storage.key" in the work directory.
    [[nodiscard]] static QString path();

    explicit StorageKey(const std::array<unsigned char, SIZE> &bytes) : m_bytes(bytes) {}
    StorageKey(const StorageKey &) = default;
    StorageKey &operator=(const StorageKey &) = default;
    ~StorageKey();

    [[nodiscard]] const unsigned char *data() const { return m_bytes.data(); }

private:
    std::array<unsigned char, SIZE> m_bytes;
};
