// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "annotation/color_picker_bridge.h"

#include <QColorDialog>
#include <QEvent>
#include <QWidget>

ColorPickerBridge& ColorPickerBridge::shared() {
    // Never destroyed: the dialog may outlive every window, and it must not
    // be torn down after the application object.
    static auto* const instance = new ColorPickerBridge;
    return *instance;
}

QColorDialog* ColorPickerBridge::ensureDialog() {
    if (!dialog_) {
        // A parentless, button-less, non-modal dialog works like a floating
        // colour panel; Qt's own dialog is used so that every change is
        // reported through currentColorChanged.
        auto* dialog = new QColorDialog;
        dialog->setOptions(QColorDialog::NoButtons | QColorDialog::ShowAlphaChannel |
                           QColorDialog::DontUseNativeDialog);
        dialog->setWindowTitle(QStringLiteral("Colors"));
        dialog->setAccessibleName(QStringLiteral("Colors"));
        dialog->setModal(false);
        dialog->setWindowFlag(Qt::WindowStaysOnTopHint);
        connect(dialog, &QColorDialog::currentColorChanged, this, &ColorPickerBridge::colorChanged);
        dialog->installEventFilter(this);
        dialog_ = dialog;
    }
    return dialog_;
}

void ColorPickerBridge::open(AnnotationState* state, QWidget* anchor) {
    QColorDialog* dialog = ensureDialog();
    // Detach first, so that showing the new document's colour is not reported
    // to the previous document.
    target_ = nullptr;
    if (state) {
        dialog->setCurrentColor(state->currentColor());
    }
    if (anchor && !dialog->isVisible()) {
        const QRect anchorWindow = anchor->window()->frameGeometry();
        dialog->adjustSize();
        dialog->move(anchorWindow.right() + 12, anchorWindow.top());
    }
    dialog->show();
    dialog->raise();
    dialog->activateWindow();
    target_ = state;
}

void ColorPickerBridge::colorChanged(const QColor& color) {
    if (target_) {
        target_->setCurrentColor(color);
    }
}

bool ColorPickerBridge::eventFilter(QObject* watched, QEvent* event) {
    // Spontaneous or not: Escape, the window's close button and hide() all
    // end in a hide event.
    if (watched == dialog_.data() && event->type() == QEvent::Hide) {
        Q_EMIT dialogHidden();
    }
    return QObject::eventFilter(watched, event);
}
