// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "storage/hotkey_config.h"

namespace {

std::size_t indexOf(HotkeyAction action) {
    return static_cast<std::size_t>(action);
}

}  // namespace

const char* jsonKey(HotkeyAction action) {
    switch (action) {
        case HotkeyAction::openMenu:
            return "openMenu";
        case HotkeyAction::showHUD:
            return "showHUD";
        case HotkeyAction::captureArea:
            return "captureArea";
        case HotkeyAction::captureWindow:
            return "captureWindow";
        case HotkeyAction::captureScreen:
            return "captureScreen";
        case HotkeyAction::recordWindow:
            return "recordWindow";
        case HotkeyAction::recordScreen:
            return "recordScreen";
    }
    return "";
}

HotkeyConfig HotkeyConfig::defaults() {
    constexpr qint64 kSuper = KeyModifiers::kSuper;
    constexpr qint64 kShiftSuper = KeyModifiers::kShift | KeyModifiers::kSuper;
    HotkeyConfig config;
    config.bindings_ = {{
        {18, kShiftSuper},  // openMenu: ⇧⌘1
        {19, kShiftSuper},  // showHUD: ⇧⌘2
        {19, kSuper},       // captureArea: ⌘2
        {20, kSuper},       // captureWindow: ⌘3
        {21, kSuper},       // captureScreen: ⌘4
        {22, kSuper},       // recordWindow: ⌘6
        {26, kSuper},       // recordScreen: ⌘7
    }};
    return config;
}

const HotkeyBinding& HotkeyConfig::binding(HotkeyAction action) const {
    return bindings_[indexOf(action)];
}

void HotkeyConfig::setBinding(HotkeyAction action, const HotkeyBinding& binding) {
    bindings_[indexOf(action)] = binding;
}

nlohmann::ordered_json HotkeyConfig::toJson() const {
    nlohmann::ordered_json json = nlohmann::ordered_json::object();
    for (HotkeyAction action : kAllHotkeyActions) {
        json[jsonKey(action)] = binding(action).toJson();
    }
    return json;
}

std::optional<HotkeyConfig> HotkeyConfig::fromJson(const nlohmann::ordered_json& json) {
    if (!json.is_object()) {
        return std::nullopt;
    }
    HotkeyConfig config;
    for (HotkeyAction action : kAllHotkeyActions) {
        const auto member = json.find(jsonKey(action));
        if (member == json.end()) {
            return std::nullopt;
        }
        const std::optional<HotkeyBinding> binding = HotkeyBinding::fromJson(*member);
        if (!binding) {
            return std::nullopt;
        }
        config.setBinding(action, *binding);
    }
    return config;
}
