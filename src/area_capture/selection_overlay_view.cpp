// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "area_capture/selection_overlay_view.h"

#include <QCloseEvent>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QPen>
#include <QTimer>
#include <QWindow>
#include <utility>

#include "annotation/annotation_state.h"

namespace {

const QColor kSurroundDimming(0, 0, 0, qRound(0.45 * 255));
const QColor kSelectionOutline(255, 255, 255, qRound(0.9 * 255));
const QColor kHandleShadow(0, 0, 0, qRound(0.4 * 255));
const QColor kLabelFill(0, 0, 0, qRound(0.65 * 255));
constexpr qreal kSelectionOutlineWidth = 1.5;
constexpr qreal kLabelCornerRadius = 5.0;
// Room around the selection that a redraw must cover: outline, handles with
// their shadow, and the size label on either side.
constexpr qreal kRedrawMargin = 12.0;
constexpr qreal kLabelRedrawHeight = 40.0;

QFont sizeLabelFont() {
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    font.setPixelSize(11);
    font.setWeight(QFont::Medium);
    return font;
}

}  // namespace

SelectionOverlayView::SelectionOverlayView(const QPixmap& desktopImage, AnnotationState& state,
                                           const QRect& frame, Callbacks callbacks)
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                           Qt::X11BypassWindowManagerHint),
      desktopImage_(desktopImage),
      state_(state),
      geometry_(QSizeF(frame.size())),
      callbacks_(std::move(callbacks)),
      labelFont_(sizeLabelFont()) {
    setWindowTitle(QStringLiteral("Area selection"));
    setAccessibleName(windowTitle());
    setAttribute(Qt::WA_OpaquePaintEvent);  // the frozen screen covers every pixel
    setAttribute(Qt::WA_NoSystemBackground);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::CrossCursor);
    setGeometry(frame);
}

void SelectionOverlayView::selectWholeScreen() {
    geometry_.selectAll();
    update();
    describeSize();
}

void SelectionOverlayView::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.setClipRegion(event->region());
    painter.drawPixmap(rect(), desktopImage_);
    paintDimming(painter);
    if (!geometry_.selection().isEmpty() || geometry_.isSelectionSet()) {
        paintOutline(painter);
        if (geometry_.isSelectionSet()) {
            paintHandles(painter);
        }
        paintSizeLabel(painter);
    }
    painter.end();
    noteFirstFrame();
}

void SelectionOverlayView::mousePressEvent(QMouseEvent* event) {
    callbacks_.pressed();
    if (event->button() != Qt::LeftButton) {
        return;
    }
    const QRectF before = geometry_.selection();
    const bool wasConfirmed = geometry_.isSelectionSet();
    const auto outcome = geometry_.press(event->position(), state_.isDrawingEnabled());
    if (outcome == AreaSelectionGeometry::Press::newSelection && wasConfirmed) {
        callbacks_.newSelectionStarted();
    }
    redrawAroundAndDescribe(before);
}

void SelectionOverlayView::mouseMoveEvent(QMouseEvent* event) {
    if (event->buttons() & Qt::LeftButton) {
        const QRectF before = geometry_.selection();
        geometry_.drag(event->position());
        redrawAroundAndDescribe(before);
    }
    setCursor(geometry_.cursorAt(event->position(), state_.isDrawingEnabled()));
}

void SelectionOverlayView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        return;
    }
    if (geometry_.release()) {
        callbacks_.selectionConfirmed(geometry_.selection());
    }
    update();
    setCursor(geometry_.cursorAt(event->position(), state_.isDrawingEnabled()));
}

void SelectionOverlayView::keyPressEvent(QKeyEvent* event) {
    if (!callbacks_.key(*event)) {
        QWidget::keyPressEvent(event);
    }
}

void SelectionOverlayView::closeEvent(QCloseEvent* event) {
    event->accept();
    callbacks_.cancel();
}

bool SelectionOverlayView::event(QEvent* event) {
    if (event->type() == QEvent::WindowDeactivate) {
        callbacks_.lostKeyboard();
    }
    return QWidget::event(event);
}

void SelectionOverlayView::paintDimming(QPainter& painter) const {
    const QRectF s = geometry_.selection();
    const QRectF all = rect();
    if (s.width() <= 0) {
        painter.fillRect(all, kSurroundDimming);
        return;
    }
    painter.fillRect(QRectF(0, 0, all.width(), s.top()), kSurroundDimming);
    painter.fillRect(QRectF(0, s.bottom(), all.width(), all.height() - s.bottom()),
                     kSurroundDimming);
    painter.fillRect(QRectF(0, s.top(), s.left(), s.height()), kSurroundDimming);
    painter.fillRect(QRectF(s.right(), s.top(), all.width() - s.right(), s.height()),
                     kSurroundDimming);
}

void SelectionOverlayView::paintOutline(QPainter& painter) const {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(kSelectionOutline, kSelectionOutlineWidth));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(geometry_.selection());
}

void SelectionOverlayView::paintHandles(QPainter& painter) const {
    const qreal r = AreaSelectionGeometry::kHandleRadius;
    painter.setPen(Qt::NoPen);
    for (const QPointF& centre : AreaSelectionGeometry::handlePositions(geometry_.selection())) {
        // A soft shadow one point below each grip.
        painter.setBrush(kHandleShadow);
        painter.drawEllipse(centre + QPointF(0, 1), r + 1, r + 1);
        painter.setBrush(Qt::white);
        painter.drawEllipse(centre, r, r);
    }
}

void SelectionOverlayView::paintSizeLabel(QPainter& painter) const {
    const QString text = sizeText();
    const QFontMetricsF metrics(labelFont_);
    const QSizeF textSize(metrics.horizontalAdvance(text), metrics.height());
    const QRectF box = AreaSelectionGeometry::sizeLabelBox(geometry_.selection(), textSize);
    painter.setPen(Qt::NoPen);
    painter.setBrush(kLabelFill);
    painter.drawRoundedRect(box, kLabelCornerRadius, kLabelCornerRadius);
    painter.setFont(labelFont_);
    painter.setPen(Qt::white);
    painter.drawText(
        QPointF(box.left() + AreaSelectionGeometry::kLabelPaddingWidth / 2,
                box.top() + AreaSelectionGeometry::kLabelPaddingHeight / 2 + metrics.ascent()),
        text);
}

QString SelectionOverlayView::sizeText() const {
    const qreal ratio = windowHandle() ? windowHandle()->devicePixelRatio() : devicePixelRatioF();
    return AreaSelectionGeometry::sizeLabelText(geometry_.selection().size(), ratio);
}

void SelectionOverlayView::describeSize() {
    const bool shown = !geometry_.selection().isEmpty();
    setAccessibleDescription(shown ? sizeText() : QString());
}

void SelectionOverlayView::redrawAround(const QRectF& before) {
    const QRectF after = geometry_.selection();
    if (before.isEmpty() || after.isEmpty()) {
        update();
        return;
    }
    const QRectF touched = before.united(after).adjusted(-kRedrawMargin, -kLabelRedrawHeight,
                                                         kRedrawMargin + 200, kLabelRedrawHeight);
    update(touched.toAlignedRect());
}

void SelectionOverlayView::redrawAroundAndDescribe(const QRectF& before) {
    redrawAround(before);
    describeSize();
}

void SelectionOverlayView::noteFirstFrame() {
    if (firstFrameNoted_ || !windowHandle() || !windowHandle()->isExposed()) {
        return;
    }
    firstFrameNoted_ = true;
    // Queued, so it is reported after the frame has been flushed.
    QTimer::singleShot(0, this, [this] { callbacks_.firstFramePainted(); });
}
