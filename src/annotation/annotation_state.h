// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QColor>
#include <QObject>
#include <QRectF>
#include <QSizeF>
#include <QVector>
#include <optional>
#include <variant>

#include "annotation/annotation.h"
#include "annotation/annotation_tool.h"

// The document an annotation editor edits: the active tool, the colour, the
// committed shapes (oldest first), an optional crop, whether drawing is on,
// and the history of what was added, crops included, so undo goes back in
// the order the user worked.
// One per opened editor, GUI thread only. Every change is announced through
// changed() (and the more specific signals), so palettes and canvas follow.
class AnnotationState : public QObject {
    Q_OBJECT

public:
    static inline const QColor kInitialColor = QColor::fromRgbF(1.0f, 0.27f, 0.27f, 1.0f);

    explicit AnnotationState(QObject* parent = nullptr);

    AnnotationTool activeTool() const { return activeTool_; }
    const QColor& currentColor() const { return currentColor_; }
    const QVector<Annotation>& annotations() const { return annotations_; }
    const std::optional<QRectF>& cropRect() const { return cropRect_; }
    bool isDrawingEnabled() const { return drawingEnabled_; }

    // Written by the canvas on every layout; not announced.
    QSizeF canvasSize() const { return canvasSize_; }
    void setCanvasSize(const QSizeF& size) { canvasSize_ = size; }

    // A crop replaces cropRect; every other kind is appended. Either way it
    // becomes the newest step of the history.
    void add(const Annotation& annotation);
    // Takes back the newest step: drops the newest shape, or puts back the
    // crop (or no crop) that the newest crop replaced. Nothing left: no-op.
    void undo();
    // Empties the document and its history, back to the pencil with drawing
    // off.
    void reset();
    // Picks the tool and switches drawing on (the only way to switch it on).
    void selectTool(AnnotationTool tool);
    // Affects only shapes committed afterwards.
    void setCurrentColor(const QColor& color);

Q_SIGNALS:
    void activeToolChanged(AnnotationTool tool);
    void currentColorChanged(const QColor& color);
    void annotationsChanged();
    void cropRectChanged();
    void drawingEnabledChanged(bool enabled);
    // After any of the above.
    void changed();

private:
    struct AddedShape {};
    struct ChangedCrop {
        std::optional<QRectF> replaced;
    };
    using Step = std::variant<AddedShape, ChangedCrop>;

    void setAnnotations(QVector<Annotation> annotations);
    void setCropRect(const std::optional<QRectF>& crop);
    void setActiveTool(AnnotationTool tool);
    void setDrawingEnabled(bool enabled);

    AnnotationTool activeTool_ = AnnotationTool::pencil;
    QColor currentColor_ = kInitialColor;
    QVector<Annotation> annotations_;
    std::optional<QRectF> cropRect_;
    QVector<Step> history_;  // oldest first
    bool drawingEnabled_ = false;
    QSizeF canvasSize_;
};
