// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "settings/hotkey_recorder_button.h"

#include <QFontMetrics>
#include <QPainter>
#include <algorithm>
#include <array>
#include <utility>

#include "platform/key_codes.h"
#include "platform/keyboard_layout.h"
#include "widgets/widget_style.h"

namespace {

constexpr int kHeight = 28;
constexpr int kPadding = 6;
constexpr int kCapSpacing = 3;
constexpr int kCapHeight = 20;
constexpr int kCapMinimumWidth = 20;
constexpr int kCapPadding = 5;
constexpr qreal kRadius = 7;
constexpr int kFontSize = 12;

QString recordingText() {
    return QStringLiteral("Type shortcut…");
}

// The same order as the stored text form.
constexpr std::array<std::pair<qint64, const char*>, 4> kGlyphs{{
    {KeyModifiers::kControl, "⌃"},
    {KeyModifiers::kAlt, "⌥"},
    {KeyModifiers::kShift, "⇧"},
    {KeyModifiers::kSuper, "⌘"},
}};

}  // namespace

HotkeyRecorderButton::HotkeyRecorderButton(const QString& rowLabel, const HotkeyBinding& binding,
                                           const KeyboardLayout& layout, QWidget* parent)
    : QAbstractButton(parent), rowLabel_(rowLabel), layout_(layout), binding_(binding) {
    // Tab reaches it; a click does not take the focus away from the recorder.
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setCursor(Qt::PointingHandCursor);
    connect(&layout, &KeyboardLayout::changed, this, &HotkeyRecorderButton::refresh);
    refresh();
}

void HotkeyRecorderButton::setBinding(const HotkeyBinding& binding) {
    binding_ = binding;
    refresh();
}

void HotkeyRecorderButton::setRecording(bool recording) {
    recording_ = recording;
    refresh();
}

QStringList HotkeyRecorderButton::shownCaps() const {
    if (recording_) {
        return {};
    }
    QStringList caps;
    for (const auto& [bit, glyph] : kGlyphs) {
        if (binding_.modifiers & bit) {
            caps.append(QString::fromUtf8(glyph));
        }
    }
    caps.append(layout_.keyLabel(binding_.keyCode));
    return caps;
}

void HotkeyRecorderButton::refresh() {
    const QString shown = recording_ ? recordingText() : shownCaps().join(QString());
    setAccessibleName(rowLabel_ + QStringLiteral(": ") + shown);
    setToolTip(recording_ ? recordingText() : displayString(binding_));
    updateGeometry();
    update();
}

QFont HotkeyRecorderButton::capFont() const {
    return widget_style::font(font(), kFontSize, QFont::Medium);
}

int HotkeyRecorderButton::capWidth(const QString& text) const {
    return std::max(kCapMinimumWidth,
                    QFontMetrics(capFont()).horizontalAdvance(text) + 2 * kCapPadding);
}

QSize HotkeyRecorderButton::sizeHint() const {
    // Always wide enough for the prompt, so the row does not jump when
    // recording starts.
    int width = QFontMetrics(capFont()).horizontalAdvance(recordingText()) + 2 * kCapPadding;
    if (!recording_) {
        int caps = -kCapSpacing;
        for (const QString& cap : shownCaps()) {
            caps += capWidth(cap) + kCapSpacing;
        }
        width = std::max(width, caps);
    }
    return {width + 2 * kPadding, kHeight};
}

void HotkeyRecorderButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPalette& colours = palette();
    const QColor text = widget_style::primary(colours);
    const bool hovered = underMouse();
    painter.setPen(recording_ || hasFocus() ? QPen(widget_style::accent(colours), 1.5) : Qt::NoPen);
    painter.setBrush(widget_style::withAlpha(text, hovered ? 0.12 : 0.06));
    painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), kRadius, kRadius);
    painter.setFont(capFont());
    if (recording_) {
        painter.setPen(widget_style::secondary(colours));
        painter.drawText(rect(), Qt::AlignCenter, recordingText());
        return;
    }
    const QStringList caps = shownCaps();
    int total = -kCapSpacing;
    for (const QString& cap : caps) {
        total += capWidth(cap) + kCapSpacing;
    }
    int x = (width() - total) / 2;
    const int y = (height() - kCapHeight) / 2;
    for (const QString& cap : caps) {
        const QRect capRect(x, y, capWidth(cap), kCapHeight);
        painter.setPen(Qt::NoPen);
        painter.setBrush(colours.color(QPalette::Base));
        painter.drawRoundedRect(QRectF(capRect), 4, 4);
        painter.setPen(text);
        painter.drawText(capRect, Qt::AlignCenter, cap);
        x += capRect.width() + kCapSpacing;
    }
}
