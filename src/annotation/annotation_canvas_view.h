// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QHash>
#include <QImage>
#include <QPointF>
#include <QPointer>
#include <QRectF>
#include <QVector>
#include <QWidget>
#include <functional>
#include <optional>

#include "annotation/annotation_painter.h"

class AnnotationState;
class QLineEdit;

// The transparent drawing surface laid over a picture. Turns mouse gestures
// into annotations for the active tool of its document, shows the shape being
// drawn (exactly as it will be committed, Shift constraints included), hosts
// the text tool's one-line field, draws every committed shape and dims
// everything outside the crop. Blur and pixelate regions show the filtered
// pixels of the source image, which is taken to cover the whole canvas.
// While drawing is off the canvas only shows: mouse events are ignored, so
// they reach the parent widget (a host's own selection handling, say).
class AnnotationCanvasView : public QWidget {
    Q_OBJECT

public:
    // Answers true where the canvas should leave a press to its parent.
    using PassthroughPredicate = std::function<bool(const QPointF&)>;

    AnnotationCanvasView(AnnotationState& state, const QImage& sourceImage,
                         QWidget* parent = nullptr);
    ~AnnotationCanvasView() override;

    AnnotationState& state() const { return state_; }

    const QImage& sourceImage() const { return sourceImage_; }
    // Replaces the picture used for blur and pixelate regions.
    void setSourceImage(const QImage& image);

    // Where the picture lies inside the host; kept for the host, drawing
    // does not consult it.
    QRectF imageRect() const { return imageRect_; }
    void setImageRect(const QRectF& rect) { imageRect_ = rect; }

    // Presses where the predicate answers true are ignored, so they reach the
    // parent widget (the host's handles) instead of starting a gesture.
    void setHitTestPassthrough(PassthroughPredicate predicate);

    // Gesture handlers, also called by a host that forwards mouse events it
    // received itself; positions are in canvas coordinates.
    void beginGesture(const QPointF& position);
    void continueGesture(const QPointF& position);
    void endGesture(const QPointF& position, Qt::KeyboardModifiers modifiers);

    // The open text field of the text tool, if any.
    QLineEdit* textField() const;
    // Ends the open text field now, as pressing Return in it would: its
    // trimmed text, when not empty, becomes a text annotation where it was
    // shown, and the field closes either way. Answers whether an annotation
    // was added. Hosts call it before saving, so typed text is not lost.
    bool commitOpenText();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct RegionKey {
        RegionEffect effect;
        QRectF rect;
        bool operator==(const RegionKey&) const = default;
    };
    friend size_t qHash(const RegionKey& key, size_t seed) noexcept;

    bool acceptsInput() const;
    void followDrawingEnabled(bool enabled);
    void followModifiers(const QKeyEvent* event);
    std::optional<Annotation> gestureShape(Qt::KeyboardModifiers modifiers) const;
    void clearGesture();
    void openTextField(const QPointF& position);
    void discardTextField();
    void paintGesturePreview(QPainter& painter) const;
    FilteredPixels cachedRegion(RegionEffect effect, const QRectF& rect);

    AnnotationState& state_;
    QImage sourceImage_;
    QRectF imageRect_;
    PassthroughPredicate hitTestPassthrough_;
    // The drag under way: the press first, then every position since.
    QVector<QPointF> gesturePoints_;
    // The keys held now, so the preview follows Shift during the drag.
    Qt::KeyboardModifiers heldModifiers_;
    bool gestureActive_ = false;
    QPointer<QLineEdit> textField_;
    // Filtered pixels of the regions drawn by the last paint; rebuilt from
    // the regions each paint uses, dropped when the picture or size changes.
    QHash<RegionKey, FilteredPixels> regionCache_;
    QHash<RegionKey, FilteredPixels> regionsInUse_;
};
