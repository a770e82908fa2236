// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QString>
#include <QtGlobal>
#include <nlohmann/json.hpp>
#include <optional>

#include "platform/key_codes.h"

// One global shortcut: a key in the position-based code of the ANSI keyboard
// (18 is the "1" key, 19 the "2" key, …; the platform layer translates these to
// and from X keycodes) and a mask of KeyModifiers bits.
struct HotkeyBinding {
    quint32 keyCode = 0;
    qint64 modifiers = 0;

    bool operator==(const HotkeyBinding&) const = default;

    nlohmann::ordered_json toJson() const;
    static std::optional<HotkeyBinding> fromJson(const nlohmann::ordered_json& json);
};

// The text form: ⌃⌥⇧⌘ in that fixed order, then the key name (⇧⌘1, ⌃⌥Space).
// Unknown modifier bits are not shown.
QString displayString(const HotkeyBinding& binding);
