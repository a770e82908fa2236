// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "storage/shelf_store.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include "storage/app_crypto.h"
#include "support/test_support.h"

namespace {

using nlohmann::ordered_json;

constexpr int kWaitMs = 10000;

class ShelfStoreTest : public testing::Test {
protected:
    // The trash lives in the test's folder while it runs.
    ShelfStoreTest() : previousDataHome_(qgetenv("XDG_DATA_HOME")) {
        QDir().mkpath(folder.path(QStringLiteral("xdg")));
        qputenv("XDG_DATA_HOME", QFile::encodeName(folder.path(QStringLiteral("xdg"))));
    }
    ~ShelfStoreTest() override { qputenv("XDG_DATA_HOME", previousDataHome_); }

    std::unique_ptr<ShelfStore> open() {
        return std::make_unique<ShelfStore>(folder.dataDir(), folder.legacyDir(), settings,
                                            desktop());
    }
    QString desktop(const QString& name = {}) const {
        return folder.path(name.isEmpty() ? QStringLiteral("Desktop") : "Desktop/" + name);
    }
    QString storePath() const { return folder.dataDir() + "/shelves.bin"; }
    // The document on disk, opened independently of the store.
    ordered_json storedDocument() const {
        const std::optional<QByteArray> plaintext = AppCrypto::decrypt(readFileBytes(storePath()));
        EXPECT_TRUE(plaintext) << "shelves.bin is not sealed";
        return ordered_json::parse(plaintext.value_or("null").toStdString());
    }
    static QStringList names(const ShelfStore& store) {
        QStringList names;
        for (const ShelfItem& shelf : store.shelves()) {
            names << shelf.name;
        }
        return names;
    }
    static QStringList storedNames(const ordered_json& document) {
        QStringList names;
        for (const auto& shelf : document) {
            names << QString::fromStdString(shelf.at("name").get<std::string>());
        }
        return names;
    }
    // Moves the shelf and waits for the outcome.
    static std::optional<ShelfError> move(ShelfStore& store, const QUuid& id,
                                          const QString& destination) {
        bool done = false;
        std::optional<ShelfError> result;
        store.moveShelf(id, destination, nullptr, [&](const std::optional<ShelfError>& error) {
            result = error;
            done = true;
        });
        EXPECT_TRUE(QTest::qWaitFor([&] { return done; }, kWaitMs));
        return result;
    }

    TestFolder folder;
    UserSettings settings{folder.dataDir(), folder.legacyDir()};

private:
    QByteArray previousDataHome_;
};

TEST_F(ShelfStoreTest, NewShelvesAreSealedAsTheDocumentShapeAndLoadBackTheSame) {
    auto store = open();
    QSignalSpy changes(store.get(), &ShelfStore::shelvesChanged);
    const double now = QDateTime::currentSecsSinceEpoch() - 978307200.0;
    ASSERT_FALSE(store->createShelf(QStringLiteral("Design")));
    ASSERT_FALSE(store->createShelf(QStringLiteral("Bugs: 2024")));
    EXPECT_TRUE(QFileInfo(desktop("Design:shelf")).isDir());
    EXPECT_TRUE(QFileInfo(desktop("Bugs: 2024:shelf")).isDir());
    EXPECT_EQ(changes.count(), 2);

    const ordered_json document = storedDocument();
    ASSERT_EQ(document.size(), 2u);
    std::vector<std::string> keys;
    for (const auto& member : document[0].items()) {
        keys.push_back(member.key());
    }
    EXPECT_EQ(keys, (std::vector<std::string>{"id", "name", "folderURLPath", "createdAt"}));
    EXPECT_EQ(document[0]["id"].get<std::string>(),
              store->shelves()[0].id.toString(QUuid::WithoutBraces).toUpper().toStdString());
    EXPECT_EQ(document[1]["name"], "Bugs: 2024");
    EXPECT_EQ(document[0]["folderURLPath"], desktop("Design:shelf").toStdString());
    EXPECT_NEAR(document[0]["createdAt"].get<double>(), now, 5.0);
    EXPECT_EQ(permissionBits(storePath()), 0600u);

    EXPECT_EQ(open()->shelves(), store->shelves());
}

TEST_F(ShelfStoreTest, DamagedFilesStartEmptyAndAreKeptAsideAndLegacyFilesMoveIn) {
    const QByteArray damaged = AppCrypto::encrypt("not json").value();
    writeFileBytes(storePath(), damaged);
    {
        auto store = open();
        EXPECT_TRUE(store->shelves().isEmpty());
        ASSERT_FALSE(store->createShelf(QStringLiteral("Fresh")));
        EXPECT_EQ(readFileBytes(storePath() + ".unreadable"), damaged);
        EXPECT_EQ(storedNames(storedDocument()), QStringList{"Fresh"});
    }

    // Older versions kept plain JSON in Documents; a bad entry costs itself.
    QFile::remove(storePath());
    const QString legacy = folder.legacyDir() + "/shelves.bin";
    writeFileBytes(legacy, R"([{"id":"not a uuid","name":"Bad","folderURLPath":"/x","createdAt":1},
        {"id":"0F4D7E53-2A3B-4C5D-8E9F-A0B1C2D3E4F5","name":"Old","folderURLPath":"/gone:shelf",
         "createdAt":700000000.25}])");
    auto store = open();
    EXPECT_FALSE(QFileInfo::exists(legacy));
    ASSERT_EQ(names(*store), QStringList{"Old"});
    EXPECT_EQ(store->shelves()[0].createdAt,
              QDateTime::fromMSecsSinceEpoch(978307200000 + 700000000250, Qt::UTC));
    // A folder missing at start-up keeps its shelf; it simply holds nothing.
    EXPECT_TRUE(ShelfStore::files(store->shelves()[0]).isEmpty());
}

TEST_F(ShelfStoreTest, TakenNamesAndFileSystemFailuresGiveTheirMessages) {
    auto store = open();
    ASSERT_FALSE(store->createShelf(QStringLiteral("Design")));
    const std::optional<ShelfError> again = store->createShelf(QStringLiteral("Design"));
    ASSERT_TRUE(again);
    EXPECT_EQ(again->code(), ShelfError::Code::folderExists);
    EXPECT_EQ(again->description(), QStringLiteral("A shelf with that name already exists."));
    const std::optional<ShelfError> sameName =
        store->renameShelf(store->shelves()[0].id, QStringLiteral("Design"));
    ASSERT_TRUE(sameName);
    EXPECT_EQ(sameName->description(), QStringLiteral("A shelf with that name already exists."));
    ASSERT_TRUE(QFile::link(folder.path("nowhere"), desktop("Link:shelf")));
    EXPECT_TRUE(store->createShelf(QStringLiteral("Link")));
    EXPECT_EQ(names(*store), QStringList{"Design"});

    // Another default parent (made as needed) has room for the same name.
    settings.setLastShelfLocation(folder.path("Elsewhere/Deeper"));
    EXPECT_FALSE(store->createShelf(QStringLiteral("Design")));
    EXPECT_TRUE(QFileInfo(folder.path("Elsewhere/Deeper/Design:shelf")).isDir());

    writeFileBytes(folder.path("plain.txt"), "text");
    settings.setLastShelfLocation(folder.path("plain.txt"));
    const std::optional<ShelfError> refused = store->createShelf(QStringLiteral("X"));
    ASSERT_TRUE(refused);
    EXPECT_EQ(refused->code(), ShelfError::Code::unknown);
    EXPECT_EQ(refused->description(), QStringLiteral("Not a directory"));
    EXPECT_EQ(store->shelves().size(), 2);
}

TEST_F(ShelfStoreTest, RenameAndMoveCarryTheFolderAndItsFiles) {
    auto store = open();
    ASSERT_FALSE(store->createShelf(QStringLiteral("Draft")));
    const QUuid id = store->shelves()[0].id;
    writeFileBytes(desktop("Draft:shelf/a.png"), "png");
    writeFileBytes(desktop("Draft:shelf/sub/b.png"), "sub");

    ASSERT_FALSE(store->renameShelf(id, QStringLiteral("Final")));
    EXPECT_FALSE(QFileInfo::exists(desktop("Draft:shelf")));
    EXPECT_EQ(readFileBytes(desktop("Final:shelf/a.png")), "png");
    EXPECT_EQ(store->shelf(id)->folderPath, desktop("Final:shelf"));
    EXPECT_FALSE(store->renameShelf(QUuid::createUuid(), QStringLiteral("Other")));

    const QString other = folder.path("Other");
    QDir().mkpath(other + "/Taken/Final:shelf");
    EXPECT_EQ(move(*store, id, other + "/Taken")->code(), ShelfError::Code::folderExists);
    EXPECT_EQ(move(*store, id, other + "/Missing")->description(),
              QStringLiteral("No such file or directory"));
    EXPECT_EQ(store->shelf(id)->folderPath, desktop("Final:shelf"));
    EXPECT_FALSE(settings.lastShelfLocation());

    ASSERT_FALSE(move(*store, id, other));
    EXPECT_FALSE(QFileInfo::exists(desktop("Final:shelf")));
    EXPECT_EQ(readFileBytes(other + "/Final:shelf/sub/b.png"), "sub");
    EXPECT_EQ(storedDocument()[0]["folderURLPath"], (other + "/Final:shelf").toStdString());
    EXPECT_EQ(settings.lastShelfLocation(), other);
    ASSERT_FALSE(store->createShelf(QStringLiteral("Next")));
    EXPECT_TRUE(QFileInfo(other + "/Next:shelf").isDir());

    // The store's own renames and moves are not taken for vanished folders.
    QTest::qWait(600);
    EXPECT_EQ(names(*store), QStringList({"Final", "Next"}));
}

// /dev/shm is a tmpfs: a move there crosses file systems and copies.
TEST_F(ShelfStoreTest, MoveToAnotherFileSystemCopiesEverythingThenDeletesTheSource) {
    QTemporaryDir tmpfs(QStringLiteral("/dev/shm/quillix-shelf-XXXXXX"));
    struct stat here {};
    struct stat there {};
    if (!tmpfs.isValid() || ::stat(QFile::encodeName(folder.path()).constData(), &here) != 0 ||
        ::stat("/dev/shm", &there) != 0 || here.st_dev == there.st_dev) {
        GTEST_SKIP() << "no second file system at /dev/shm";
    }
    auto store = open();
    ASSERT_FALSE(store->createShelf(QStringLiteral("Trip")));
    const QString source = desktop("Trip:shelf");
    const QByteArray big(3 * 65536 + 17, 'q');
    writeFileBytes(source + "/big.mp4", big);
    writeFileBytes(source + "/sub/.hidden", "h");
    QFile::setPermissions(source + "/big.mp4", QFile::ReadOwner | QFile::ReadGroup);
    QFile::link(QStringLiteral("big.mp4"), source + "/link.mp4");
    const QDateTime stamp = QDateTime::fromSecsSinceEpoch(1600000000);
    QFile file(source + "/sub/.hidden");
    ASSERT_TRUE(file.open(QIODevice::ReadWrite) &&
                file.setFileTime(stamp, QFileDevice::FileModificationTime));
    file.close();

    ASSERT_FALSE(move(*store, store->shelves()[0].id, tmpfs.path()));
    const QString moved = tmpfs.path() + "/Trip:shelf";
    EXPECT_FALSE(QFileInfo::exists(source));
    EXPECT_EQ(readFileBytes(moved + "/big.mp4"), big);
    EXPECT_EQ(permissionBits(moved + "/big.mp4"), 0440u);
    EXPECT_EQ(QFileInfo(moved + "/link.mp4").symLinkTarget(), moved + "/big.mp4");
    EXPECT_EQ(QFileInfo(moved + "/sub/.hidden").lastModified(), stamp);
    EXPECT_EQ(QDir(tmpfs.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList{"Trip:shelf"});
    EXPECT_EQ(ShelfStore::files(store->shelves()[0]).size(), 2);
}

TEST_F(ShelfStoreTest, DeletedShelvesLeaveAtOnceAndTheirFoldersGoToTheTrash) {
    auto store = open();
    ASSERT_FALSE(store->createShelf(QStringLiteral("Old")));
    writeFileBytes(desktop("Old:shelf/a.png"), "png");
    store->deleteShelf(QUuid::createUuid());
    EXPECT_EQ(store->shelves().size(), 1);

    store->deleteShelf(store->shelves()[0].id);
    EXPECT_TRUE(store->shelves().isEmpty());
    EXPECT_EQ(storedDocument(), ordered_json::array());
    const QString trash = folder.path("xdg/Trash");
    EXPECT_TRUE(QTest::qWaitFor([&] { return QFileInfo::exists(trash + "/files/Old:shelf/a.png"); },
                                kWaitMs));
    EXPECT_TRUE(QFileInfo::exists(trash + "/info/Old:shelf.trashinfo"));
    EXPECT_FALSE(QFileInfo::exists(desktop("Old:shelf")));
}

TEST_F(ShelfStoreTest, FilesAreTheTopLevelMediaFilesInAnyCase) {
    auto store = open();
    ASSERT_FALSE(store->createShelf(QStringLiteral("Mixed")));
    const QString shelf = desktop("Mixed:shelf/");
    for (const char* name : {"a.png", "B.PNG", "c.Mp4", "d.heic", "e.txt", ".hidden.png",
                             "sub/f.png", "png", "g.tar.mkv", "h.jpeg", "i.webm"}) {
        writeFileBytes(shelf + name, "x");
    }
    QDir().mkpath(shelf + "folder.png");
    QStringList listed;
    for (const QString& path : ShelfStore::files(store->shelves()[0])) {
        EXPECT_TRUE(path.startsWith(shelf)) << path.toStdString();
        listed << QFileInfo(path).fileName();
    }
    listed.sort();
    EXPECT_EQ(listed, QStringList({"B.PNG", "a.png", "c.Mp4", "d.heic", "g.tar.mkv", "h.jpeg"}));
}

TEST_F(ShelfStoreTest, FoldersDeletedOrRenamedOutsideLeaveTheListAndTheFile) {
    // A shelf whose folder is already missing at start-up is never dropped.
    writeFileBytes(storePath(), R"([{"id":"0F4D7E53-2A3B-4C5D-8E9F-A0B1C2D3E4F5","name":"Ghost",
        "folderURLPath":"/nowhere/Ghost:shelf","createdAt":1}])");
    auto store = open();
    for (const char* name : {"Gone", "Renamed", "Kept"}) {
        ASSERT_FALSE(store->createShelf(QString::fromLatin1(name)));
    }
    QSignalSpy changes(store.get(), &ShelfStore::shelvesChanged);
    writeFileBytes(desktop("Kept:shelf/new.png"), "png");
    ASSERT_TRUE(QDir(desktop("Gone:shelf")).removeRecursively());
    ASSERT_TRUE(QDir().rename(desktop("Renamed:shelf"), desktop("Renamed elsewhere")));

    EXPECT_TRUE(QTest::qWaitFor([&] { return store->shelves().size() == 2; }, kWaitMs));
    EXPECT_EQ(names(*store), QStringList({"Ghost", "Kept"}));
    EXPECT_EQ(storedNames(storedDocument()), QStringList({"Ghost", "Kept"}));
    EXPECT_GE(changes.count(), 1);
}

}  // namespace
