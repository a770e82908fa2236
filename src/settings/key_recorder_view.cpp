// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "settings/key_recorder_view.h"

#include <QHBoxLayout>
#include <QToolButton>

#include "settings/hotkey_recorder_button.h"
#include "settings/key_capture_view.h"
#include "widgets/symbol_icon.h"
#include "widgets/widget_style.h"

namespace {

constexpr QSize kTrashSymbolSize(16, 16);

// Grey at rest and red under the pointer: an auto-raised tool button draws
// its icon's Active pixmaps while hovered.
QIcon trashIcon(const QPalette& palette) {
    const QString name = QStringLiteral("trash");
    QIcon icon = symbolIcon(name, widget_style::secondary(palette), kTrashSymbolSize);
    const QColor red(0xd9, 0x30, 0x25);
    for (const qreal ratio : {1.0, 2.0}) {
        icon.addPixmap(symbolPixmap(name, red, kTrashSymbolSize, ratio), QIcon::Active);
    }
    return icon;
}

}  // namespace

KeyRecorderView::KeyRecorderView(const QString& rowLabel, const HotkeyBinding& binding,
                                 const KeyboardLayout& layout, QWidget* parent)
    : QWidget(parent) {
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(4);

    recorder_ = new HotkeyRecorderButton(rowLabel, binding, layout, this);
    trash_ = new QToolButton(this);
    trash_->setAutoRaise(true);
    trash_->setIcon(trashIcon(palette()));
    trash_->setIconSize(kTrashSymbolSize);
    trash_->setToolTip(QStringLiteral("Reset to default"));
    trash_->setAccessibleName(QStringLiteral("Reset to default"));
    trash_->setFocusPolicy(Qt::TabFocus);
    trash_->setCursor(Qt::PointingHandCursor);
    capture_ = new KeyCaptureView(this);
    row->addWidget(recorder_);
    row->addWidget(trash_);

    connect(recorder_, &QAbstractButton::clicked, this, &KeyRecorderView::recordRequested);
    connect(trash_, &QToolButton::clicked, this, &KeyRecorderView::resetRequested);
    connect(capture_, &KeyCaptureView::captured, this, &KeyRecorderView::captured);
    connect(capture_, &KeyCaptureView::cancelled, this, &KeyRecorderView::cancelled);
}

void KeyRecorderView::setBinding(const HotkeyBinding& binding) {
    recorder_->setBinding(binding);
}

bool KeyRecorderView::isRecording() const {
    return recorder_->isRecording();
}

void KeyRecorderView::setRecording(bool recording) {
    recorder_->setRecording(recording);
    if (recording) {
        capture_->setFocus(Qt::OtherFocusReason);
        return;
    }
    // The keyboard user stays where the recording began.
    if (capture_->hasFocus() || window()->focusWidget() == capture_) {
        capture_->clearFocus();
        recorder_->setFocus(Qt::OtherFocusReason);
    }
}
