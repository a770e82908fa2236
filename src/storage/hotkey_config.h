// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <array>
#include <nlohmann/json.hpp>
#include <optional>

#include "storage/hotkey_binding.h"

// The program's global actions, in the order their bindings are stored.
enum class HotkeyAction {
    openMenu,
    showHUD,
    captureArea,
    captureWindow,
    captureScreen,
    recordWindow,
    recordScreen,
};

inline constexpr std::array<HotkeyAction, 7> kAllHotkeyActions{
    HotkeyAction::openMenu,      HotkeyAction::showHUD,       HotkeyAction::captureArea,
    HotkeyAction::captureWindow, HotkeyAction::captureScreen, HotkeyAction::recordWindow,
    HotkeyAction::recordScreen,
};

// The JSON member name of an action ("openMenu", "captureArea", …).
const char* jsonKey(HotkeyAction action);

// One binding per action.
class HotkeyConfig {
public:
    // ⇧⌘1 open menu, ⇧⌘2 HUD, ⌘2 area, ⌘3 window, ⌘4 screen, ⌘6 record
    // window, ⌘7 record screen.
    static HotkeyConfig defaults();

    const HotkeyBinding& binding(HotkeyAction action) const;
    void setBinding(HotkeyAction action, const HotkeyBinding& binding);

    bool operator==(const HotkeyConfig&) const = default;

    // An object with the seven actions in their fixed order.
    nlohmann::ordered_json toJson() const;

    // Every action is required; extra members are ignored.
    static std::optional<HotkeyConfig> fromJson(const nlohmann::ordered_json& json);

private:
    std::array<HotkeyBinding, kAllHotkeyActions.size()> bindings_{};
};
