#include "annotation/annotation_canvas_view.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QPalette>
#include <algorithm>
#include <cmath>
#include <numbers>

#include "annotation/annotation_state.h"

namespace {

constexpr qreal kPencilWidth = 2.0;
constexpr qreal kHighlighterWidth = 12.0;
constexpr qreal kHighlighterOpacity = 0.4;
constexpr qreal kMinimumRectangleSide = 2.0;
constexpr qreal kMinimumRegionSide = 4.0;
constexpr int kTextFieldWidth = 200;
constexpr int kTextFieldHeight = 28;
constexpr int kTextFontPixelSize = 16;

QRectF spannedRect(const QPointF& a, const QPointF& b) {
    return QRectF(QPointF(std::min(a.x(), b.x()), std::min(a.y(), b.y())),
                  QPointF(std::max(a.x(), b.x()), std::max(a.y(), b.y())));
}

// The end moved onto the nearest multiple of 45° around the start, keeping
// the arrow's length (halfway angles round away from zero).
QPointF snappedArrowEnd(const QPointF& start, const QPointF& end) {
    constexpr qreal step = std::numbers::pi / 4.0;
    const QPointF delta = end - start;
    const qreal angle = std::atan2(delta.y(), delta.x());
    const qreal snapped = std::round(angle / step) * step;
    const qreal length = std::hypot(delta.x(), delta.y());
    return start + length * QPointF(std::cos(snapped), std::sin(snapped));
}

QRectF squaredRect(const QRectF& rect) {
    const qreal side = std::min(rect.width(), rect.height());
    return QRectF(rect.topLeft(), QSizeF(side, side));
}

bool isUndoKey(const QKeyEvent* event) {
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
    return event->key() == Qt::Key_Z &&
           (modifiers == Qt::ControlModifier || modifiers == Qt::MetaModifier);
}

QFont textToolFont() {
    QFont font = QApplication::font();
    font.setPixelSize(kTextFontPixelSize);
    font.setWeight(QFont::Medium);
    return font;
}

}  // namespace

size_t qHash(const AnnotationCanvasView::RegionKey& key, size_t seed) noexcept {
    return qHashMulti(seed, static_cast<int>(key.effect), key.rect.x(), key.rect.y(),
                      key.rect.width(), key.rect.height());
}

AnnotationCanvasView::AnnotationCanvasView(AnnotationState& state, const QImage& sourceImage,
                                           QWidget* parent)
    : QWidget(parent), state_(state), sourceImage_(sourceImage) {
    setAccessibleName(QStringLiteral("Annotation canvas"));
    setAttribute(Qt::WA_TranslucentBackground);
    setAutoFillBackground(false);
    followDrawingEnabled(state_.isDrawingEnabled());
    connect(&state_, &AnnotationState::changed, this, qOverload<>(&QWidget::update));
    connect(&state_, &AnnotationState::drawingEnabledChanged, this,
            &AnnotationCanvasView::followDrawingEnabled);
    state_.setCanvasSize(size());
}

AnnotationCanvasView::~AnnotationCanvasView() = default;

void AnnotationCanvasView::setSourceImage(const QImage& image) {
    sourceImage_ = image;
    regionCache_.clear();
    update();
}

void AnnotationCanvasView::setHitTestPassthrough(PassthroughPredicate predicate) {
    hitTestPassthrough_ = std::move(predicate);
}

QLineEdit* AnnotationCanvasView::textField() const {
    return textField_.data();
}

bool AnnotationCanvasView::acceptsInput() const {
    return state_.isDrawingEnabled();
}

void AnnotationCanvasView::followDrawingEnabled(bool enabled) {
    // Click focus is not used: a click must not take focus from an open text
    // field before the press decides whether that field is committed.
    setFocusPolicy(enabled ? Qt::TabFocus : Qt::NoFocus);
    if (!enabled) {
        clearGesture();
        if (hasFocus()) {
            clearFocus();
        }
    }
}

void AnnotationCanvasView::beginGesture(const QPointF& position) {
    if (!acceptsInput()) {
        return;
    }
    gestureActive_ = true;
    if (state_.activeTool() == AnnotationTool::text) {
        inProgressPoints_.clear();
        inProgressStart_.reset();
        openTextField(position);
        return;
    }
    setFocus(Qt::MouseFocusReason);
    inProgressStart_ = position;
    inProgressPoints_ = {position};
}

void AnnotationCanvasView::continueGesture(const QPointF& position) {
    if (!acceptsInput() || !gestureActive_) {
        return;
    }
    inProgressPoints_.append(position);
    update();
}

void AnnotationCanvasView::endGesture(const QPointF& position, Qt::KeyboardModifiers modifiers) {
    if (!acceptsInput() || !gestureActive_) {
        return;
    }
    inProgressPoints_.append(position);
    commitGesture(modifiers);
    clearGesture();
}

void AnnotationCanvasView::clearGesture() {
    gestureActive_ = false;
    inProgressPoints_.clear();
    inProgressStart_.reset();
    update();
}

void AnnotationCanvasView::commitGesture(Qt::KeyboardModifiers modifiers) {
    const AnnotationTool tool = state_.activeTool();
    const QColor color = state_.currentColor();
    const bool shift = modifiers.testFlag(Qt::ShiftModifier);
    if (tool == AnnotationTool::pencil || tool == AnnotationTool::highlighter) {
        if (inProgressPoints_.size() < 2) {
            return;
        }
        const bool pencil = tool == AnnotationTool::pencil;
        state_.add({Annotation::Stroke{inProgressPoints_, pencil ? kPencilWidth : kHighlighterWidth,
                                       color, pencil ? 1.0 : kHighlighterOpacity}});
        return;
    }
    if (!inProgressStart_ || inProgressPoints_.isEmpty()) {
        return;
    }
    const QPointF start = *inProgressStart_;
    const QPointF end = inProgressPoints_.last();
    const QRectF spanned = spannedRect(start, end);
    switch (tool) {
        case AnnotationTool::arrow:
            if (end != start) {
                state_.add(
                    {Annotation::Arrow{start, shift ? snappedArrowEnd(start, end) : end, color}});
            }
            break;
        case AnnotationTool::rectangle: {
            const QRectF rect = shift ? squaredRect(spanned) : spanned;
            if (rect.width() > kMinimumRectangleSide && rect.height() > kMinimumRectangleSide) {
                state_.add({Annotation::Rectangle{rect, color}});
            }
            break;
        }
        case AnnotationTool::blur:
        case AnnotationTool::pixelate:
        case AnnotationTool::crop:
            if (spanned.width() <= kMinimumRegionSide || spanned.height() <= kMinimumRegionSide) {
                break;
            }
            if (tool == AnnotationTool::blur) {
                state_.add({Annotation::Blur{spanned}});
            } else if (tool == AnnotationTool::pixelate) {
                state_.add({Annotation::Pixelate{spanned}});
            } else {
                state_.add({Annotation::Crop{spanned}});
            }
            break;
        default:
            break;
    }
}

void AnnotationCanvasView::openTextField(const QPointF& position) {
    discardTextField();
    auto* field = new QLineEdit(this);
    field->setAccessibleName(QStringLiteral("Annotation text"));
    field->setGeometry(QRect(position.toPoint(), QSize(kTextFieldWidth, kTextFieldHeight)));
    field->setFrame(false);
    field->setFont(textToolFont());
    field->setPlaceholderText(QStringLiteral("Type here…"));
    field->setAttribute(Qt::WA_TranslucentBackground);
    QPalette palette = field->palette();
    palette.setColor(QPalette::Base, Qt::transparent);
    palette.setColor(QPalette::Text, state_.currentColor());
    field->setPalette(palette);
    field->setAutoFillBackground(false);
    field->installEventFilter(this);
    connect(field, &QLineEdit::editingFinished, this, &AnnotationCanvasView::commitTextField);
    textField_ = field;
    field->show();
    field->setFocus(Qt::MouseFocusReason);
}

void AnnotationCanvasView::commitTextField() {
    if (!textField_) {
        return;
    }
    const QString text = textField_->text().trimmed();
    const QPointF origin = textField_->geometry().topLeft();
    const QFont font = textField_->font();
    discardTextField();
    if (!text.isEmpty()) {
        state_.add({Annotation::Text{text, origin, font, state_.currentColor()}});
    }
}

void AnnotationCanvasView::discardTextField() {
    if (!textField_) {
        return;
    }
    QLineEdit* field = textField_.data();
    textField_.clear();
    // Disconnect first: hiding the field moves focus, which would otherwise
    // report the end of editing once more.
    field->disconnect(this);
    field->removeEventFilter(this);
    field->hide();
    field->deleteLater();
    update();
}

bool AnnotationCanvasView::eventFilter(QObject* watched, QEvent* event) {
    if (watched == textField_.data() && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        discardTextField();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void AnnotationCanvasView::mousePressEvent(QMouseEvent* event) {
    if (hitTestPassthrough_ && hitTestPassthrough_(event->position())) {
        event->ignore();
        return;
    }
    event->accept();
    if (event->button() == Qt::LeftButton) {
        beginGesture(event->position());
    }
}

void AnnotationCanvasView::mouseMoveEvent(QMouseEvent* event) {
    event->accept();
    continueGesture(event->position());
}

void AnnotationCanvasView::mouseReleaseEvent(QMouseEvent* event) {
    event->accept();
    if (event->button() == Qt::LeftButton) {
        endGesture(event->position(), event->modifiers());
    }
}

void AnnotationCanvasView::keyPressEvent(QKeyEvent* event) {
    if (acceptsInput() && isUndoKey(event)) {
        state_.undo();
        update();
        event->accept();
        return;
    }
    QWidget::keyPressEvent(event);
}

void AnnotationCanvasView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    state_.setCanvasSize(size());
    regionCache_.clear();
}

FilteredPixels AnnotationCanvasView::cachedRegion(RegionEffect effect, const QRectF& rect) {
    const RegionKey key{effect, rect};
    if (auto used = regionsInUse_.constFind(key); used != regionsInUse_.constEnd()) {
        return used.value();
    }
    FilteredPixels pixels;
    if (auto cached = regionCache_.constFind(key); cached != regionCache_.constEnd()) {
        pixels = cached.value();
    } else {
        pixels = filterRegion(sourceImage_, size(), effect, rect);
    }
    regionsInUse_.insert(key, pixels);
    return pixels;
}

void AnnotationCanvasView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    AnnotationPaintStyle style;
    style.arrowHeadLength = kCanvasArrowHeadLength;
    if (!sourceImage_.isNull()) {
        style.filteredRegion = [this](RegionEffect effect, const QRectF& rect) {
            return cachedRegion(effect, rect);
        };
    }
    regionsInUse_.clear();
    for (const Annotation& annotation : state_.annotations()) {
        paintAnnotation(painter, annotation, style);
    }
    // Keep only what this paint used, so undone regions free their pixels.
    regionCache_.swap(regionsInUse_);
    regionsInUse_.clear();
    if (state_.cropRect()) {
        paintCropSurround(painter, rect(), *state_.cropRect());
    }
    paintGesturePreview(painter);
}

void AnnotationCanvasView::paintGesturePreview(QPainter& painter) const {
    const AnnotationTool tool = state_.activeTool();
    const QColor color = state_.currentColor();
    if (tool == AnnotationTool::pencil) {
        paintPolyline(painter, inProgressPoints_, kPencilWidth, color);
        return;
    }
    if (tool == AnnotationTool::highlighter) {
        QColor translucent = color;
        translucent.setAlphaF(static_cast<float>(kHighlighterOpacity));
        paintPolyline(painter, inProgressPoints_, kHighlighterWidth, translucent);
        return;
    }
    if (!inProgressStart_ || inProgressPoints_.isEmpty()) {
        return;
    }
    const QPointF start = *inProgressStart_;
    const QPointF end = inProgressPoints_.last();
    const QRectF spanned = spannedRect(start, end);
    switch (tool) {
        case AnnotationTool::arrow:
            paintArrow(painter, start, end, color, kCanvasArrowHeadLength);
            break;
        case AnnotationTool::rectangle:
            paintRectangleOutline(painter, spanned, color);
            break;
        case AnnotationTool::blur:
        case AnnotationTool::pixelate:
            paintRegionPreview(painter, spanned);
            break;
        case AnnotationTool::crop:
            paintCropSurround(painter, rect(), spanned);
            break;
        default:
            break;
    }
}
