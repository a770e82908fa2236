// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "annotation/annotation_canvas_view.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QPalette>
#include <QStyle>
#include <QStyleOptionFrame>
#include <algorithm>
#include <type_traits>
#include <variant>

#include "annotation/annotation_state.h"

namespace {

constexpr int kTextFieldWidth = 200;
constexpr int kTextFontPixelSize = 16;
// Room kept after the text for the cursor, so the field never scrolls its
// text sideways (the committed text could not follow).
constexpr int kTextFieldTrailingRoom = 8;
// QLineEdit's fixed padding between its contents rectangle and the text's
// line box (not exposed by its API).
constexpr int kLineEditHorizontalPadding = 2;
constexpr int kLineEditVerticalPadding = 1;

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

// The text tool's field. Its text is top-aligned, so where the text's line
// box starts inside it is known, and the committed text can be put on
// exactly the same pixels.
class TextToolField : public QLineEdit {
public:
    explicit TextToolField(QWidget* parent) : QLineEdit(parent) {
        setFrame(false);
        setTextMargins(0, 0, 0, 0);
        setAlignment(Qt::AlignLeft | Qt::AlignTop);
    }

    // The top-left of the text's line box, in the field's coordinates.
    QPoint textOffset() const {
        QStyleOptionFrame option;
        initStyleOption(&option);
        const QRect contents = style()
                                   ->subElementRect(QStyle::SE_LineEditContents, &option, this)
                                   .marginsRemoved(textMargins());
        return contents.topLeft() + QPoint(kLineEditHorizontalPadding, kLineEditVerticalPadding);
    }

    // Wide enough for the whole text, so it never scrolls inside the field.
    void fitWidthToText() {
        const int textWidth = fontMetrics().horizontalAdvance(text());
        const int needed = textWidth + 2 * textOffset().x() + kTextFieldTrailingRoom;
        resize(std::max(kTextFieldWidth, needed), height());
    }
};

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
    // Picking another tool ends the text being typed, as a press aside would.
    connect(&state_, &AnnotationState::activeToolChanged, this, [this](AnnotationTool tool) {
        if (tool != AnnotationTool::text) {
            commitOpenText();
        }
    });
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
        // Drawing goes off when the document is emptied: typed text goes too.
        discardTextField();
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
    // A press away from an open field ends it. With the text tool that is
    // all the press does, so clicking aside finishes the text rather than
    // opening another field.
    const bool endedText = textField_ != nullptr;
    commitOpenText();
    if (state_.activeTool() == AnnotationTool::text) {
        clearGesture();
        if (!endedText) {
            openTextField(position);
        }
        return;
    }
    setFocus(Qt::MouseFocusReason);
    gestureActive_ = true;
    gesturePoints_ = {position};
}

void AnnotationCanvasView::continueGesture(const QPointF& position) {
    if (!acceptsInput() || !gestureActive_) {
        return;
    }
    gesturePoints_.append(position);
    update();
}

void AnnotationCanvasView::endGesture(const QPointF& position, Qt::KeyboardModifiers modifiers) {
    if (!acceptsInput() || !gestureActive_) {
        return;
    }
    gesturePoints_.append(position);
    if (const std::optional<Annotation> shape = gestureShape(modifiers)) {
        state_.add(*shape);
    }
    clearGesture();
}

void AnnotationCanvasView::clearGesture() {
    gestureActive_ = false;
    gesturePoints_.clear();
    update();
}

std::optional<Annotation> AnnotationCanvasView::gestureShape(
    Qt::KeyboardModifiers modifiers) const {
    if (!gestureActive_) {
        return std::nullopt;
    }
    return annotationForGesture(
        {state_.activeTool(), gesturePoints_, modifiers, state_.currentColor()});
}

void AnnotationCanvasView::openTextField(const QPointF& position) {
    discardTextField();
    auto* field = new TextToolField(this);
    field->setAccessibleName(QStringLiteral("Annotation text"));
    field->setFont(textToolFont());
    field->setPlaceholderText(QStringLiteral("Type here…"));
    field->setAttribute(Qt::WA_TranslucentBackground);
    QPalette palette = field->palette();
    palette.setColor(QPalette::Base, Qt::transparent);
    palette.setColor(QPalette::Text, state_.currentColor());
    field->setPalette(palette);
    field->setAutoFillBackground(false);
    // The text itself starts at the pressed point, where it will be committed.
    field->setGeometry(QRect(position.toPoint() - field->textOffset(),
                             QSize(kTextFieldWidth, field->sizeHint().height())));
    field->installEventFilter(this);
    connect(field, &QLineEdit::editingFinished, this, &AnnotationCanvasView::commitOpenText);
    connect(field, &QLineEdit::textChanged, field, [field] { field->fitWidthToText(); });
    textField_ = field;
    field->show();
    field->setFocus(Qt::MouseFocusReason);
}

bool AnnotationCanvasView::commitOpenText() {
    auto* field = static_cast<TextToolField*>(textField_.data());
    if (!field) {
        return false;
    }
    const QString text = field->text().trimmed();
    const QPointF origin = field->geometry().topLeft() + field->textOffset();
    const QFont font = field->font();
    const bool hadFocus = field->hasFocus();
    discardTextField();
    if (hadFocus && acceptsInput()) {
        setFocus(Qt::OtherFocusReason);  // so the undo key reaches the canvas again
    }
    if (text.isEmpty()) {
        return false;
    }
    state_.add({Annotation::Text{text, origin, font, state_.currentColor()}});
    return true;
}

void AnnotationCanvasView::discardTextField() {
    if (!textField_) {
        return;
    }
    QLineEdit* field = textField_.data();
    textField_.clear();
    // Disconnect first: hiding the field moves focus, which would otherwise
    // end the editing once more.
    field->disconnect(this);
    field->removeEventFilter(this);
    field->hide();
    field->deleteLater();
    update();
}

bool AnnotationCanvasView::eventFilter(QObject* watched, QEvent* event) {
    if (watched != textField_.data()) {
        return QWidget::eventFilter(watched, event);
    }
    if (event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        discardTextField();
        return true;
    }
    if (event->type() == QEvent::FocusOut) {
        // Focus leaving for good ends the text (Qt reports no end of editing
        // for a field left empty). A popup, such as the field's own context
        // menu, or another window taking the keyboard, leaves it open.
        const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
        if (reason != Qt::PopupFocusReason && reason != Qt::ActiveWindowFocusReason) {
            commitOpenText();
        }
    }
    return QWidget::eventFilter(watched, event);
}

void AnnotationCanvasView::mousePressEvent(QMouseEvent* event) {
    // Ignored presses travel on to the parent widget.
    if (!acceptsInput()) {
        event->ignore();
        return;
    }
    if (hitTestPassthrough_ && hitTestPassthrough_(event->position())) {
        commitOpenText();
        event->ignore();
        return;
    }
    event->accept();
    heldModifiers_ = event->modifiers();
    if (event->button() == Qt::LeftButton) {
        beginGesture(event->position());
    }
}

void AnnotationCanvasView::mouseMoveEvent(QMouseEvent* event) {
    if (!acceptsInput()) {
        event->ignore();
        return;
    }
    event->accept();
    heldModifiers_ = event->modifiers();
    continueGesture(event->position());
}

void AnnotationCanvasView::mouseReleaseEvent(QMouseEvent* event) {
    if (!acceptsInput()) {
        event->ignore();
        return;
    }
    event->accept();
    heldModifiers_ = event->modifiers();
    if (event->button() == Qt::LeftButton) {
        endGesture(event->position(), event->modifiers());
    }
}

void AnnotationCanvasView::followModifiers(const QKeyEvent* event) {
    Qt::KeyboardModifiers held = event->modifiers();
    // The event of a modifier key itself may report the state from before it.
    if (event->key() == Qt::Key_Shift) {
        held.setFlag(Qt::ShiftModifier, event->type() == QEvent::KeyPress);
    }
    if (held != heldModifiers_) {
        heldModifiers_ = held;
        if (gestureActive_) {
            update();
        }
    }
}

void AnnotationCanvasView::keyPressEvent(QKeyEvent* event) {
    followModifiers(event);
    if (acceptsInput() && isUndoKey(event)) {
        state_.undo();
        update();
        event->accept();
        return;
    }
    QWidget::keyPressEvent(event);
}

void AnnotationCanvasView::keyReleaseEvent(QKeyEvent* event) {
    followModifiers(event);
    QWidget::keyReleaseEvent(event);
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
    const std::optional<Annotation> shape = gestureShape(heldModifiers_);
    if (!shape) {
        return;
    }
    std::visit(
        [&](const auto& kind) {
            using Kind = std::decay_t<decltype(kind)>;
            if constexpr (std::is_same_v<Kind, Annotation::Blur> ||
                          std::is_same_v<Kind, Annotation::Pixelate>) {
                // Filtering on every move would lag; the pixels come at release.
                paintRegionPreview(painter, kind.rect);
            } else if constexpr (std::is_same_v<Kind, Annotation::Crop>) {
                paintCropSurround(painter, rect(), kind.rect);
            } else {
                AnnotationPaintStyle style;
                style.arrowHeadLength = kCanvasArrowHeadLength;
                paintAnnotation(painter, *shape, style);
            }
        },
        shape->kind);
}
