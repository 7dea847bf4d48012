// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "extension/sealedbox.h"

#include "extension/storagekey.h"
#include "fuzztarget.h"

#include <QHash>

#include <sodium.h>

namespace {
constexpr int MAGIC_SIZE = 8;
constexpr int NONCE_SIZE = 24;
constexpr int TAG_SIZE = 16;

/// Always the same, so that the corpus can hold boxes that open.
StorageKey key(unsigned char fill)
{
    std::array<unsigned char, StorageKey::SIZE> bytes = {};
    bytes.fill(fill);
    return StorageKey(bytes);
}

const unsigned char *raw(const QByteArray &bytes)
{
    return reinterpret_cast<const unsigned char *>(bytes.constData());
}

/// The box that @a content makes with the nonce of another box: the cipher leaves no choice but the nonce.
QByteArray sealedWithNonceOf(const QByteArray &box, const QByteArray &content, const StorageKey &key)
{
    QByteArray again = box.left(MAGIC_SIZE + NONCE_SIZE);
    again.resize(MAGIC_SIZE + NONCE_SIZE + content.size() + TAG_SIZE);
    crypto_aead_xchacha20poly1305_ietf_encrypt(reinterpret_cast<unsigned char *>(again.data()) + MAGIC_SIZE +
                                                   NONCE_SIZE,
                                               nullptr, raw(content), static_cast<unsigned long long>(content.size()),
                                               raw(box), MAGIC_SIZE, nullptr, raw(box) + MAGIC_SIZE, key.data());
    return again;
}

/// What opens is authentic: sealing its content again gives the very same bytes. No box opens with two keys.
void requireAuthentic(const QByteArray &box)
{
    int opened = 0;
    for (const StorageKey &candidate : {key(0x42), key(0x24)}) {
        const std::optional<QByteArray> content = SealedBox::open(box, candidate);
        opened += content ? 1 : 0;
        FUZZ_REQUIRE(!content || sealedWithNonceOf(box, *content, candidate) == box);
    }
    FUZZ_REQUIRE(opened < 2);
}

/// What is sealed opens; with any one bit changed, cut or prolonged it does not.
void requireTamperproof(const QByteArray &content)
{
    const StorageKey ours = key(0x42);
    const QByteArray box = SealedBox::seal(content, ours);
    FUZZ_REQUIRE(SealedBox::open(box, ours) == content);
    const int bit = static_cast<int>(qHash(content) % (static_cast<uint>(box.size()) * 8));
    QByteArray changed = box;
    changed[bit / 8] = static_cast<char>(changed.at(bit / 8) ^ (1 << (bit % 8)));
    FUZZ_REQUIRE(!SealedBox::open(changed, ours));
    FUZZ_REQUIRE(!SealedBox::open(box.left(bit / 8), ours));
    FUZZ_REQUIRE(!SealedBox::open(box + '\0', ours));
}
} // namespace

/// A sealed file's bytes; the same bytes as content to be sealed.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const bool isReady = sodium_init() >= 0;
    FUZZ_REQUIRE(isReady);
    const QByteArray input = FuzzTarget::bytes(data, size);
    requireAuthentic(input);
    requireTamperproof(input);
    return 0;
}
