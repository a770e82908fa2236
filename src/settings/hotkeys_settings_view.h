// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QWidget>
#include <functional>
#include <map>
#include <optional>
#include <vector>

#include "storage/hotkey_config.h"

class KeyRecorderView;
class KeyboardLayout;
class QPushButton;
class UserSettings;

// Given by the program: releases the global key grabs while a shortcut is
// being typed, so the keys reach the recorder, and takes them again after.
// The section calls them in pairs: `pause` when a row starts recording and
// none was, `resume` once recording ends, however it ends.
struct HotkeyGrabPause {
    std::function<void()> pause;
    std::function<void()> resume;
};

// The Hotkeys section of the settings window: the seven global shortcuts in
// three groups, each with a recorder, and "Reset to defaults". At most one row
// records at a time; what it records is written to the settings at once.
class HotkeysSettingsView : public QWidget {
    Q_OBJECT

public:
    HotkeysSettingsView(UserSettings& settings, const KeyboardLayout& layout,
                        HotkeyGrabPause grabPause, QWidget* parent = nullptr);
    ~HotkeysSettingsView() override;

    // The row recording, if any.
    std::optional<HotkeyAction> recordingTarget() const { return recording_; }
    // Ends any recording without changing its binding.
    void stopRecording();

    // An action's recorder (nothing for an unknown action) and the reset button.
    KeyRecorderView* recorder(HotkeyAction action) const;
    QPushButton* resetButton() const { return resetButton_; }

protected:
    void hideEvent(QHideEvent* event) override;

private:
    QWidget* buildContent();
    QWidget* buildGroup(const QString& title, const std::vector<HotkeyAction>& actions);
    void addRow(HotkeyAction action, KeyRecorderView* recorder);
    void startRecording(HotkeyAction action);
    void record(HotkeyAction action, const HotkeyBinding& binding);
    void resetToDefault(HotkeyAction action);
    void resetAll();
    void showBindings(const HotkeyConfig& hotkeys);
    void pauseGrabs();
    void resumeGrabs();

    UserSettings& settings_;
    const KeyboardLayout& layout_;
    HotkeyGrabPause grabPause_;
    std::map<HotkeyAction, KeyRecorderView*> recorders_;
    QPushButton* resetButton_ = nullptr;
    std::optional<HotkeyAction> recording_;
    bool grabsPaused_ = false;
};
