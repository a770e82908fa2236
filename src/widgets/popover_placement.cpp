// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "widgets/popover_placement.h"

#include <algorithm>

namespace PopoverPlacement {
namespace {

// Moves `frame` the least distance that puts it inside `bounds` (its top-left
// corner wins when it is larger than `bounds`).
QRect keptInside(QRect frame, const QRect& bounds) {
    frame.moveLeft(
        std::max(bounds.left(), std::min(frame.left(), bounds.right() - frame.width() + 1)));
    frame.moveTop(
        std::max(bounds.top(), std::min(frame.top(), bounds.bottom() - frame.height() + 1)));
    return frame;
}

}  // namespace

QRect popoverFrame(const QRect& trayIcon, const QPoint& pointer, const QRect& available) {
    QRect frame(QPoint(), kPopoverSize);
    if (trayIcon.isEmpty()) {
        frame.moveTopLeft(QPoint(pointer.x() + 1 - kPopoverSize.width() / 2, pointer.y()));
        return keptInside(frame, available);
    }
    frame.moveLeft(trayIcon.center().x() + 1 - kPopoverSize.width() / 2);
    const bool trayAtBottom = trayIcon.center().y() > available.center().y();
    if (trayAtBottom) {
        // Leave room for the pill between the popover and a bottom panel.
        frame.moveBottom(trayIcon.top() - 1 - kPillGap - kPillSize.height() - kPillGap);
    } else {
        frame.moveTop(trayIcon.bottom() + 1);
    }
    return keptInside(frame, available);
}

QRect pillFrame(const QRect& popover, const QRect& available) {
    QRect frame(QPoint(), kPillSize);
    frame.moveLeft(popover.center().x() + 1 - kPillSize.width() / 2);
    frame.moveTop(
        std::min(popover.bottom() + 1 + kPillGap, available.bottom() + 1 - kPillSize.height()));
    return frame;
}

}  // namespace PopoverPlacement
