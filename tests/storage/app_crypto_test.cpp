// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "storage/app_crypto.h"

#include <gtest/gtest.h>

#include "support/test_support.h"

namespace {

TEST(AppCrypto, SealedBoxIsNonceCiphertextTagAndOpensAgain) {
    const QByteArray plaintext = R"({"showOnlyQuillixItems":true})";
    const std::optional<QByteArray> sealed = AppCrypto::encrypt(plaintext);
    ASSERT_TRUE(sealed);
    EXPECT_EQ(sealed->size(), plaintext.size() + 28);
    EXPECT_FALSE(sealed->contains(plaintext));
    EXPECT_EQ(AppCrypto::decrypt(*sealed), plaintext);
}

TEST(AppCrypto, EmptyPlaintextSealsToExactly28Bytes) {
    const std::optional<QByteArray> sealed = AppCrypto::encrypt(QByteArray());
    ASSERT_TRUE(sealed);
    EXPECT_EQ(sealed->size(), 28);
    const std::optional<QByteArray> opened = AppCrypto::decrypt(*sealed);
    ASSERT_TRUE(opened);
    EXPECT_TRUE(opened->isEmpty());
}

TEST(AppCrypto, SealingTwiceUsesFreshNonces) {
    const QByteArray plaintext = "[1,2,3]";
    const QByteArray first = AppCrypto::encrypt(plaintext).value();
    const QByteArray second = AppCrypto::encrypt(plaintext).value();
    EXPECT_NE(first.left(12), second.left(12));
    EXPECT_NE(first, second);
    EXPECT_EQ(AppCrypto::decrypt(first), plaintext);
    EXPECT_EQ(AppCrypto::decrypt(second), plaintext);
}

TEST(AppCrypto, EveryFlippedBitFailsAuthentication) {
    const QByteArray sealed = AppCrypto::encrypt("[42]").value();
    for (qsizetype byte = 0; byte < sealed.size(); ++byte) {
        for (int bit = 0; bit < 8; ++bit) {
            QByteArray damaged = sealed;
            damaged[byte] = static_cast<char>(damaged[byte] ^ (1 << bit));
            EXPECT_FALSE(AppCrypto::decrypt(damaged)) << "byte " << byte << " bit " << bit;
        }
    }
}

TEST(AppCrypto, InputsShorterThan28BytesNeverOpen) {
    const QByteArray sealedEmpty = AppCrypto::encrypt(QByteArray()).value();
    for (qsizetype length = 0; length < 28; ++length) {
        EXPECT_FALSE(AppCrypto::decrypt(sealedEmpty.left(length))) << length;
    }
}

TEST(AppCrypto, TruncatedOrExtendedBoxesFail) {
    const QByteArray sealed = AppCrypto::encrypt("{\"a\":1}").value();
    EXPECT_FALSE(AppCrypto::decrypt(sealed.chopped(1)));
    EXPECT_FALSE(AppCrypto::decrypt(sealed + '\0'));
}

TEST(AppCrypto, LargeDocumentsRoundTrip) {
    QByteArray plaintext;
    for (int i = 0; i < 100000; ++i) {
        plaintext += QByteArray::number(i) + ',';
    }
    EXPECT_EQ(AppCrypto::decrypt(AppCrypto::encrypt(plaintext).value()), plaintext);
}

// Another AES-GCM implementation (Python's "cryptography") must open our
// files and we must open its: the key does not depend on the machine.
TEST(AppCryptoInterop, IndependentImplementationOpensOurEnvelope) {
    TestFolder folder;
    const QByteArray plaintext = R"({"hotkeys":{},"note":"ünïcødé ⌘"})";
    writeFileBytes(folder.path("ours.bin"), AppCrypto::encrypt(plaintext).value());
    ASSERT_EQ(runCryptoPeer({"open", folder.path("ours.bin"), folder.path("opened.json")}), 0);
    EXPECT_EQ(readFileBytes(folder.path("opened.json")), plaintext);
}

TEST(AppCryptoInterop, WeOpenTheIndependentImplementationsEnvelope) {
    TestFolder folder;
    const QByteArray plaintext = "[18446744073709551615,0,7]";
    writeFileBytes(folder.path("plain.json"), plaintext);
    ASSERT_EQ(runCryptoPeer({"seal", folder.path("plain.json"), folder.path("theirs.bin")}), 0);
    const QByteArray theirs = readFileBytes(folder.path("theirs.bin"));
    EXPECT_EQ(theirs.size(), plaintext.size() + 28);
    EXPECT_EQ(AppCrypto::decrypt(theirs), plaintext);
}

TEST(AppCryptoInterop, IndependentImplementationRejectsATamperedEnvelope) {
    TestFolder folder;
    QByteArray sealed = AppCrypto::encrypt("[1]").value();
    sealed[14] = static_cast<char>(sealed[14] ^ 0x01);
    writeFileBytes(folder.path("tampered.bin"), sealed);
    EXPECT_EQ(runCryptoPeer({"open", folder.path("tampered.bin"), folder.path("out")}), 1);
}

}  // namespace
