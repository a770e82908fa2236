// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "settings/video_hotkey_row.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include "settings/key_recorder_view.h"
#include "widgets/symbol_icon.h"
#include "widgets/widget_style.h"

VideoHotkeyRow::VideoHotkeyRow(const Text& text, const HotkeyBinding& binding,
                               const KeyboardLayout& layout, QWidget* parent)
    : QWidget(parent) {
    setAccessibleName(text.label);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(12, 6, 8, 6);
    row->setSpacing(10);

    auto* symbol = new QLabel(this);
    symbol->setAccessibleName(text.label);
    symbol->setPixmap(
        symbolPixmap(text.symbol, QColor(0xd9, 0x30, 0x25), QSize(20, 20), devicePixelRatioF()));
    auto* title = new QLabel(text.label, this);
    title->setAccessibleName(text.label);
    auto* description = new QLabel(text.description, this);
    description->setAccessibleName(text.description);
    description->setFont(widget_style::font(font(), 11, QFont::Normal));
    QPalette faint = description->palette();
    faint.setColor(QPalette::WindowText, widget_style::secondary(faint));
    description->setPalette(faint);

    auto* lines = new QVBoxLayout;
    lines->setSpacing(1);
    lines->addWidget(title);
    lines->addWidget(description);
    recorder_ = new KeyRecorderView(text.label, binding, layout, this);
    row->addWidget(symbol);
    row->addLayout(lines, 1);
    row->addWidget(recorder_);
}
