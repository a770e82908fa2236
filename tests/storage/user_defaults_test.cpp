#include "storage/user_defaults.h"

#include <gtest/gtest.h>

#include <QSettings>
#include <QSignalSpy>

#include "support/test_support.h"

namespace {

class UserDefaultsTest : public testing::Test {
protected:
    QString file() const { return folder.path("config/Quillix/Quillix.conf"); }
    // Writes a raw value the way another program (or a hand edit) would.
    void storeRaw(const QString& key, const QVariant& value) {
        QSettings raw(file(), QSettings::IniFormat);
        raw.setValue(key, value);
    }

    TestFolder folder;
};

TEST_F(UserDefaultsTest, AbsentKeysReadAsTheirDefaults) {
    UserDefaults defaults(file());
    EXPECT_FALSE(defaults.launchAtLogin());
    EXPECT_TRUE(defaults.showHUDOnCapture());
    EXPECT_DOUBLE_EQ(defaults.autoDismissSeconds(), 7.0);
    EXPECT_EQ(defaults.customAppIconPath(), QString());
    EXPECT_TRUE(defaults.checkForUpdatesAutomatically());
    EXPECT_EQ(defaults.maxScreenshots(), 200);
    EXPECT_EQ(defaults.autoClearDays(), 30);
    EXPECT_FALSE(defaults.customSaveFolder());
    EXPECT_FALSE(defaults.hasSeenOnboarding());
}

TEST_F(UserDefaultsTest, OutOfRangeValuesReadAsTheDefault) {
    storeRaw("maxScreenshots", 0);
    storeRaw("autoClearDays", -4);
    storeRaw("autoDismissSeconds", 0.0);
    UserDefaults defaults(file());
    EXPECT_EQ(defaults.maxScreenshots(), 200);
    EXPECT_EQ(defaults.autoClearDays(), 30);
    EXPECT_DOUBLE_EQ(defaults.autoDismissSeconds(), 7.0);

    storeRaw("maxScreenshots", "lots");
    UserDefaults reread(file());
    EXPECT_EQ(reread.maxScreenshots(), 200);
}

TEST_F(UserDefaultsTest, StoredValuesPersistUnderTheirKeys) {
    {
        UserDefaults defaults(file());
        defaults.setMaxScreenshots(12);
        defaults.setAutoClearDays(3);
        defaults.setAutoDismissSeconds(2.5);
        defaults.setCustomSaveFolder(QStringLiteral("/tmp/caps"));
        defaults.setHasSeenOnboarding(true);
        defaults.setCheckForUpdatesAutomatically(false);
        defaults.setCustomAppIconPath(QStringLiteral("/tmp/i.png"));
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

TEST_F(UserDefaultsTest, ClearingTheSaveFolderRemovesTheKeyAndAnnouncesIt) {
    UserDefaults defaults(file());
    QSignalSpy spy(&defaults, &UserDefaults::valueChanged);
    defaults.setCustomSaveFolder(QStringLiteral("/tmp/caps"));
    EXPECT_EQ(defaults.customSaveFolder(), QStringLiteral("/tmp/caps"));
    defaults.setCustomSaveFolder(std::nullopt);
    EXPECT_FALSE(defaults.customSaveFolder());
    EXPECT_FALSE(QSettings(file(), QSettings::IniFormat).contains("customSaveFolder"));
    ASSERT_EQ(spy.count(), 2);
    EXPECT_EQ(spy.at(1).at(0).toString(), "customSaveFolder");
}

TEST_F(UserDefaultsTest, AnEmptySaveFolderIsAbsentAndARelativeOneLiesInHome) {
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
        EXPECT_EQ(UserDefaults(file()).customSaveFolder(), expected) << stored.toStdString();
    }
    qputenv("HOME", previousHome);
}

}  // namespace
