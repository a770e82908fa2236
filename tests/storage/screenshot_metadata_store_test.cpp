// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "storage/screenshot_metadata_store.h"

#include <gtest/gtest.h>

#include <QFileInfo>
#include <QSignalSpy>

#include "storage/app_crypto.h"
#include "support/test_support.h"

namespace {

using nlohmann::ordered_json;

class ScreenshotMetadataStoreTest : public testing::Test {
protected:
    QString storePath() const { return folder.dataDir() + "/metadata.bin"; }
    std::unique_ptr<ScreenshotMetadataStore> load() {
        return std::make_unique<ScreenshotMetadataStore>(folder.dataDir());
    }
    // The document on disk, opened independently of the store.
    ordered_json storedDocument() const {
        const std::optional<QByteArray> plaintext = AppCrypto::decrypt(readFileBytes(storePath()));
        EXPECT_TRUE(plaintext) << "metadata.bin is not sealed";
        return ordered_json::parse(plaintext.value_or("null").toStdString());
    }

    TestFolder folder;
    const QString shot = QStringLiteral("/home/u/Desktop/Screenshot 1.png");
    const ScreenshotEvent review{QStringLiteral("Design review"), QString()};
};

TEST_F(ScreenshotMetadataStoreTest, RecordsAreSealedAsTheDocumentShapes) {
    auto store = load();
    store->setColorLabel(ColorLabel::blue, shot);
    store->setEvent(ScreenshotEvent{QStringLiteral("Bug 12"), QStringLiteral("crash")},
                    QStringLiteral("/elsewhere/clip.mp4"));
    store->setEvent(review, shot);

    EXPECT_EQ(storedDocument(), ordered_json::parse(R"({
        "Screenshot 1.png": {"colorLabel": "blue",
                             "event": {"title": "Design review", "note": ""}},
        "clip.mp4": {"event": {"title": "Bug 12", "note": "crash"}}})"));
    EXPECT_EQ(permissionBits(storePath()), 0600u);

    const auto reloaded = load();
    EXPECT_EQ(reloaded->metadata(), store->metadata());
    // An empty note reads back as an empty text, not as a missing note.
    EXPECT_EQ(reloaded->recordFor(shot).event, review);
}

TEST_F(ScreenshotMetadataStoreTest, ClearingOneFieldKeepsTheOtherAndTheLastOneRemovesTheRecord) {
    auto store = load();
    store->setColorLabel(ColorLabel::red, shot);
    store->setEvent(review, shot);

    store->setColorLabel(std::nullopt, shot);
    EXPECT_EQ(store->recordFor(shot), (ScreenshotMetadata{std::nullopt, review}));
    store->setColorLabel(ColorLabel::green, shot);
    store->setEvent(std::nullopt, shot);
    EXPECT_EQ(store->recordFor(shot), (ScreenshotMetadata{ColorLabel::green, std::nullopt}));
    store->setColorLabel(std::nullopt, shot);
    EXPECT_TRUE(store->metadata().isEmpty());
    EXPECT_EQ(storedDocument(), ordered_json::object());
}

TEST_F(ScreenshotMetadataStoreTest, ClearingAFileWithoutARecordStillSavesAndNotifies) {
    auto store = load();
    QSignalSpy changes(store.get(), &ScreenshotMetadataStore::metadataChanged);
    store->setEvent(std::nullopt, shot);
    store->setColorLabel(std::nullopt, shot);
    EXPECT_TRUE(store->metadata().isEmpty());
    EXPECT_EQ(changes.count(), 2);
    EXPECT_EQ(storedDocument(), ordered_json::object());
}

TEST_F(ScreenshotMetadataStoreTest, FilesNamedAlikeInDifferentFoldersShareOneRecord) {
    auto store = load();
    store->setColorLabel(ColorLabel::purple, QStringLiteral("/a/Shot.png"));
    EXPECT_EQ(store->recordFor(QStringLiteral("/b/Shot.png")).colorLabel, ColorLabel::purple);
    EXPECT_FALSE(store->recordFor(QStringLiteral("/a/shot.png")).colorLabel);
    EXPECT_EQ(ScreenshotMetadataStore::keyFor(QStringLiteral("/x/y/Name.With.Dots.mov")),
              QStringLiteral("Name.With.Dots.mov"));
}

TEST_F(ScreenshotMetadataStoreTest, DamagedDocumentsStartEmptyWithoutWritingAndAreKeptAside) {
    const QByteArray cases[] = {"not json", R"([1,2])", R"({"a.png": {"colorLabel": "red"})"};
    for (const QByteArray& content : cases) {
        TestFolder fresh;
        const QString path = fresh.dataDir() + "/metadata.bin";
        const QByteArray sealed = AppCrypto::encrypt(content).value();
        writeFileBytes(path, sealed);
        ScreenshotMetadataStore store(fresh.dataDir());
        EXPECT_TRUE(store.metadata().isEmpty()) << content.toStdString();
        EXPECT_EQ(readFileBytes(path), sealed) << "loading must not write";
        store.setColorLabel(ColorLabel::yellow, QStringLiteral("new.png"));
        EXPECT_EQ(readFileBytes(path + ".unreadable"), sealed) << content.toStdString();
    }
}

TEST_F(ScreenshotMetadataStoreTest, BadRecordsAreDroppedOneByOneAndTheFileIsKeptAside) {
    const QByteArray sealed = AppCrypto::encrypt(R"({
        "teal.png": {"colorLabel": "teal"},
        "red.png": {"colorLabel": "red"},
        "no note.png": {"event": {"title": "no note"}},
        "no title.png": {"event": {"note": "no title"}},
        "number.png": {"colorLabel": 3},
        "string.png": "string",
        "review.png": {"event": {"title": "Review", "note": ""}}})")
                                  .value();
    writeFileBytes(storePath(), sealed);
    auto store = load();
    EXPECT_EQ(store->metadata().keys().size(), 2);
    EXPECT_EQ(store->recordFor(QStringLiteral("red.png")).colorLabel, ColorLabel::red);
    EXPECT_EQ(store->recordFor(QStringLiteral("review.png")).event,
              (ScreenshotEvent{QStringLiteral("Review"), QString()}));
    EXPECT_EQ(readFileBytes(storePath()), sealed) << "loading must not write";

    store->setColorLabel(ColorLabel::yellow, QStringLiteral("new.png"));
    EXPECT_EQ(readFileBytes(storePath() + ".unreadable"), sealed);
    EXPECT_EQ(storedDocument(), ordered_json::parse(R"({
        "new.png": {"colorLabel": "yellow"},
        "red.png": {"colorLabel": "red"},
        "review.png": {"event": {"title": "Review", "note": ""}}})"));
}

TEST_F(ScreenshotMetadataStoreTest, BareJsonFromOlderVersionsLoads) {
    writeFileBytes(storePath(), R"({"old.png":{"colorLabel":"orange"}})");
    EXPECT_EQ(load()->recordFor(QStringLiteral("old.png")).colorLabel, ColorLabel::orange);
}

TEST(ColorLabelTest, RawValuesTitlesAndColoursInOfferedOrder) {
    QStringList raw;
    for (ColorLabel label : kAllColorLabels) {
        raw << colorLabelRawValue(label);
        EXPECT_EQ(colorLabelFromRawValue(colorLabelRawValue(label)), label);
    }
    EXPECT_EQ(raw, QStringList({"red", "orange", "yellow", "green", "blue", "purple"}));
    EXPECT_FALSE(colorLabelFromRawValue(QStringLiteral("Red")));
}

}  // namespace
