// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QFont>
#include <QPixmap>
#include <QRect>
#include <QRectF>
#include <QString>
#include <QWidget>
#include <functional>

#include "area_capture/area_selection_geometry.h"

class AnnotationState;
class QKeyEvent;

// The area editor's overlay window: the frozen screen, the dimmed surround,
// the selection with its grips and size label. It turns mouse gestures into
// selection changes and hands the editor's keys to its controller.
class SelectionOverlayView : public QWidget {
public:
    struct Callbacks {
        std::function<void(const QRectF&)> selectionConfirmed;
        std::function<void()> newSelectionStarted;
        std::function<void()> cancel;
        // The editor's keys; true when the key was taken.
        std::function<bool(const QKeyEvent&)> key;
        std::function<void()> pressed;
        std::function<void()> lostKeyboard;
        std::function<void()> firstFramePainted;
    };

    SelectionOverlayView(const QPixmap& desktopImage, AnnotationState& state, const QRect& frame,
                         Callbacks callbacks);

    AreaSelectionGeometry& selection() { return geometry_; }
    void selectWholeScreen();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    bool event(QEvent* event) override;

private:
    void paintDimming(QPainter& painter) const;
    void paintOutline(QPainter& painter) const;
    void paintHandles(QPainter& painter) const;
    void paintSizeLabel(QPainter& painter) const;
    // The size label's text, also for assistive technologies.
    QString sizeText() const;
    void describeSize();
    // Repaints only what a selection change touches: the old and the new
    // selection with their grips and labels.
    void redrawAround(const QRectF& before);
    void redrawAroundAndDescribe(const QRectF& before);
    void noteFirstFrame();

    QPixmap desktopImage_;
    AnnotationState& state_;
    AreaSelectionGeometry geometry_;
    Callbacks callbacks_;
    QFont labelFont_;
    bool firstFrameNoted_ = false;
};
