// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QLoggingCategory>
#include <QString>
#include <functional>

class AutostartEntry;
class KeyboardLayout;
class Notifier;
class Preferences;
class ShelfStore;
class UserSettings;

Q_DECLARE_LOGGING_CATEGORY(lcSettings)

// What the settings window works with, handed down to its sections. The
// stores are the program's shared ones (tests pass their own).
struct SettingsServices {
    Preferences& preferences;
    UserSettings& settings;
    ShelfStore& shelves;
    const KeyboardLayout& keyboardLayout;
    Notifier& notifier;
    const AutostartEntry& autostart;
    // Where a chosen tray icon is copied to.
    QString iconFolder;
    std::function<bool()> screenCaptureGranted;
    std::function<bool()> accessibilityGranted;
    // Release and take back the global hotkeys, so that a combination being
    // recorded reaches the recorder instead of starting its action.
    std::function<void()> pauseHotkeys;
    std::function<void()> resumeHotkeys;
    // A check for updates the user asked for; empty where the program cannot
    // update itself, which disables the buttons.
    std::function<void()> checkForUpdates;
};
