// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include "settings/settings_page.h"
#include "settings/settings_services.h"
#include "settings/settings_stepper.h"

class QLabel;

// The "Storage" section: how many captures the library keeps, after how
// many days they are cleared, and the folder new captures go to.
class StorageSettingsView : public SettingsPage {
    Q_OBJECT

public:
    static constexpr StepperRange kMaxScreenshotsRange{50, 1000, 50};
    static constexpr StepperRange kAutoClearDaysRange{7, 365, 7};

    explicit StorageSettingsView(const SettingsServices& services, QWidget* parent = nullptr);

    SettingsStepper* maxScreenshotsStepper() const { return maxScreenshots_; }
    SettingsStepper* autoClearDaysStepper() const { return autoClearDays_; }
    QLabel* saveFolderLabel() const { return saveFolder_; }

    // Stores `folder` as the save folder, as if chosen in the folder dialog.
    void chooseSaveFolder(const QString& folder);

private:
    void showValues();

    SettingsServices services_;
    SettingsStepper* maxScreenshots_ = nullptr;
    SettingsStepper* autoClearDays_ = nullptr;
    QLabel* saveFolder_ = nullptr;
};
