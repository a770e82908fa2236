// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QWidget>

#include "storage/hotkey_binding.h"

class KeyRecorderView;
class KeyboardLayout;

// A row of the Menu and Capture groups: the action's label on the left, its
// recorder on the right.
class EditableHotkeyRow : public QWidget {
    Q_OBJECT

public:
    EditableHotkeyRow(const QString& label, const HotkeyBinding& binding,
                      const KeyboardLayout& layout, QWidget* parent = nullptr);

    KeyRecorderView* recorder() const { return recorder_; }

private:
    KeyRecorderView* recorder_ = nullptr;
};
