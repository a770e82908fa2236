// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QString>
#include <optional>

#include "settings/settings_page.h"
#include "settings/settings_services.h"

class PermissionRow;
class QCheckBox;
class QLabel;
class QPushButton;
class QSlider;

// The "General" section: start at login, the capture HUD, the gallery's
// own-captures filter, the tray icon, updates and the permissions.
class GeneralSettingsView : public SettingsPage {
    Q_OBJECT

public:
    explicit GeneralSettingsView(const SettingsServices& services, QWidget* parent = nullptr);

    // Copies the chosen image to `folder`/custom_bar_icon.EXT (replacing an
    // earlier one of that name) and answers the copy's path; nothing when it
    // fails. Reads and writes files: meant for a worker.
    static std::optional<QString> copyCustomIcon(const QString& chosenFile, const QString& folder);

    // Uses `file` as the tray icon, as if chosen in the file dialog.
    void chooseIcon(const QString& file);
    void resetIcon();
    void refreshPermissions();

    QCheckBox* launchAtLoginToggle() const { return launchAtLogin_; }
    QCheckBox* showHUDToggle() const { return showHUD_; }
    QSlider* autoDismissSlider() const { return autoDismiss_; }
    QLabel* autoDismissLabel() const { return autoDismissLabel_; }
    QCheckBox* onlyQuillixToggle() const { return onlyQuillix_; }
    QLabel* onlyQuillixCaption() const { return onlyQuillixCaption_; }
    QPushButton* resetIconButton() const { return resetIcon_; }
    QCheckBox* checkForUpdatesToggle() const { return checkForUpdates_; }
    QPushButton* checkNowButton() const { return checkNow_; }
    PermissionRow* notificationsRow() const { return notifications_; }

Q_SIGNALS:
    // The tray icon should now show `path` (the built-in icon when empty).
    void customBarIconChanged(const QString& path);

protected:
    void showEvent(QShowEvent* event) override;

private:
    void addBehaviourGroup();
    void addRecentScreenshotsGroup();
    void addIconGroup();
    void addUpdatesGroup();
    void addPermissionsGroup();
    void setLaunchAtLogin(bool enabled);
    void showOnlyQuillixCaption();
    void showAutoDismiss();
    void showCustomIcon();
    // Shows what the preferences hold now (another part may have changed them).
    void showPreferences();
    void openIconDialog();
    void openNotificationSettings();

    SettingsServices services_;
    QCheckBox* launchAtLogin_ = nullptr;
    QCheckBox* showHUD_ = nullptr;
    QSlider* autoDismiss_ = nullptr;
    QLabel* autoDismissLabel_ = nullptr;
    QCheckBox* onlyQuillix_ = nullptr;
    QLabel* onlyQuillixCaption_ = nullptr;
    QLabel* iconPreview_ = nullptr;
    QPushButton* resetIcon_ = nullptr;
    QCheckBox* checkForUpdates_ = nullptr;
    QPushButton* checkNow_ = nullptr;
    PermissionRow* screenRecording_ = nullptr;
    PermissionRow* notifications_ = nullptr;
    PermissionRow* accessibility_ = nullptr;
};
