// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "library/capture_registry.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QFileInfo>

#include "storage/app_crypto.h"
#include "storage/json_codec.h"
#include "support/test_support.h"

namespace {

class CaptureRegistryTest : public testing::Test {
protected:
    QString registryPath() const { return folder.dataDir() + "/registry.bin"; }
    std::unique_ptr<CaptureRegistry> load() {
        return std::make_unique<CaptureRegistry>(folder.dataDir(), folder.legacyDir());
    }
    // The inodes stored on disk, decoded independently of the registry.
    std::set<quint64> storedInodes() const {
        const QByteArray plaintext =
            AppCrypto::decrypt(readFileBytes(registryPath())).value_or("[]");
        const nlohmann::ordered_json array = nlohmann::ordered_json::parse(plaintext.toStdString());
        std::set<quint64> inodes;
        for (const auto& element : array) {
            inodes.insert(element.get<quint64>());
        }
        return inodes;
    }

    TestFolder folder;
};

TEST_F(CaptureRegistryTest, RecordedCaptureStaysOwnAfterRenameButACopyDoesNot) {
    const QString capture = folder.path("Desktop/Screenshot_1.png");
    writeFileBytes(capture, "png bytes");
    const auto registry = load();
    registry->record(capture);

    const QString renamed = folder.path("Desktop/renamed.png");
    ASSERT_TRUE(QFile::rename(capture, renamed));
    ASSERT_TRUE(QFile::copy(renamed, folder.path("Desktop/copy.png")));
    EXPECT_TRUE(registry->contains(inodeOf(renamed)));
    EXPECT_FALSE(registry->contains(inodeOf(folder.path("Desktop/copy.png"))));

    const auto reloaded = load();
    EXPECT_TRUE(reloaded->contains(inodeOf(renamed)));
    EXPECT_EQ(storedInodes(), std::set<quint64>{inodeOf(renamed)});
}

TEST_F(CaptureRegistryTest, SavedFileIsASealedJsonArrayOfNumbers) {
    writeFileBytes(folder.path("a.png"), "a");
    writeFileBytes(folder.path("b.png"), "b");
    const auto registry = load();
    registry->record(folder.path("a.png"));
    registry->record(folder.path("b.png"));
    registry->record(folder.path("a.png"));

    const QByteArray plaintext = AppCrypto::decrypt(readFileBytes(registryPath())).value();
    EXPECT_TRUE(plaintext.startsWith('[') && plaintext.endsWith(']'));
    EXPECT_FALSE(plaintext.contains(' '));
    EXPECT_EQ(storedInodes(),
              (std::set<quint64>{inodeOf(folder.path("a.png")), inodeOf(folder.path("b.png"))}));
    EXPECT_EQ(permissionBits(registryPath()), 0600u);
}

TEST_F(CaptureRegistryTest, MissingFileIsNotRecordedAndWritesNothing) {
    const auto registry = load();
    registry->record(folder.path("nothing-here.png"));
    EXPECT_FALSE(QFileInfo::exists(registryPath()));
}

TEST_F(CaptureRegistryTest, BareJsonLoadsAndTheNextSaveSealsIt) {
    writeFileBytes(registryPath(), "[11,18446744073709551615]");
    const auto registry = load();
    EXPECT_TRUE(registry->contains(11));
    EXPECT_TRUE(registry->contains(18446744073709551615ull));
    registry->save();
    EXPECT_EQ(storedInodes(), (std::set<quint64>{11, 18446744073709551615ull}));
}

TEST_F(CaptureRegistryTest, GarbageGivesAnEmptyRegistryAndIsKeptAside) {
    const QByteArray cases[] = {"garbage", R"({"a":1})", "[1,2", ""};
    for (const QByteArray& content : cases) {
        TestFolder fresh;
        const QString path = fresh.dataDir() + "/registry.bin";
        writeFileBytes(path, content);
        CaptureRegistry registry(fresh.dataDir(), fresh.legacyDir());
        EXPECT_FALSE(registry.contains(1)) << content.toStdString();
        writeFileBytes(fresh.path("new.png"), "n");
        registry.record(fresh.path("new.png"));
        EXPECT_EQ(readFileBytes(path + ".unreadable"), content) << content.toStdString();
        EXPECT_TRUE(AppCrypto::decrypt(readFileBytes(path)));
    }
}

TEST_F(CaptureRegistryTest, BadEntriesAreDroppedOneByOneAndTheFileIsKeptAside) {
    const QByteArray plaintext = R"([7,-2,8,2.5,"9",null,[10],18446744073709551616,11])";
    const QByteArray sealed = AppCrypto::encrypt(plaintext).value();
    writeFileBytes(registryPath(), sealed);
    const auto registry = load();
    for (const quint64 kept : {7, 8, 11}) {
        EXPECT_TRUE(registry->contains(kept)) << kept;
    }
    for (const quint64 dropped : {2, 9, 10}) {
        EXPECT_FALSE(registry->contains(dropped)) << dropped;
    }
    EXPECT_EQ(readFileBytes(registryPath()), sealed) << "loading must not write";

    writeFileBytes(folder.path("new.png"), "n");
    registry->record(folder.path("new.png"));
    EXPECT_EQ(readFileBytes(registryPath() + ".unreadable"), sealed);
    EXPECT_EQ(storedInodes(), (std::set<quint64>{7, 8, 11, inodeOf(folder.path("new.png"))}));
}

TEST_F(CaptureRegistryTest, DuplicatesCollapse) {
    writeFileBytes(registryPath(), AppCrypto::encrypt("[5,5,5,6]").value());
    const auto registry = load();
    registry->save();
    EXPECT_EQ(storedInodes(), (std::set<quint64>{5, 6}));
}

TEST_F(CaptureRegistryTest, LegacyJsonWinsOverLegacyBin) {
    writeFileBytes(folder.legacyDir() + "/registry.json", "[1]");
    writeFileBytes(folder.legacyDir() + "/registry.bin", AppCrypto::encrypt("[2]").value());
    const auto registry = load();
    EXPECT_TRUE(registry->contains(1));
    EXPECT_FALSE(registry->contains(2));
    EXPECT_FALSE(QFileInfo::exists(folder.legacyDir() + "/registry.json"));
    EXPECT_TRUE(QFileInfo::exists(folder.legacyDir() + "/registry.bin"));
    EXPECT_EQ(readFileBytes(registryPath()), QByteArray("[1]"));  // moved as it was
}

TEST_F(CaptureRegistryTest, LegacySealedBinMovesInWhenItIsTheOnlyOne) {
    writeFileBytes(folder.legacyDir() + "/registry.bin", AppCrypto::encrypt("[2]").value());
    EXPECT_TRUE(load()->contains(2));
    EXPECT_FALSE(QFileInfo::exists(folder.legacyDir() + "/registry.bin"));
}

TEST_F(CaptureRegistryTest, ExistingFileIsNeverReplacedByALegacyOne) {
    writeFileBytes(registryPath(), AppCrypto::encrypt("[3]").value());
    writeFileBytes(folder.legacyDir() + "/registry.json", "[1]");
    const auto registry = load();
    EXPECT_TRUE(registry->contains(3));
    EXPECT_FALSE(registry->contains(1));
    EXPECT_TRUE(QFileInfo::exists(folder.legacyDir() + "/registry.json"));
}

}  // namespace
