// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "storage/user_settings.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>
#include <QSignalSpy>

#include "storage/app_crypto.h"
#include "storage/json_codec.h"
#include "support/test_support.h"

namespace {

constexpr char kDefaultDocument[] =
    R"({"hotkeys":{"openMenu":{"keyCode":18,"modifiers":768},"showHUD":{"keyCode":19,"modifiers":768},)"
    R"("captureArea":{"keyCode":19,"modifiers":256},"captureWindow":{"keyCode":20,"modifiers":256},)"
    R"("captureScreen":{"keyCode":21,"modifiers":256},"recordWindow":{"keyCode":22,"modifiers":256},)"
    R"("recordScreen":{"keyCode":26,"modifiers":256}},"showOnlyQuillixItems":true})";

// The bare bindings document older versions stored, with ⌘5 for area capture.
QByteArray legacyBindingsDocument() {
    HotkeyConfig config = HotkeyConfig::defaults();
    config.setBinding(HotkeyAction::captureArea, {23, KeyModifiers::kSuper});
    return encodeJson(config.toJson());
}

class UserSettingsTest : public testing::Test {
protected:
    QString settingsPath() const { return folder.dataDir() + "/settings.bin"; }
    std::optional<QByteArray> storedDocument() const {
        return AppCrypto::decrypt(readFileBytes(settingsPath()));
    }
    std::unique_ptr<UserSettings> load() {
        return std::make_unique<UserSettings>(folder.dataDir(), folder.legacyDir());
    }

    TestFolder folder;
};

TEST_F(UserSettingsTest, FirstRunWritesTheSealedDefaultDocument) {
    const auto settings = load();
    EXPECT_EQ(settings->hotkeys(), HotkeyConfig::defaults());
    EXPECT_TRUE(settings->showOnlyQuillixItems());
    EXPECT_FALSE(settings->lastShelfLocation());

    const QByteArray onDisk = readFileBytes(settingsPath());
    EXPECT_EQ(onDisk.size(), qsizetype(sizeof(kDefaultDocument) - 1 + 28));
    EXPECT_EQ(storedDocument(), QByteArray(kDefaultDocument));
    EXPECT_EQ(permissionBits(settingsPath()), 0600u);
    EXPECT_EQ(permissionBits(folder.dataDir()), 0700u);
}

TEST_F(UserSettingsTest, ChangesSurviveARestartAndKeepMemberOrder) {
    {
        const auto settings = load();
        settings->setHotkey(HotkeyAction::recordScreen,
                            {1099, KeyModifiers::kControl | KeyModifiers::kShift});
        settings->setLastShelfLocation(QStringLiteral("/home/ana/Shelves ⌘"));
        settings->setShowOnlyQuillixItems(false);
    }
    const auto reloaded = load();
    EXPECT_EQ(reloaded->hotkeys().binding(HotkeyAction::recordScreen),
              (HotkeyBinding{1099, KeyModifiers::kControl | KeyModifiers::kShift}));
    EXPECT_EQ(reloaded->lastShelfLocation(), QStringLiteral("/home/ana/Shelves ⌘"));
    EXPECT_FALSE(reloaded->showOnlyQuillixItems());

    const QByteArray document = storedDocument().value();
    EXPECT_LT(document.indexOf("\"hotkeys\""), document.indexOf("\"lastShelfLocation\""));
    EXPECT_LT(document.indexOf("\"lastShelfLocation\""),
              document.indexOf("\"showOnlyQuillixItems\""));
}

TEST_F(UserSettingsTest, LegacyBareBindingsLoadAndAreRewrittenInTheCurrentFormat) {
    writeFileBytes(settingsPath(), legacyBindingsDocument());
    const auto settings = load();
    EXPECT_EQ(settings->hotkeys().binding(HotkeyAction::captureArea),
              (HotkeyBinding{23, KeyModifiers::kSuper}));
    EXPECT_TRUE(settings->showOnlyQuillixItems());
    const auto json = decodeJson(storedDocument().value());
    ASSERT_TRUE(json);
    EXPECT_TRUE(json->contains("hotkeys"));
    EXPECT_EQ((*json)["hotkeys"]["captureArea"]["keyCode"], 23);
    EXPECT_FALSE(QFileInfo::exists(settingsPath() + ".unreadable"));
}

TEST_F(UserSettingsTest, PlainJsonInTheCurrentFormatLoadsAndIsSealedAtOnce) {
    writeFileBytes(settingsPath(),
                   R"({"hotkeys":)" + encodeJson(HotkeyConfig::defaults().toJson()) +
                       R"(,"lastShelfLocation":"/tmp/s","showOnlyQuillixItems":false})");
    const auto settings = load();
    EXPECT_EQ(settings->lastShelfLocation(), QStringLiteral("/tmp/s"));
    EXPECT_FALSE(settings->showOnlyQuillixItems());
    EXPECT_TRUE(storedDocument());
}

TEST_F(UserSettingsTest, MissingFlagReadsAsTrueAndNullLocationAsNone) {
    writeFileBytes(
        settingsPath(),
        AppCrypto::encrypt(R"({"hotkeys":)" + encodeJson(HotkeyConfig::defaults().toJson()) +
                           R"(,"lastShelfLocation":null})")
            .value());
    const auto settings = load();
    EXPECT_TRUE(settings->showOnlyQuillixItems());
    EXPECT_FALSE(settings->lastShelfLocation());
    EXPECT_EQ(storedDocument(), QByteArray(kDefaultDocument));
}

TEST_F(UserSettingsTest, MissingActionFallsBackToDefaultsAndKeepsTheOldFileAside) {
    nlohmann::ordered_json hotkeys = HotkeyConfig::defaults().toJson();
    hotkeys["captureArea"]["keyCode"] = 23;
    hotkeys.erase("recordWindow");
    const QByteArray damaged =
        R"({"hotkeys":)" + encodeJson(hotkeys) + R"(,"showOnlyQuillixItems":false})";
    writeFileBytes(settingsPath(), AppCrypto::encrypt(damaged).value());

    const auto settings = load();
    EXPECT_EQ(settings->hotkeys(), HotkeyConfig::defaults());
    EXPECT_TRUE(settings->showOnlyQuillixItems());
    EXPECT_EQ(storedDocument(), QByteArray(kDefaultDocument));
    EXPECT_EQ(AppCrypto::decrypt(readFileBytes(settingsPath() + ".unreadable")), damaged);
}

TEST_F(UserSettingsTest, GarbageAndWrongTypesFallBackToDefaults) {
    const QByteArray cases[] = {
        "not json at all",
        QByteArray(10, '\0'),
        R"({"hotkeys":)" + encodeJson(HotkeyConfig::defaults().toJson()) +
            R"(,"showOnlyQuillixItems":"no"})",
        "[]",
    };
    for (const QByteArray& content : cases) {
        TestFolder fresh;
        writeFileBytes(fresh.dataDir() + "/settings.bin", content);
        UserSettings settings(fresh.dataDir(), fresh.legacyDir());
        EXPECT_EQ(settings.hotkeys(), HotkeyConfig::defaults()) << content.toStdString();
        EXPECT_TRUE(settings.showOnlyQuillixItems());
        EXPECT_EQ(AppCrypto::decrypt(readFileBytes(fresh.dataDir() + "/settings.bin")),
                  QByteArray(kDefaultDocument));
        EXPECT_EQ(readFileBytes(fresh.dataDir() + "/settings.bin.unreadable"), content);
    }
}

TEST_F(UserSettingsTest, LegacyFileMovesInFromDocuments) {
    writeFileBytes(folder.legacyDir() + "/settings.bin", legacyBindingsDocument());
    const auto settings = load();
    EXPECT_EQ(settings->hotkeys().binding(HotkeyAction::captureArea).keyCode, 23u);
    EXPECT_FALSE(QFileInfo::exists(folder.legacyDir() + "/settings.bin"));
    EXPECT_TRUE(storedDocument());
}

TEST_F(UserSettingsTest, EveryAssignmentAnnouncesAndSavesEvenWhenUnchanged) {
    const auto settings = load();
    QSignalSpy flagSpy(settings.get(), &UserSettings::showOnlyQuillixItemsChanged);
    QSignalSpy hotkeySpy(settings.get(), &UserSettings::hotkeysChanged);
    const QByteArray before = readFileBytes(settingsPath());

    settings->setShowOnlyQuillixItems(true);
    EXPECT_EQ(flagSpy.count(), 1);
    const QByteArray after = readFileBytes(settingsPath());
    EXPECT_NE(before, after);  // a fresh nonce proves the file was rewritten
    EXPECT_EQ(AppCrypto::decrypt(after), AppCrypto::decrypt(before));

    settings->setHotkey(HotkeyAction::showHUD, {4, KeyModifiers::kAlt});
    ASSERT_EQ(hotkeySpy.count(), 1);
    EXPECT_EQ(hotkeySpy.at(0).at(0).value<HotkeyConfig>().binding(HotkeyAction::showHUD),
              (HotkeyBinding{4, KeyModifiers::kAlt}));
}

TEST_F(UserSettingsTest, UnwritableFolderKeepsValuesInMemory) {
    writeFileBytes(folder.path("blocker"), "a file where the data folder should be");
    UserSettings settings(folder.path("blocker/Quillix"), folder.legacyDir());
    settings.setShowOnlyQuillixItems(false);
    EXPECT_FALSE(settings.showOnlyQuillixItems());
    EXPECT_EQ(settings.hotkeys(), HotkeyConfig::defaults());
}

}  // namespace
