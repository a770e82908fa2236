#include "annotation/annotation_tool.h"

QString paletteLabel(AnnotationTool tool) {
    switch (tool) {
        case AnnotationTool::pencil:
            return QStringLiteral("Pencil");
        case AnnotationTool::arrow:
            return QStringLiteral("Arrow");
        case AnnotationTool::rectangle:
            return QStringLiteral("Rectangle");
        case AnnotationTool::text:
            return QStringLiteral("Text");
        case AnnotationTool::blur:
            return QStringLiteral("Blur");
        case AnnotationTool::pixelate:
            return QStringLiteral("Pixelate");
        case AnnotationTool::crop:
            return QStringLiteral("Crop");
        case AnnotationTool::highlighter:
            return QStringLiteral("Highlight");
    }
    return {};
}

QString paletteIconName(AnnotationTool tool) {
    switch (tool) {
        case AnnotationTool::pencil:
            return QStringLiteral("pencil");
        case AnnotationTool::arrow:
            return QStringLiteral("arrow.up.right");
        case AnnotationTool::rectangle:
            return QStringLiteral("rectangle");
        case AnnotationTool::text:
            return QStringLiteral("textformat");
        case AnnotationTool::blur:
            return QStringLiteral("aqi.medium");
        case AnnotationTool::pixelate:
            return QStringLiteral("squareshape.split.2x2");
        case AnnotationTool::crop:
            return QStringLiteral("crop");
        case AnnotationTool::highlighter:
            return QStringLiteral("highlighter");
    }
    return {};
}
