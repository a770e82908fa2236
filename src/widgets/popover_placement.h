// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

// Where the gallery popover and the pill under it go on screen. Pure geometry,
// in the top-left-origin coordinates of Qt.
namespace PopoverPlacement {

inline constexpr QSize kPopoverSize{320, 420};
inline constexpr QSize kPillSize{320, 44};
inline constexpr int kPillGap = 6;

// Under the tray icon, centred on it; above it when the tray sits in the lower
// half of the screen; at the pointer when the tray reports no geometry. Always
// inside `available`, the screen's available geometry.
QRect popoverFrame(const QRect& trayIcon, const QPoint& pointer, const QRect& available);

// Centred under the popover with a small gap, never below the bottom of
// `available`.
QRect pillFrame(const QRect& popover, const QRect& available);

}  // namespace PopoverPlacement
