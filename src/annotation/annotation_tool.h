#pragma once

#include <QString>
#include <array>

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
