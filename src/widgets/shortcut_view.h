// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QWidget>

#include "storage/hotkey_binding.h"

class KeyboardLayout;
class QLabel;

// A compact, read-only picture of one binding: the modifier glyphs in the
// order ⌘ ⇧ ⌥ ⌃, then the key as the current keyboard layout labels it, in a
// small monospaced font and a muted colour. The key label follows layout
// switches while it is shown.
class ShortcutView : public QWidget {
    Q_OBJECT

public:
    explicit ShortcutView(const HotkeyBinding& binding, QWidget* parent = nullptr);
    // Tests pass a fixed layout; the program uses the platform's.
    ShortcutView(const HotkeyBinding& binding, const KeyboardLayout& layout,
                 QWidget* parent = nullptr);

    // The glyphs and key label as shown, e.g. "⌘⇧1".
    QString shownText() const;

private:
    QLabel* addLabel(const QString& text, int pointSize, QFont::Weight weight);
    void showKeyLabel();

    const HotkeyBinding binding_;
    const KeyboardLayout& layout_;
    QLabel* keyLabel_ = nullptr;
};
