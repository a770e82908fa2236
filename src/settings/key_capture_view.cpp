// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "settings/key_capture_view.h"

#include <QKeyEvent>
#include <algorithm>
#include <array>
#include <utility>

#include "platform/key_codes.h"

namespace {

// The Qt modifiers a stored binding can hold; Caps Lock, Num Lock, the keypad
// flag and the group switch are not among them.
constexpr std::array<std::pair<Qt::KeyboardModifier, qint64>, 4> kModifierBits{{
    {Qt::MetaModifier, KeyModifiers::kSuper},
    {Qt::ShiftModifier, KeyModifiers::kShift},
    {Qt::AltModifier, KeyModifiers::kAlt},
    {Qt::ControlModifier, KeyModifiers::kControl},
}};

// Keys that only change what other keys do. Holding one must not be recorded
// as a shortcut of its own ("Shift+Shift").
constexpr std::array<int, 13> kModifierKeys{
    Qt::Key_Shift,   Qt::Key_Control,    Qt::Key_Meta,        Qt::Key_Alt,     Qt::Key_AltGr,
    Qt::Key_Super_L, Qt::Key_Super_R,    Qt::Key_Hyper_L,     Qt::Key_Hyper_R, Qt::Key_CapsLock,
    Qt::Key_NumLock, Qt::Key_ScrollLock, Qt::Key_Mode_switch,
};

// The same keys by evdev code, for layouts that give them unusual key symbols:
// the left and right Control, Shift, Alt and logo keys, and Caps Lock.
constexpr std::array<quint32, 9> kModifierEvdevCodes{29, 97, 42, 54, 56, 100, 125, 126, 58};

qint64 modifierMask(Qt::KeyboardModifiers modifiers) {
    qint64 mask = 0;
    for (const auto& [qtModifier, bit] : kModifierBits) {
        if (modifiers.testFlag(qtModifier)) {
            mask |= bit;
        }
    }
    return mask;
}

bool isModifierKey(const QKeyEvent& event, quint32 evdevCode) {
    return std::ranges::find(kModifierKeys, event.key()) != kModifierKeys.end() ||
           std::ranges::find(kModifierEvdevCodes, evdevCode) != kModifierEvdevCodes.end();
}

}  // namespace

KeyCaptureView::KeyCaptureView(QWidget* parent) : QWidget(parent) {
    // Focus arrives only when a row starts recording, never by Tab or click.
    setFocusPolicy(Qt::NoFocus);
    setAccessibleName(QStringLiteral("Type shortcut…"));
    setFixedSize(0, 0);
}

KeyCaptureView::Reading KeyCaptureView::read(const QKeyEvent& event) {
    const quint32 xKeycode = event.nativeScanCode();
    // Without the native code the key's position is unknown: only Escape is
    // understood then.
    if (xKeycode < KeyCodes::kXKeycodeOffset) {
        return {event.key() == Qt::Key_Escape ? Outcome::cancel : Outcome::ignore, {}};
    }
    const quint32 keyCode = KeyCodes::keyCodeFromXKeycode(xKeycode);
    if (keyCode == KeyCodes::kEscape) {
        return {Outcome::cancel, {}};
    }
    const qint64 mask = modifierMask(event.modifiers());
    if (mask == 0 || isModifierKey(event, xKeycode - KeyCodes::kXKeycodeOffset)) {
        return {Outcome::ignore, {}};
    }
    return {Outcome::capture, HotkeyBinding{keyCode, mask}};
}

bool KeyCaptureView::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride) {
        // While recording, no shortcut of the window may take the keys.
        event->accept();
        return true;
    }
    if (event->type() == QEvent::KeyPress) {
        // Tab and Backtab would otherwise move the focus instead of being read.
        keyPressEvent(static_cast<QKeyEvent*>(event));
        return true;
    }
    return QWidget::event(event);
}

void KeyCaptureView::keyPressEvent(QKeyEvent* event) {
    event->accept();
    const Reading reading = read(*event);
    switch (reading.outcome) {
        case Outcome::cancel:
            Q_EMIT cancelled();
            break;
        case Outcome::capture:
            Q_EMIT captured(reading.binding);
            break;
        case Outcome::ignore:
            break;
    }
}
