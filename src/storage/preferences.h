// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QByteArray>
#include <QObject>
#include <QSettings>
#include <QString>
#include <optional>

// The simple per-user preferences kept outside settings.bin, in
// $XDG_CONFIG_HOME/Quillix/Quillix.conf. This class is the only place that
// spells their keys; each accessor applies the key's reading rule (for
// example a "maxScreenshots" below 1 reads as 200). One shared instance,
// confined to the GUI thread.
class Preferences : public QObject {
    Q_OBJECT

public:
    static Preferences& shared();

    // Reads and writes the given INI file (tests pass their own).
    explicit Preferences(const QString& filePath, QObject* parent = nullptr);

    // The stored key names, for code that reacts to valueChanged().
    struct Key {
        static constexpr const char* launchAtLogin = "launchAtLogin";
        static constexpr const char* showHUDOnCapture = "showHUDOnCapture";
        static constexpr const char* autoDismissSeconds = "autoDismissSeconds";
        static constexpr const char* customAppIconPath = "customAppIconPath";
        static constexpr const char* checkForUpdatesAutomatically = "checkForUpdatesAutomatically";
        static constexpr const char* maxScreenshots = "maxScreenshots";
        static constexpr const char* autoClearDays = "autoClearDays";
        static constexpr const char* customSaveFolder = "customSaveFolder";
        static constexpr const char* hasSeenOnboarding = "hasSeenOnboarding";
        static constexpr const char* appcastURL = "appcastURL";
        static constexpr const char* updateCAFile = "updateCAFile";
    };

    // Declared defaults, as the settings views show them.
    static constexpr bool kLaunchAtLoginDefault = false;
    static constexpr bool kShowHUDOnCaptureDefault = true;
    static constexpr double kAutoDismissSecondsDefault = 7.0;
    static constexpr bool kCheckForUpdatesAutomaticallyDefault = true;
    static constexpr int kMaxScreenshotsDefault = 200;
    static constexpr int kAutoClearDaysDefault = 30;

    bool launchAtLogin() const;
    void setLaunchAtLogin(bool enabled);

    // Stored and shown by the settings; nothing else consults it.
    bool showHUDOnCapture() const;
    void setShowHUDOnCapture(bool enabled);

    // Seconds the capture HUD stays up; 0 or less reads as 7.
    double autoDismissSeconds() const;
    void setAutoDismissSeconds(double seconds);

    // Image file for the tray icon; empty means the built-in icon.
    QString customAppIconPath() const;
    void setCustomAppIconPath(const QString& path);

    bool checkForUpdatesAutomatically() const;
    void setCheckForUpdatesAutomatically(bool enabled);

    // The most captures listed and kept; below 1 reads as 200.
    int maxScreenshots() const;
    void setMaxScreenshots(int count);

    // Age in days after which captures are cleared at launch; below 1 reads as 30.
    int autoClearDays() const;
    void setAutoClearDays(int days);

    // Where captures are written; nothing means the default save folder.
    // An empty stored path counts as none; a relative one (or one starting
    // with "~/") lies in the home folder.
    std::optional<QString> customSaveFolder() const;
    void setCustomSaveFolder(const std::optional<QString>& folder);

    bool hasSeenOnboarding() const;
    void setHasSeenOnboarding(bool seen);

    // A private mirror's update feed; empty means the built-in address.
    QString appcastURL() const;
    // A PEM file of extra certificate authorities trusted for updates.
    QString updateCAFile() const;

    // The remembered position and size of the window saved under `name`
    // (QWidget::saveGeometry()); empty when none was saved.
    QByteArray windowFrame(const QString& name) const;
    void setWindowFrame(const QString& name, const QByteArray& geometry);

Q_SIGNALS:
    // `key` is the stored key name, e.g. "maxScreenshots".
    void valueChanged(const QString& key);

private:
    void store(const char* key, const QVariant& value);
    void remove(const char* key);

    mutable QSettings settings_;
};
