// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QIcon>
#include <QString>
#include <optional>

// The tray icon image: the built-in monochrome "BarIcon", or a user-chosen
// image file, drawn into 18 × 18 points and tinted the way a panel tints a
// template image: in the palette's text colour, outlined in the opposite
// lightness so that it reads on light and dark panels alike.
namespace BarIcon {

inline constexpr int kSize = 18;

QIcon builtIn();

// Nothing when `imagePath` does not hold a loadable image.
std::optional<QIcon> fromFile(const QString& imagePath);

}  // namespace BarIcon
