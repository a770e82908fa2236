#include "storage/envelope_file.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

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

}  // namespace
