// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QColor>
#include <QString>
#include <array>
#include <optional>

// The colour labels a user can give a capture, in the order they are offered.
// A label is stored by its raw value ("red", …).
enum class ColorLabel { red, orange, yellow, green, blue, purple };

inline constexpr std::array<ColorLabel, 6> kAllColorLabels = {
    ColorLabel::red,   ColorLabel::orange, ColorLabel::yellow,
    ColorLabel::green, ColorLabel::blue,   ColorLabel::purple};

// "red", "orange", …
QString colorLabelRawValue(ColorLabel label);
// The label with this exact raw value; nothing for any other text.
std::optional<ColorLabel> colorLabelFromRawValue(const QString& rawValue);
// The raw value with its first letter capitalised ("Red"), as menus show it.
QString colorLabelTitle(ColorLabel label);
// The colour every view draws the label in (opaque sRGB).
QColor colorLabelColor(ColorLabel label);
