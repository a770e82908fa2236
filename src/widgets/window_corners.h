// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QRegion>
#include <QSize>

class QWidget;

// Rounded corners of our borderless panels (popover, pill, editor toolbar).
// They paint a rounded fill on a transparent window; without a compositor
// the X server shows the transparent corners black. There the window is
// shaped to its rounded outline instead; with a compositor it keeps its
// smooth, blended edge and no shape.
namespace WindowCorners {

// The pixels of a window of `size` that a rounded rectangle with corner
// `radius` covers: a pixel belongs to it when its centre lies inside.
QRegion roundedRegion(const QSize& size, qreal radius);

// Shapes `window` to roundedRegion() of its size when no compositor runs,
// and removes any shape when one does. Call it whenever the window is shown
// or resized.
void apply(QWidget& window, qreal radius);

}  // namespace WindowCorners
