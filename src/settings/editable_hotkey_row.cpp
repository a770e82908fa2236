// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "settings/editable_hotkey_row.h"

#include <QHBoxLayout>
#include <QLabel>

#include "settings/key_recorder_view.h"

EditableHotkeyRow::EditableHotkeyRow(const QString& label, const HotkeyBinding& binding,
                                     const KeyboardLayout& layout, QWidget* parent)
    : QWidget(parent) {
    setAccessibleName(label);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(12, 6, 8, 6);
    auto* title = new QLabel(label, this);
    title->setAccessibleName(label);
    recorder_ = new KeyRecorderView(label, binding, layout, this);
    row->addWidget(title, 1);
    row->addWidget(recorder_);
}
