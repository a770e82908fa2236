#include "storage/user_defaults.h"

#include <QDir>
#include <QStandardPaths>

namespace {

constexpr auto kLaunchAtLogin = UserDefaults::Key::launchAtLogin;
constexpr auto kShowHUDOnCapture = UserDefaults::Key::showHUDOnCapture;
constexpr auto kAutoDismissSeconds = UserDefaults::Key::autoDismissSeconds;
constexpr auto kCustomAppIconPath = UserDefaults::Key::customAppIconPath;
constexpr auto kCheckForUpdatesAutomatically = UserDefaults::Key::checkForUpdatesAutomatically;
constexpr auto kMaxScreenshots = UserDefaults::Key::maxScreenshots;
constexpr auto kAutoClearDays = UserDefaults::Key::autoClearDays;
constexpr auto kCustomSaveFolder = UserDefaults::Key::customSaveFolder;
constexpr auto kHasSeenOnboarding = UserDefaults::Key::hasSeenOnboarding;

QString defaultsFilePath() {
    return QDir(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation))
        .filePath(QStringLiteral("Quillix/Quillix.conf"));
}

// A relative folder (or one written with "~") lies in the home folder, not in
// whatever the working folder happens to be.
QString resolvedAgainstHome(const QString& folder) {
    if (folder == QLatin1String("~")) {
        return QDir::homePath();
    }
    if (folder.startsWith(QLatin1String("~/"))) {
        return QDir::cleanPath(QDir::home().filePath(folder.mid(2)));
    }
    return QDir::cleanPath(QDir::home().filePath(folder));  // an absolute one stays
}

}  // namespace

UserDefaults& UserDefaults::shared() {
    static auto* instance = new UserDefaults(defaultsFilePath());
    return *instance;
}

UserDefaults::UserDefaults(const QString& filePath, QObject* parent)
    : QObject(parent), settings_(filePath, QSettings::IniFormat) {}

void UserDefaults::store(const char* key, const QVariant& value) {
    settings_.setValue(QLatin1String(key), value);
    settings_.sync();
    Q_EMIT valueChanged(QLatin1String(key));
}

void UserDefaults::remove(const char* key) {
    settings_.remove(QLatin1String(key));
    settings_.sync();
    Q_EMIT valueChanged(QLatin1String(key));
}

bool UserDefaults::launchAtLogin() const {
    return settings_.value(QLatin1String(kLaunchAtLogin), kLaunchAtLoginDefault).toBool();
}

void UserDefaults::setLaunchAtLogin(bool enabled) {
    store(kLaunchAtLogin, enabled);
}

bool UserDefaults::showHUDOnCapture() const {
    return settings_.value(QLatin1String(kShowHUDOnCapture), kShowHUDOnCaptureDefault).toBool();
}

void UserDefaults::setShowHUDOnCapture(bool enabled) {
    store(kShowHUDOnCapture, enabled);
}

double UserDefaults::autoDismissSeconds() const {
    const double seconds = settings_.value(QLatin1String(kAutoDismissSeconds)).toDouble();
    return seconds > 0 ? seconds : kAutoDismissSecondsDefault;
}

void UserDefaults::setAutoDismissSeconds(double seconds) {
    store(kAutoDismissSeconds, seconds);
}

QString UserDefaults::customAppIconPath() const {
    return settings_.value(QLatin1String(kCustomAppIconPath)).toString();
}

void UserDefaults::setCustomAppIconPath(const QString& path) {
    store(kCustomAppIconPath, path);
}

bool UserDefaults::checkForUpdatesAutomatically() const {
    return settings_
        .value(QLatin1String(kCheckForUpdatesAutomatically), kCheckForUpdatesAutomaticallyDefault)
        .toBool();
}

void UserDefaults::setCheckForUpdatesAutomatically(bool enabled) {
    store(kCheckForUpdatesAutomatically, enabled);
}

int UserDefaults::maxScreenshots() const {
    const int count = settings_.value(QLatin1String(kMaxScreenshots)).toInt();
    return count >= 1 ? count : kMaxScreenshotsDefault;
}

void UserDefaults::setMaxScreenshots(int count) {
    store(kMaxScreenshots, count);
}

int UserDefaults::autoClearDays() const {
    const int days = settings_.value(QLatin1String(kAutoClearDays)).toInt();
    return days >= 1 ? days : kAutoClearDaysDefault;
}

void UserDefaults::setAutoClearDays(int days) {
    store(kAutoClearDays, days);
}

std::optional<QString> UserDefaults::customSaveFolder() const {
    const QString folder = settings_.value(QLatin1String(kCustomSaveFolder)).toString();
    // An empty path would mean the working folder, which is nobody's choice.
    if (folder.trimmed().isEmpty()) {
        return std::nullopt;
    }
    return resolvedAgainstHome(folder);
}

void UserDefaults::setCustomSaveFolder(const std::optional<QString>& folder) {
    if (folder) {
        store(kCustomSaveFolder, *folder);
    } else {
        remove(kCustomSaveFolder);
    }
}

bool UserDefaults::hasSeenOnboarding() const {
    return settings_.value(QLatin1String(kHasSeenOnboarding), false).toBool();
}

void UserDefaults::setHasSeenOnboarding(bool seen) {
    store(kHasSeenOnboarding, seen);
}
