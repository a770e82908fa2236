// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QColor>
#include <QColorDialog>
#include <QObject>
#include <QPointer>

#include "annotation/annotation_state.h"

class QWidget;

// Connects the one colour dialog of the process to the annotation document of
// the palette that opened it last. The dialog reports every change while the
// user drags (not only on OK), and each report becomes the document's
// current colour. The document is held weakly: once it is gone, reports are
// dropped. One shared instance, GUI thread only, alive for the whole process.
class ColorPickerBridge : public QObject {
    Q_OBJECT

public:
    static ColorPickerBridge& shared();

    // Shows the dialog on `state`'s colour and routes its changes to `state`
    // from now on. `anchor` (optional) is the control that opened it; the
    // dialog is placed next to its window.
    void open(AnnotationState* state, QWidget* anchor = nullptr);

    // The document that receives changes now (null when none or gone).
    AnnotationState* target() const { return target_; }
    // The shared dialog, created by the first open() (null before).
    QColorDialog* dialog() const { return dialog_; }

Q_SIGNALS:
    // The dialog left the screen (closed by the user or hidden). Windows that
    // bypass the window manager take the keyboard back on this.
    void dialogHidden();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    ColorPickerBridge() = default;
    QColorDialog* ensureDialog();
    void colorChanged(const QColor& color);

    QPointer<AnnotationState> target_;
    QPointer<QColorDialog> dialog_;
};
