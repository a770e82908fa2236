// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "storage/envelope_file.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <string>
#include <utility>
#include <vector>

#include "storage/app_crypto.h"
#include "support/test_support.h"

namespace {

TEST(EnvelopeReadRule, OpensSealedFiles) {
    TestFolder folder;
    writeFileBytes(folder.path("a.bin"), AppCrypto::encrypt("[5]").value());
    EXPECT_EQ(readEnvelopeFile(folder.path("a.bin")), QByteArray("[5]"));
}

TEST(EnvelopeReadRule, FallsBackToTheRawBytesForPlainJson) {
    TestFolder folder;
    writeFileBytes(folder.path("plain.bin"), R"({"showOnlyQuillixItems":false})");
    EXPECT_EQ(readEnvelopeFile(folder.path("plain.bin")),
              QByteArray(R"({"showOnlyQuillixItems":false})"));
}

TEST(EnvelopeReadRule, ShortAndTamperedFilesComeBackRaw) {
    TestFolder folder;
    writeFileBytes(folder.path("short.bin"), QByteArray(27, 'x'));
    EXPECT_EQ(readEnvelopeFile(folder.path("short.bin")), QByteArray(27, 'x'));

    QByteArray tampered = AppCrypto::encrypt("[1]").value();
    tampered[tampered.size() - 1] = static_cast<char>(tampered.back() ^ 0x80);
    writeFileBytes(folder.path("tampered.bin"), tampered);
    EXPECT_EQ(readEnvelopeFile(folder.path("tampered.bin")), tampered);
}

TEST(EnvelopeReadRule, MissingFileReadsAsNothing) {
    TestFolder folder;
    EXPECT_FALSE(readEnvelopeFile(folder.path("absent.bin")));
}

TEST(EnvelopeWriteRule, WritesAPrivateSealedFileAndLeavesNoTemporaries) {
    TestFolder folder;
    const QString path = folder.path("w.bin");
    ASSERT_TRUE(writeEnvelopeFile(path, "[1,2]"));
    const QByteArray onDisk = readFileBytes(path);
    EXPECT_EQ(onDisk.size(), 5 + 28);
    EXPECT_EQ(AppCrypto::decrypt(onDisk), QByteArray("[1,2]"));
    EXPECT_EQ(permissionBits(path), 0600u);
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList{"w.bin"});
}

TEST(EnvelopeWriteRule, ReplacesTheWholeFile) {
    TestFolder folder;
    const QString path = folder.path("w.bin");
    writeFileBytes(path, QByteArray(4096, 'z'));
    ASSERT_TRUE(writeEnvelopeFile(path, "[]"));
    EXPECT_EQ(readFileBytes(path).size(), 2 + 28);
}

TEST(EnvelopeWriteRule, FailedRenameLeavesTheTargetAndNoTemporaries) {
    TestFolder folder;
    // A non-empty folder where the file should be: the final rename fails even as root.
    const QString path = folder.path("w.bin");
    writeFileBytes(path + "/keep", "previous");
    EXPECT_FALSE(writeEnvelopeFile(path, "[1]"));
    EXPECT_EQ(readFileBytes(path + "/keep"), QByteArray("previous"));
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList{});
}

TEST(EnvelopeWriteRule, MissingFolderFailsQuietly) {
    TestFolder folder;
    EXPECT_FALSE(writeEnvelopeFile(folder.path("no/such/folder/w.bin"), "[1]"));
}

TEST(EnvelopeFile, CreatesThePrivateDataFolder) {
    TestFolder folder;
    EnvelopeFile file(folder.dataDir(), "x.bin");
    EXPECT_TRUE(QFileInfo(folder.dataDir()).isDir());
    EXPECT_EQ(permissionBits(folder.dataDir()), 0700u);
    EXPECT_EQ(file.path(), folder.dataDir() + "/x.bin");
}

TEST(EnvelopeFile, UndecodableFileIsKeptAsideOnceBeforeTheNextSave) {
    TestFolder folder;
    const QString path = folder.dataDir() + "/x.bin";
    writeFileBytes(path, "from a future version \x01\x02");
    EnvelopeFile file(folder.dataDir(), "x.bin");
    ASSERT_TRUE(file.read());
    file.markUndecodable();

    ASSERT_TRUE(file.write("[1]"));
    EXPECT_EQ(readFileBytes(path + ".unreadable"), QByteArray("from a future version \x01\x02"));
    ASSERT_TRUE(file.write("[2]"));
    EXPECT_EQ(QDir(folder.dataDir()).entryList({"*.unreadable*"}).size(), 1);
    EXPECT_EQ(AppCrypto::decrypt(readFileBytes(path)), QByteArray("[2]"));
}

TEST(EnvelopeFile, AnEarlierKeptCopyIsNotOverwritten) {
    TestFolder folder;
    const QString path = folder.dataDir() + "/x.bin";
    writeFileBytes(path + ".unreadable", "older damage");
    writeFileBytes(path, "newer damage");
    EnvelopeFile file(folder.dataDir(), "x.bin");
    file.read();
    file.markUndecodable();
    file.write("[]");
    EXPECT_EQ(readFileBytes(path + ".unreadable"), QByteArray("older damage"));
    EXPECT_EQ(readFileBytes(path + ".unreadable-2"), QByteArray("newer damage"));
}

TEST(EnvelopeFile, ADamagedFileThatCannotBeCopiedIsMovedAsideAndTheStoreStillSaves) {
    TestFolder folder;
    // A folder where the file should be: it reads as nothing and cannot be
    // copied (which no permission bits achieve for root).
    const QString path = folder.dataDir() + "/x.bin";
    writeFileBytes(path + "/inside", "kept");
    EnvelopeFile file(folder.dataDir(), "x.bin");
    EXPECT_FALSE(file.read());

    ASSERT_TRUE(file.write("[1]"));
    EXPECT_EQ(AppCrypto::decrypt(readFileBytes(path)), QByteArray("[1]"));
    EXPECT_EQ(readFileBytes(path + ".unreadable/inside"), QByteArray("kept"));
    ASSERT_TRUE(file.write("[2]"));
    EXPECT_EQ(AppCrypto::decrypt(readFileBytes(path)), QByteArray("[2]"));
}

TEST(EnvelopeFile, ReadableFilesAreNotKeptAside) {
    TestFolder folder;
    writeFileBytes(folder.dataDir() + "/x.bin", "[1]");
    EnvelopeFile file(folder.dataDir(), "x.bin");
    file.read();
    file.write("[1]");
    EXPECT_TRUE(QDir(folder.dataDir()).entryList({"*.unreadable*"}).isEmpty());
}

TEST(EnvelopeFile, LegacyFileMovesInOnlyWhenNoCurrentFileExists) {
    TestFolder folder;
    writeFileBytes(folder.legacyDir() + "/x.bin", "legacy");
    {
        EnvelopeFile file(folder.dataDir(), "x.bin", folder.legacyDir(), {"x.bin"});
        EXPECT_EQ(file.read(), QByteArray("legacy"));
        EXPECT_FALSE(QFileInfo::exists(folder.legacyDir() + "/x.bin"));
    }
    writeFileBytes(folder.legacyDir() + "/x.bin", "second legacy");
    EnvelopeFile again(folder.dataDir(), "x.bin", folder.legacyDir(), {"x.bin"});
    EXPECT_EQ(again.read(), QByteArray("legacy"));
    EXPECT_TRUE(QFileInfo::exists(folder.legacyDir() + "/x.bin"));
}

// What readEntries handed over, by name, with the entries it refused.
struct TakenEntries {
    std::vector<std::pair<std::string, int>> taken;
    int refused = 0;
};

TakenEntries readNumberEntries(EnvelopeFile& file, EnvelopeFile::EntryList shape) {
    TakenEntries result;
    file.readEntries(shape,
                     [&result](const std::string& name, const nlohmann::ordered_json& entry) {
                         if (!entry.is_number_integer()) {
                             ++result.refused;
                             return false;
                         }
                         result.taken.emplace_back(name, entry.get<int>());
                         return true;
                     });
    return result;
}

bool keptAsideAfterWrite(EnvelopeFile& file, const QString& folder) {
    file.write("[]");
    return !QDir(folder).entryList({"*.unreadable*"}).isEmpty();
}

TEST(EnvelopeFileJson, EntriesOfAnObjectComeWithTheirNamesAndAWellFormedFileStaysPut) {
    TestFolder folder;
    writeFileBytes(folder.dataDir() + "/x.bin", AppCrypto::encrypt(R"({"b":2,"a":1})").value());
    EnvelopeFile file(folder.dataDir(), "x.bin");
    const TakenEntries entries = readNumberEntries(file, EnvelopeFile::EntryList::object);
    EXPECT_EQ(entries.taken, (std::vector<std::pair<std::string, int>>{{"b", 2}, {"a", 1}}));
    EXPECT_FALSE(keptAsideAfterWrite(file, folder.dataDir()));
}

TEST(EnvelopeFileJson, ABadEntryCostsOnlyItselfButTheFileIsKeptAside) {
    TestFolder folder;
    writeFileBytes(folder.dataDir() + "/x.bin", R"([7,"seven",8])");
    EnvelopeFile file(folder.dataDir(), "x.bin");
    const TakenEntries entries = readNumberEntries(file, EnvelopeFile::EntryList::array);
    EXPECT_EQ(entries.taken, (std::vector<std::pair<std::string, int>>{{"0", 7}, {"2", 8}}));
    EXPECT_EQ(entries.refused, 1);
    EXPECT_TRUE(keptAsideAfterWrite(file, folder.dataDir()));
    EXPECT_EQ(readFileBytes(folder.dataDir() + "/x.bin.unreadable"),
              QByteArray(R"([7,"seven",8])"));
}

TEST(EnvelopeFileJson, AnotherShapeOrNoJsonGivesNothingAndIsKeptAside) {
    for (const QByteArray& document : {QByteArray(R"({"a":1})"), QByteArray("[1,")}) {
        TestFolder folder;
        writeFileBytes(folder.dataDir() + "/x.bin", document);
        EnvelopeFile file(folder.dataDir(), "x.bin");
        const TakenEntries entries = readNumberEntries(file, EnvelopeFile::EntryList::array);
        EXPECT_TRUE(entries.taken.empty()) << document.toStdString();
        EXPECT_EQ(entries.refused, 0);
        EXPECT_TRUE(keptAsideAfterWrite(file, folder.dataDir())) << document.toStdString();
    }
}

TEST(EnvelopeFileJson, AMissingFileReadsAsNoDocumentAndNothingIsKeptAside) {
    TestFolder folder;
    EnvelopeFile file(folder.dataDir(), "x.bin");
    EXPECT_FALSE(file.readJson());
    EXPECT_FALSE(keptAsideAfterWrite(file, folder.dataDir()));
    EXPECT_EQ(AppCrypto::decrypt(readFileBytes(file.path())), QByteArray("[]"));
}

}  // namespace
