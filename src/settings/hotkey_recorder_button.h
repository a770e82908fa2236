// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QAbstractButton>
#include <QStringList>

#include "storage/hotkey_binding.h"

class KeyboardLayout;

// The clickable picture of a row's binding: one key cap per part of the
// binding's text form (the modifier glyphs ⌃ ⌥ ⇧ ⌘, then the key as the
// current layout labels it) on a light rounded background that darkens while
// hovered. While its row records it reads "Type shortcut…" instead. Screen
// readers hear the row's label first, then the shortcut ("Capture area: ⌘2").
class HotkeyRecorderButton : public QAbstractButton {
    Q_OBJECT

public:
    HotkeyRecorderButton(const QString& rowLabel, const HotkeyBinding& binding,
                         const KeyboardLayout& layout, QWidget* parent = nullptr);

    void setBinding(const HotkeyBinding& binding);
    void setRecording(bool recording);
    bool isRecording() const { return recording_; }

    // The caps as shown, e.g. {"⇧", "⌘", "1"}; empty while recording.
    QStringList shownCaps() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void refresh();
    QFont capFont() const;
    int capWidth(const QString& text) const;

    const QString rowLabel_;
    const KeyboardLayout& layout_;
    HotkeyBinding binding_;
    bool recording_ = false;
};
