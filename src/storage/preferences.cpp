// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "storage/preferences.h"

#include <QDir>
#include <QStandardPaths>

namespace {

constexpr auto kLaunchAtLogin = Preferences::Key::launchAtLogin;
constexpr auto kShowHUDOnCapture = Preferences::Key::showHUDOnCapture;
constexpr auto kAutoDismissSeconds = Preferences::Key::autoDismissSeconds;
constexpr auto kCustomAppIconPath = Preferences::Key::customAppIconPath;
constexpr auto kCheckForUpdatesAutomatically = Preferences::Key::checkForUpdatesAutomatically;
constexpr auto kMaxScreenshots = Preferences::Key::maxScreenshots;
constexpr auto kAutoClearDays = Preferences::Key::autoClearDays;
constexpr auto kCustomSaveFolder = Preferences::Key::customSaveFolder;
constexpr auto kHasSeenOnboarding = Preferences::Key::hasSeenOnboarding;

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

Preferences& Preferences::shared() {
    static auto* instance = new Preferences(defaultsFilePath());
    return *instance;
}

Preferences::Preferences(const QString& filePath, QObject* parent)
    : QObject(parent), settings_(filePath, QSettings::IniFormat) {}

void Preferences::store(const char* key, const QVariant& value) {
    settings_.setValue(QLatin1String(key), value);
    settings_.sync();
    Q_EMIT valueChanged(QLatin1String(key));
}

void Preferences::remove(const char* key) {
    settings_.remove(QLatin1String(key));
    settings_.sync();
    Q_EMIT valueChanged(QLatin1String(key));
}

bool Preferences::launchAtLogin() const {
    return settings_.value(QLatin1String(kLaunchAtLogin), kLaunchAtLoginDefault).toBool();
}

void Preferences::setLaunchAtLogin(bool enabled) {
    store(kLaunchAtLogin, enabled);
}

bool Preferences::showHUDOnCapture() const {
    return settings_.value(QLatin1String(kShowHUDOnCapture), kShowHUDOnCaptureDefault).toBool();
}

void Preferences::setShowHUDOnCapture(bool enabled) {
    store(kShowHUDOnCapture, enabled);
}

double Preferences::autoDismissSeconds() const {
    const double seconds = settings_.value(QLatin1String(kAutoDismissSeconds)).toDouble();
    return seconds > 0 ? seconds : kAutoDismissSecondsDefault;
}

void Preferences::setAutoDismissSeconds(double seconds) {
    store(kAutoDismissSeconds, seconds);
}

QString Preferences::customAppIconPath() const {
    return settings_.value(QLatin1String(kCustomAppIconPath)).toString();
}

void Preferences::setCustomAppIconPath(const QString& path) {
    store(kCustomAppIconPath, path);
}

bool Preferences::checkForUpdatesAutomatically() const {
    return settings_
        .value(QLatin1String(kCheckForUpdatesAutomatically), kCheckForUpdatesAutomaticallyDefault)
        .toBool();
}

void Preferences::setCheckForUpdatesAutomatically(bool enabled) {
    store(kCheckForUpdatesAutomatically, enabled);
}

int Preferences::maxScreenshots() const {
    const int count = settings_.value(QLatin1String(kMaxScreenshots)).toInt();
    return count >= 1 ? count : kMaxScreenshotsDefault;
}

void Preferences::setMaxScreenshots(int count) {
    store(kMaxScreenshots, count);
}

int Preferences::autoClearDays() const {
    const int days = settings_.value(QLatin1String(kAutoClearDays)).toInt();
    return days >= 1 ? days : kAutoClearDaysDefault;
}

void Preferences::setAutoClearDays(int days) {
    store(kAutoClearDays, days);
}

std::optional<QString> Preferences::customSaveFolder() const {
    const QString folder = settings_.value(QLatin1String(kCustomSaveFolder)).toString();
    // An empty path would mean the working folder, which is nobody's choice.
    if (folder.trimmed().isEmpty()) {
        return std::nullopt;
    }
    return resolvedAgainstHome(folder);
}

void Preferences::setCustomSaveFolder(const std::optional<QString>& folder) {
    if (folder) {
        store(kCustomSaveFolder, *folder);
    } else {
        remove(kCustomSaveFolder);
    }
}

QString Preferences::appcastURL() const {
    return settings_.value(QLatin1String(Key::appcastURL)).toString();
}

QString Preferences::updateCAFile() const {
    return settings_.value(QLatin1String(Key::updateCAFile)).toString();
}

bool Preferences::hasSeenOnboarding() const {
    return settings_.value(QLatin1String(kHasSeenOnboarding), false).toBool();
}

void Preferences::setHasSeenOnboarding(bool seen) {
    store(kHasSeenOnboarding, seen);
}

// Window frames live in a group of their own, one entry per window name.
QByteArray Preferences::windowFrame(const QString& name) const {
    return settings_.value(QStringLiteral("windowFrames/") + name).toByteArray();
}

void Preferences::setWindowFrame(const QString& name, const QByteArray& geometry) {
    settings_.setValue(QStringLiteral("windowFrames/") + name, geometry);
    settings_.sync();
}
