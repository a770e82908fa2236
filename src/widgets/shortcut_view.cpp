// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "widgets/shortcut_view.h"

#include <QHBoxLayout>
#include <QLabel>

#include "platform/keyboard_layout.h"
#include "platform/platform_services.h"

ShortcutView::ShortcutView(const HotkeyBinding& binding, QWidget* parent)
    : ShortcutView(binding, PlatformServices::instance().keyboardLayout(), parent) {}

ShortcutView::ShortcutView(const HotkeyBinding& binding, const KeyboardLayout& layout,
                           QWidget* parent)
    : QWidget(parent), binding_(binding), layout_(layout) {
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(1);
    row->setAlignment(Qt::AlignVCenter);

    // This order differs from the text form's (⌃⌥⇧⌘) on purpose.
    static constexpr std::pair<qint64, const char*> kGlyphs[] = {
        {KeyModifiers::kSuper, "⌘"},
        {KeyModifiers::kShift, "⇧"},
        {KeyModifiers::kAlt, "⌥"},
        {KeyModifiers::kControl, "⌃"},
    };
    for (const auto& [bit, glyph] : kGlyphs) {
        if (binding.modifiers & bit) {
            addLabel(QString::fromUtf8(glyph), 9, QFont::Medium);
        }
    }
    keyLabel_ = addLabel(QString(), 10, QFont::Medium);
    showKeyLabel();
    connect(&layout, &KeyboardLayout::changed, this, &ShortcutView::showKeyLabel);

    setAccessibleName(displayString(binding));
    setToolTip(displayString(binding));
}

void ShortcutView::showKeyLabel() {
    const QString label = layout_.keyLabel(binding_.keyCode);
    keyLabel_->setText(label);
    keyLabel_->setAccessibleName(label);
}

QLabel* ShortcutView::addLabel(const QString& text, int pointSize, QFont::Weight weight) {
    auto* label = new QLabel(text, this);
    QFont font = label->font();
    font.setStyleHint(QFont::Monospace);
    font.setFamily(QStringLiteral("monospace"));
    font.setPointSize(pointSize);
    font.setWeight(weight);
    label->setFont(font);
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, palette.color(QPalette::PlaceholderText));
    label->setPalette(palette);
    label->setAccessibleName(text);
    layout()->addWidget(label);
    return label;
}

QString ShortcutView::shownText() const {
    QString text;
    for (const QLabel* label : findChildren<QLabel*>(QString(), Qt::FindDirectChildrenOnly)) {
        text += label->text();
    }
    return text;
}
