// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "extension/sealedbox.h"

#include "extension/storagekey.h"

#include <sodium.h>

static_assert(StorageKey::SIZE == crypto_aead_xchacha20poly1305_ietf_KEYBYTES);

namespace {
constexpr char MAGIC[] = "TSEALED1";
constexpr int MAGIC_SIZE = sizeof MAGIC - 1;
constexpr int NONCE_SIZE = crypto_aead_xchacha20poly1305_ietf_NPUBBYTES;
constexpr int TAG_SIZE = crypto_aead_xchacha20poly1305_ietf_ABYTES;
constexpr int HEAD_SIZE = MAGIC_SIZE + NONCE_SIZE;

const unsigned char *bytes(const QByteArray &array)
{
    return reinterpret_cast<const unsigned char *>(array.constData());
}

unsigned char *bytes(QByteArray &array)
{
    return reinterpret_cast<unsigned char *>(array.data());
}
} // namespace

QByteArray SealedBox::seal(const QByteArray &content, const StorageKey &key)
{
    QByteArray box(MAGIC, MAGIC_SIZE);
    box.resize(HEAD_SIZE + content.size() + TAG_SIZE);
    unsigned char *nonce = bytes(box) + MAGIC_SIZE;
    randombytes_buf(nonce, NONCE_SIZE);
    // The magic is authenticated with the content, so that a later format cannot be passed off as this one.
    crypto_aead_xchacha20poly1305_ietf_encrypt(bytes(box) + HEAD_SIZE, nullptr, bytes(content),
                                               static_cast<unsigned long long>(content.size()), bytes(box), MAGIC_SIZE,
                                               nullptr, nonce, key.data());
    return box;
}

std::optional<QByteArray> SealedBox::open(const QByteArray &box, const StorageKey &key)
{
    if (box.size() < HEAD_SIZE + TAG_SIZE || !box.startsWith(MAGIC))
        return std::nullopt;
    QByteArray content(box.size() - HEAD_SIZE - TAG_SIZE, Qt::Uninitialized);
    const int result =
        crypto_aead_xchacha20poly1305_ietf_decrypt(bytes(content), nullptr, nullptr, bytes(box) + HEAD_SIZE,
                                                   static_cast<unsigned long long>(box.size() - HEAD_SIZE), bytes(box),
                                                   MAGIC_SIZE, bytes(box) + MAGIC_SIZE, key.data());
    if (result != 0)
        return std::nullopt;
    return content;
}
