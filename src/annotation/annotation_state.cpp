// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "annotation/annotation_state.h"

AnnotationState::AnnotationState(QObject* parent) : QObject(parent) {}

void AnnotationState::add(const Annotation& annotation) {
    if (const auto* crop = std::get_if<Annotation::Crop>(&annotation.kind)) {
        history_.append(ChangedCrop{cropRect_});
        setCropRect(crop->rect.normalized());
        return;
    }
    history_.append(AddedShape{});
    QVector<Annotation> grown = annotations_;
    grown.append(annotation);
    setAnnotations(std::move(grown));
}

void AnnotationState::undo() {
    if (history_.isEmpty()) {
        return;
    }
    const Step newest = history_.takeLast();
    if (const auto* crop = std::get_if<ChangedCrop>(&newest)) {
        setCropRect(crop->replaced);
        return;
    }
    QVector<Annotation> shrunk = annotations_;
    shrunk.removeLast();
    setAnnotations(std::move(shrunk));
}

void AnnotationState::reset() {
    history_.clear();
    setAnnotations({});
    setCropRect(std::nullopt);
    setActiveTool(AnnotationTool::pencil);
    setDrawingEnabled(false);
}

void AnnotationState::selectTool(AnnotationTool tool) {
    setActiveTool(tool);
    setDrawingEnabled(true);
}

void AnnotationState::setCurrentColor(const QColor& color) {
    currentColor_ = color;
    Q_EMIT currentColorChanged(color);
    Q_EMIT changed();
}

void AnnotationState::setAnnotations(QVector<Annotation> annotations) {
    annotations_ = std::move(annotations);
    Q_EMIT annotationsChanged();
    Q_EMIT changed();
}

void AnnotationState::setCropRect(const std::optional<QRectF>& crop) {
    cropRect_ = crop;
    Q_EMIT cropRectChanged();
    Q_EMIT changed();
}

void AnnotationState::setActiveTool(AnnotationTool tool) {
    activeTool_ = tool;
    Q_EMIT activeToolChanged(tool);
    Q_EMIT changed();
}

void AnnotationState::setDrawingEnabled(bool enabled) {
    drawingEnabled_ = enabled;
    Q_EMIT drawingEnabledChanged(enabled);
    Q_EMIT changed();
}
