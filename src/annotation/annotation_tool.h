// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QColor>
#include <QPointF>
#include <QString>
#include <QVector>
#include <Qt>
#include <array>
#include <optional>

#include "annotation/annotation.h"

// The eight drawing tools, in the order the palettes show them (the ordinal
// is also how a tool is stored).
enum class AnnotationTool {
    pencil,
    arrow,
    rectangle,
    text,
    blur,
    pixelate,
    crop,
    highlighter,
};

inline constexpr std::array<AnnotationTool, 8> kAllAnnotationTools{
    AnnotationTool::pencil, AnnotationTool::arrow,       AnnotationTool::rectangle,
    AnnotationTool::text,   AnnotationTool::blur,        AnnotationTool::pixelate,
    AnnotationTool::crop,   AnnotationTool::highlighter,
};

// The palette label: "Pencil", "Arrow", …, "Highlight" (not "Highlighter").
QString paletteLabel(AnnotationTool tool);

// The symbol name of the palette icon ("pencil", "arrow.up.right", …); the
// icon files are named after it.
QString paletteIconName(AnnotationTool tool);

// The key that picks the tool on its own, without modifiers: P, A, R, T, B,
// X, C or H. Takes a Qt::Key code; any other key picks nothing.
std::optional<AnnotationTool> annotationToolForKey(int qtKey);
// That key as shown to the user, e.g. "P" for "Pencil (P)".
QString annotationToolKeyName(AnnotationTool tool);

// A drag with a drawing tool: every position the pointer passed, the press
// first and the latest last, with the keys held at that latest position.
struct ToolGesture {
    AnnotationTool tool = AnnotationTool::pencil;
    QVector<QPointF> points;
    Qt::KeyboardModifiers modifiers;
    QColor color;
};

// The shape the gesture makes, or nothing when it is too small to keep (or
// the tool draws nothing by dragging, as text). The canvas shows this while
// the drag goes on and commits it at the release, so both always agree.
// With Shift, an arrow's angle snaps to the nearest eighth of a turn and a
// rectangle becomes a square on its shorter side.
std::optional<Annotation> annotationForGesture(const ToolGesture& gesture);
