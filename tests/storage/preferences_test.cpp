// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "storage/preferences.h"

#include <gtest/gtest.h>

#include <QSettings>
#include <QSignalSpy>

#include "support/test_support.h"

namespace {

class PreferencesTest : public testing::Test {
protected:
    QString file() const { return folder.path("config/Quillix/Quillix.conf"); }
    // Writes a raw value the way another program (or a hand edit) would.
    void storeRaw(const QString& key, const QVariant& value) {
        QSettings raw(file(), QSettings::IniFormat);
        raw.setValue(key, value);
    }

    TestFolder folder;
};

TEST_F(PreferencesTest, AbsentKeysReadAsTheirDefaults) {
    Preferences preferences(file());
    EXPECT_FALSE(preferences.launchAtLogin());
    EXPECT_TRUE(preferences.showHUDOnCapture());
    EXPECT_DOUBLE_EQ(preferences.autoDismissSeconds(), 7.0);
    EXPECT_EQ(preferences.customAppIconPath(), QString());
    EXPECT_TRUE(preferences.checkForUpdatesAutomatically());
    EXPECT_EQ(preferences.maxScreenshots(), 200);
    EXPECT_EQ(preferences.autoClearDays(), 30);
    EXPECT_FALSE(preferences.customSaveFolder());
    EXPECT_FALSE(preferences.hasSeenOnboarding());
}

TEST_F(PreferencesTest, OutOfRangeValuesReadAsTheDefault) {
    storeRaw("maxScreenshots", 0);
    storeRaw("autoClearDays", -4);
    storeRaw("autoDismissSeconds", 0.0);
    Preferences preferences(file());
    EXPECT_EQ(preferences.maxScreenshots(), 200);
    EXPECT_EQ(preferences.autoClearDays(), 30);
    EXPECT_DOUBLE_EQ(preferences.autoDismissSeconds(), 7.0);

    storeRaw("maxScreenshots", "lots");
    Preferences reread(file());
    EXPECT_EQ(reread.maxScreenshots(), 200);
}

TEST_F(PreferencesTest, StoredValuesPersistUnderTheirKeys) {
    {
        Preferences preferences(file());
        preferences.setMaxScreenshots(12);
        preferences.setAutoClearDays(3);
        preferences.setAutoDismissSeconds(2.5);
        preferences.setCustomSaveFolder(QStringLiteral("/tmp/caps"));
        preferences.setHasSeenOnboarding(true);
        preferences.setCheckForUpdatesAutomatically(false);
        preferences.setCustomAppIconPath(QStringLiteral("/tmp/i.png"));
    }
    QSettings raw(file(), QSettings::IniFormat);
    EXPECT_EQ(raw.value("maxScreenshots").toInt(), 12);
    EXPECT_EQ(raw.value("autoClearDays").toInt(), 3);
    EXPECT_EQ(raw.value("autoDismissSeconds").toDouble(), 2.5);
    EXPECT_EQ(raw.value("customSaveFolder").toString(), "/tmp/caps");
    EXPECT_TRUE(raw.value("hasSeenOnboarding").toBool());
    EXPECT_FALSE(raw.value("checkForUpdatesAutomatically").toBool());
    EXPECT_EQ(raw.value("customAppIconPath").toString(), "/tmp/i.png");
}

TEST_F(PreferencesTest, ClearingTheSaveFolderRemovesTheKeyAndAnnouncesIt) {
    Preferences preferences(file());
    QSignalSpy spy(&preferences, &Preferences::valueChanged);
    preferences.setCustomSaveFolder(QStringLiteral("/tmp/caps"));
    EXPECT_EQ(preferences.customSaveFolder(), QStringLiteral("/tmp/caps"));
    preferences.setCustomSaveFolder(std::nullopt);
    EXPECT_FALSE(preferences.customSaveFolder());
    EXPECT_FALSE(QSettings(file(), QSettings::IniFormat).contains("customSaveFolder"));
    ASSERT_EQ(spy.count(), 2);
    EXPECT_EQ(spy.at(1).at(0).toString(), "customSaveFolder");
}

TEST_F(PreferencesTest, AnEmptySaveFolderIsAbsentAndARelativeOneLiesInHome) {
    const QByteArray home = folder.path("home").toLocal8Bit();
    const QByteArray previousHome = qgetenv("HOME");
    qputenv("HOME", home);
    const std::pair<QString, std::optional<QString>> cases[] = {
        {QString(), std::nullopt},
        {QStringLiteral("  "), std::nullopt},
        {QStringLiteral("caps/here"), home + "/caps/here"},
        {QStringLiteral("./caps"), home + "/caps"},
        {QStringLiteral("~/caps"), home + "/caps"},
        {QStringLiteral("~"), QString::fromLocal8Bit(home)},
        {QStringLiteral("/tmp/caps"), QStringLiteral("/tmp/caps")},
    };
    for (const auto& [stored, expected] : cases) {
        storeRaw("customSaveFolder", stored);
        EXPECT_EQ(Preferences(file()).customSaveFolder(), expected) << stored.toStdString();
    }
    qputenv("HOME", previousHome);
}

}  // namespace
