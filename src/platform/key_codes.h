// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QString>
#include <QtGlobal>
#include <optional>

// Stored bindings use position codes of the ANSI keyboard (18 is the "1" key,
// 19 the "2" key, 36 Return, …). This table translates them to and from Linux
// evdev codes (an X keycode is the evdev code + 8). Keys without a position
// code are stored as 1000 + their evdev code, so every key can be bound.
namespace KeyCodes {

inline constexpr quint32 kUnmappedBase = 1000;
inline constexpr quint32 kXKeycodeOffset = 8;
inline constexpr quint32 kEscape = 53;

// Nothing for a code that is neither in the table nor above the unmapped base.
std::optional<quint32> evdevFromKeyCode(quint32 keyCode);

quint32 keyCodeFromEvdev(quint32 evdevCode);

inline std::optional<quint32> xKeycodeFromKeyCode(quint32 keyCode) {
    const std::optional<quint32> evdev = evdevFromKeyCode(keyCode);
    return evdev ? std::optional<quint32>(*evdev + kXKeycodeOffset) : std::nullopt;
}

inline quint32 keyCodeFromXKeycode(quint32 xKeycode) {
    return keyCodeFromEvdev(xKeycode - kXKeycodeOffset);
}

}  // namespace KeyCodes

// Modifier bits of a stored key combination.
namespace KeyModifiers {

inline constexpr qint64 kSuper = 0x100;  // the logo key
inline constexpr qint64 kShift = 0x200;
inline constexpr qint64 kAlt = 0x800;
inline constexpr qint64 kControl = 0x1000;

}  // namespace KeyModifiers

// The fixed label of a position code ("A", "1", "↩", "F5", …), or "(code)"
// for keys without one.
QString keyName(quint32 keyCode);
