// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QColor>
#include <QRegion>
#include <QWidget>

// How a window outline looks: a rounded rectangle `inset` inside the
// outlined frame, stroked and lightly filled with one colour.
struct OutlineStyle {
    QColor color;
    qreal fillOpacity = 0;
    qreal strokeOpacity = 1;
    qreal lineWidth = 1;
    qreal cornerRadius = 0;
    qreal inset = 2;

    // The window chosen for a recording: blue.
    static OutlineStyle recordingTarget();
    // The window chosen for a screenshot: purple.
    static OutlineStyle captureTarget();
};

// The outline around the window under the pointer while the user picks one:
// a frameless, always-on-top window that never takes focus or input, placed
// over the outlined frame. Where a compositor runs it is translucent and
// also shows the fill; without one, translucent pixels would show black, so
// the window is shaped to the stroke alone and drawn opaque.
class WindowOutline : public QWidget {
    Q_OBJECT

public:
    explicit WindowOutline(const OutlineStyle& style, QWidget* parent = nullptr);

    // Covers `frame` (logical desktop coordinates) and comes to the front.
    void showAround(const QRect& frame);

    // The pixels of a window of `size` covered by a stroke of `lineWidth`
    // along the rounded rectangle `inset` inside it with corner `radius`: a
    // pixel belongs when its centre lies strictly inside the stroke's outer
    // edge and not strictly inside its inner edge.
    static QRegion ringRegion(const QSize& size, qreal inset, qreal lineWidth, qreal radius);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    OutlineStyle style_;
    bool translucent_;
};
