// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QTimer>
#include <functional>

#include "settings/settings_page.h"

class QPushButton;

// The "About" section: the name, the version, a check for updates, and who
// made it.
class AboutSettingsView : public SettingsPage {
    Q_OBJECT

public:
    static constexpr int kCheckingMs = 3000;

    static QString version();
    static QString websiteURL();

    // `checkForUpdates` empty disables the button.
    explicit AboutSettingsView(std::function<void()> checkForUpdates, QWidget* parent = nullptr);

    bool isChecking() const { return isChecking_; }
    QPushButton* checkButton() const { return check_; }

private:
    void check();
    void showChecking(bool checking);

    std::function<void()> checkForUpdates_;
    bool isChecking_ = false;
    QPushButton* check_ = nullptr;
    QTimer checkingTimer_;
};
