// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <optional>

class StorageKey;

/// Turns bytes into a sealed box and back: authenticated encryption (XChaCha20-Poly1305), a fresh random nonce a box.
///
/// A box is the eight bytes "TSEALED1", a 24-byte nonce, and the encrypted bytes with their 16-byte tag. What comes out
/// of a box is what went in, or nothing at all.
class SealedBox
{
public:
    [[nodiscard]] static QByteArray seal(const QByteArray &content, const StorageKey &key);
    /// @return nothing when the box was sealed with another key, was changed in any bit, or is no box.
    [[nodiscard]] static std::optional<QByteArray> open(const QByteArray &box, const StorageKey &key);
};
