// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <optional>

// Seals and opens the program's data files. Every data file is one AES-256-GCM
// "combined" box: a 12-byte random nonce, the ciphertext, then the 16-byte tag,
// with no header and no associated data. The key is the SHA-256 of a passphrase
// compiled into the program, so a file sealed on one machine opens on any other.
namespace AppCrypto {

inline constexpr int kNonceSize = 12;
inline constexpr int kTagSize = 16;
inline constexpr int kOverhead = kNonceSize + kTagSize;

// Seals with a fresh random nonce; nothing when the cipher cannot be set up.
std::optional<QByteArray> encrypt(QByteArrayView plaintext);

// Opens a sealed box; nothing when it is shorter than 28 bytes or does not
// authenticate under the storage key.
std::optional<QByteArray> decrypt(QByteArrayView envelope);

}  // namespace AppCrypto
