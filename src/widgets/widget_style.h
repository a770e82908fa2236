// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>

// The shared colours and fonts of our panels and palettes. Sizes are in
// logical pixels, fonts included (a font "of 11" is 11 pixels high), so the
// panels keep their proportions at every screen density. Colours follow the widget's palette:
// primary is the text colour, secondary and tertiary are fainter versions
// of it, and the accent is the highlight colour.
namespace widget_style {

inline QColor withAlpha(QColor color, qreal alpha) {
    color.setAlphaF(static_cast<float>(color.alphaF() * alpha));
    return color;
}

inline QColor primary(const QPalette& palette) {
    return palette.color(QPalette::WindowText);
}
inline QColor secondary(const QPalette& palette) {
    return withAlpha(primary(palette), 0.55);
}
inline QColor tertiary(const QPalette& palette) {
    return withAlpha(primary(palette), 0.3);
}
inline QColor accent(const QPalette& palette) {
    return palette.color(QPalette::Highlight);
}

// `from` at t = 0, `to` at t = 1, alpha included.
inline QColor mix(const QColor& from, const QColor& to, qreal t) {
    const auto lerp = [t](float a, float b) { return static_cast<float>(a + (b - a) * t); };
    return QColor::fromRgbF(lerp(from.redF(), to.redF()), lerp(from.greenF(), to.greenF()),
                            lerp(from.blueF(), to.blueF()), lerp(from.alphaF(), to.alphaF()));
}

inline QFont font(const QFont& base, int pixelSize, QFont::Weight weight) {
    QFont result = base;
    result.setPixelSize(pixelSize);
    result.setWeight(weight);
    return result;
}

}  // namespace widget_style
