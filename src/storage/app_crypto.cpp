// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "storage/app_crypto.h"

#include <openssl/evp.h>
#include <openssl/rand.h>
#include <openssl/sha.h>

#include <array>
#include <memory>

namespace AppCrypto {
namespace {

constexpr char kStoragePassphrase[] = "Vm8Tq2r-Hl!d@ka-Wx5n@fu-J9c-4817-bR3#Yp";

using Key = std::array<unsigned char, SHA256_DIGEST_LENGTH>;

// Derived once per process; a function-local static makes concurrent first
// uses derive it exactly once.
const Key& storageKey() {
    static const Key key = [] {
        Key digest{};
        SHA256(reinterpret_cast<const unsigned char*>(kStoragePassphrase),
               sizeof(kStoragePassphrase) - 1, digest.data());
        return digest;
    }();
    return key;
}

struct CipherContextFree {
    void operator()(EVP_CIPHER_CTX* context) const { EVP_CIPHER_CTX_free(context); }
};
using CipherContext = std::unique_ptr<EVP_CIPHER_CTX, CipherContextFree>;

const unsigned char* bytes(QByteArrayView view) {
    return reinterpret_cast<const unsigned char*>(view.data());
}

unsigned char* bytes(QByteArray& array, qsizetype offset = 0) {
    return reinterpret_cast<unsigned char*>(array.data()) + offset;
}

}  // namespace

std::optional<QByteArray> encrypt(QByteArrayView plaintext) {
    const int length = static_cast<int>(plaintext.size());
    QByteArray box(kOverhead + length, Qt::Uninitialized);
    if (RAND_bytes(bytes(box), kNonceSize) != 1) {
        return std::nullopt;
    }
    CipherContext context(EVP_CIPHER_CTX_new());
    int written = 0;
    int finalWritten = 0;
    const bool sealed =
        context &&
        EVP_EncryptInit_ex(context.get(), EVP_aes_256_gcm(), nullptr, nullptr, nullptr) == 1 &&
        EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_GCM_SET_IVLEN, kNonceSize, nullptr) == 1 &&
        EVP_EncryptInit_ex(context.get(), nullptr, nullptr, storageKey().data(), bytes(box)) == 1 &&
        EVP_EncryptUpdate(context.get(), bytes(box, kNonceSize), &written, bytes(plaintext),
                          length) == 1 &&
        EVP_EncryptFinal_ex(context.get(), bytes(box, kNonceSize + written), &finalWritten) == 1 &&
        written + finalWritten == length &&
        EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_GCM_GET_TAG, kTagSize,
                            bytes(box, kNonceSize + length)) == 1;
    if (!sealed) {
        return std::nullopt;
    }
    return box;
}

std::optional<QByteArray> decrypt(QByteArrayView envelope) {
    if (envelope.size() < kOverhead) {
        return std::nullopt;
    }
    const int length = static_cast<int>(envelope.size() - kOverhead);
    QByteArray tag = envelope.last(kTagSize).toByteArray();
    QByteArray plaintext(length, Qt::Uninitialized);
    CipherContext context(EVP_CIPHER_CTX_new());
    int written = 0;
    int finalWritten = 0;
    const bool opened =
        context &&
        EVP_DecryptInit_ex(context.get(), EVP_aes_256_gcm(), nullptr, nullptr, nullptr) == 1 &&
        EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_GCM_SET_IVLEN, kNonceSize, nullptr) == 1 &&
        EVP_DecryptInit_ex(context.get(), nullptr, nullptr, storageKey().data(), bytes(envelope)) ==
            1 &&
        EVP_DecryptUpdate(context.get(), bytes(plaintext), &written, bytes(envelope) + kNonceSize,
                          length) == 1 &&
        EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_GCM_SET_TAG, kTagSize, bytes(tag)) == 1 &&
        EVP_DecryptFinal_ex(context.get(), bytes(plaintext, written), &finalWritten) == 1;
    if (!opened || written + finalWritten != length) {
        return std::nullopt;
    }
    return plaintext;
}

}  // namespace AppCrypto
