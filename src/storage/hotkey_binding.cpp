// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "storage/hotkey_binding.h"

#include <array>
#include <cstdint>
#include <limits>
#include <utility>

namespace {

// Reads an integer member of type T, refusing other types and values out of range.
template <typename T>
std::optional<T> integerMember(const nlohmann::ordered_json& object, const char* key) {
    const auto member = object.find(key);
    if (member == object.end() || !member->is_number_integer()) {
        return std::nullopt;
    }
    if (member->is_number_unsigned()) {
        const auto value = member->get<std::uint64_t>();
        if (value > static_cast<std::uint64_t>(std::numeric_limits<T>::max())) {
            return std::nullopt;
        }
        return static_cast<T>(value);
    }
    const auto value = member->get<std::int64_t>();
    if (value < static_cast<std::int64_t>(std::numeric_limits<T>::min())) {
        return std::nullopt;
    }
    return static_cast<T>(value);
}

}  // namespace

nlohmann::ordered_json HotkeyBinding::toJson() const {
    nlohmann::ordered_json json = nlohmann::ordered_json::object();
    json["keyCode"] = keyCode;
    json["modifiers"] = modifiers;
    return json;
}

std::optional<HotkeyBinding> HotkeyBinding::fromJson(const nlohmann::ordered_json& json) {
    if (!json.is_object()) {
        return std::nullopt;
    }
    const auto keyCode = integerMember<quint32>(json, "keyCode");
    const auto modifiers = integerMember<qint64>(json, "modifiers");
    if (!keyCode || !modifiers) {
        return std::nullopt;
    }
    return HotkeyBinding{*keyCode, *modifiers};
}

QString displayString(const HotkeyBinding& binding) {
    static constexpr std::array<std::pair<qint64, const char*>, 4> kGlyphs{{
        {KeyModifiers::kControl, "⌃"},
        {KeyModifiers::kAlt, "⌥"},
        {KeyModifiers::kShift, "⇧"},
        {KeyModifiers::kSuper, "⌘"},
    }};
    QString text;
    for (const auto& [bit, glyph] : kGlyphs) {
        if (binding.modifiers & bit) {
            text += QString::fromUtf8(glyph);
        }
    }
    return text + keyName(binding.keyCode);
}
