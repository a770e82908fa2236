// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QWidget>

#include "storage/hotkey_binding.h"

class KeyRecorderView;
class KeyboardLayout;

// A row of the Video Recording group: the action's symbol, its label over a
// line saying what it does, and its recorder on the right.
class VideoHotkeyRow : public QWidget {
    Q_OBJECT

public:
    struct Text {
        QString label;
        QString description;
        QString symbol;
    };

    VideoHotkeyRow(const Text& text, const HotkeyBinding& binding, const KeyboardLayout& layout,
                   QWidget* parent = nullptr);

    KeyRecorderView* recorder() const { return recorder_; }

private:
    KeyRecorderView* recorder_ = nullptr;
};
