#pragma once

#include <QString>
#include <QtGlobal>
#include <nlohmann/json.hpp>
#include <optional>

// One global shortcut: a key in the position-based code of the ANSI keyboard
// (18 is the "1" key, 19 the "2" key, …; the platform layer translates these to
// and from X keycodes) and a modifier mask.
struct HotkeyBinding {
    // Modifier bits as stored. On Linux "command" is the Super (logo) key.
    static constexpr qint64 kCommand = 0x100;
    static constexpr qint64 kShift = 0x200;
    static constexpr qint64 kOption = 0x800;
    static constexpr qint64 kControl = 0x1000;

    quint32 keyCode = 0;
    qint64 modifiers = 0;

    bool operator==(const HotkeyBinding&) const = default;

    nlohmann::ordered_json toJson() const;
    static std::optional<HotkeyBinding> fromJson(const nlohmann::ordered_json& json);
};

// The fixed label of a key code ("A", "1", "↩", "F5", …), or "(code)" for keys
// without one.
QString keyName(quint32 keyCode);

// The text form: ⌃⌥⇧⌘ in that fixed order, then the key name (⇧⌘1, ⌃⌥Space).
// Unknown modifier bits are not shown.
QString displayString(const HotkeyBinding& binding);
