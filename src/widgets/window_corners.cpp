// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "widgets/window_corners.h"

#include <QWidget>
#include <QtMath>
#include <algorithm>

#include "platform/platform_services.h"

namespace WindowCorners {
namespace {

// How far the outline stands in from the left (and right) edge on `row`.
int insetOnRow(int row, int height, qreal radius) {
    const qreal centreY = row + 0.5;
    const qreal fromCorner = std::max(radius - centreY, centreY - (height - radius));
    if (fromCorner <= 0) {
        return 0;
    }
    const qreal inset =
        radius - std::sqrt(std::max<qreal>(0, radius * radius - fromCorner * fromCorner));
    // The first pixel whose centre lies at or right of the outline.
    return std::max(0, qCeil(inset - 0.5));
}

}  // namespace

QRegion roundedRegion(const QSize& size, qreal radius) {
    if (size.isEmpty()) {
        return {};
    }
    radius = std::clamp<qreal>(radius, 0, std::min(size.width(), size.height()) / 2.0);
    QRegion region;
    // Rows with the same inset make one rectangle: a handful per corner.
    int bandTop = 0;
    int bandInset = insetOnRow(0, size.height(), radius);
    for (int row = 1; row <= size.height(); ++row) {
        const int inset = row < size.height() ? insetOnRow(row, size.height(), radius) : -1;
        if (inset == bandInset) {
            continue;
        }
        if (size.width() > 2 * bandInset) {
            region += QRect(bandInset, bandTop, size.width() - 2 * bandInset, row - bandTop);
        }
        bandTop = row;
        bandInset = inset;
    }
    return region;
}

void apply(QWidget& window, qreal radius) {
    if (PlatformServices::instance().compositorRunning()) {
        window.clearMask();
    } else {
        window.setMask(roundedRegion(window.size(), radius));
    }
}

}  // namespace WindowCorners
