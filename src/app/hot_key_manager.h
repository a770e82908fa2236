// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QList>
#include <QMetaObject>
#include <QObject>
#include <functional>
#include <utility>

#include "storage/hotkey_binding.h"

class HotkeyBackend;
class UserSettings;

// Registers the user's bindings as system-wide hotkeys and calls one callback
// per action on the GUI thread. It does not know what the actions do: the
// owner sets the callbacks, any of which may stay empty. The "capture screen"
// binding is editable but deliberately never registered.
class HotKeyManager : public QObject {
    Q_OBJECT

public:
    // Hotkey ids, one per registered action.
    static constexpr quint32 kOpenMenuId = 1;
    static constexpr quint32 kShowHUDId = 2;
    static constexpr quint32 kCaptureAreaId = 3;
    static constexpr quint32 kCaptureWindowId = 4;
    static constexpr quint32 kRecordWindowId = 5;
    static constexpr quint32 kRecordScreenId = 6;

    // Status of a registration whose modifier mask does not fit 32 bits (the
    // X error code BadValue, which the back end also uses for ungrabbable keys).
    static constexpr int kInvalidMaskStatus = 2;

    HotKeyManager(HotkeyBackend& backend, const UserSettings& settings, QObject* parent = nullptr);
    ~HotKeyManager() override;

    std::function<void()> onTriggered;
    std::function<void()> onShowHUD;
    std::function<void()> onCaptureArea;
    std::function<void()> onCaptureWindow;
    std::function<void()> onRecordWindow;
    std::function<void()> onRecordScreen;

    // Replaces every registration by the current bindings, ids 1 to 6 in
    // order; a failure of one id does not stop the others.
    void registerAll();
    // Removes every hotkey and stops listening for presses.
    void unregisterAll();
    // One registration of a stored key code and modifier mask; logs the
    // outcome, and for a failure also which combination failed and why.
    void registerHotkey(quint32 keyCode, qint64 modifiers, quint32 id);

private:
    QString failureReason(const HotkeyBinding& binding, int status) const;
    void dispatch(quint32 id) const;
    const std::function<void()>* callbackFor(quint32 id) const;

    HotkeyBackend& backend_;
    const UserSettings& settings_;
    QList<std::pair<quint32, HotkeyBinding>> registered_;  // by id, in registration order
    QMetaObject::Connection pressHandler_;
};
