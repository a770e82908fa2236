#include "annotation/annotation_toolbar.h"

#include <QEasingCurve>
#include <QEnterEvent>
#include <QFont>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QPainter>
#include <QPainterPath>
#include <QVariantAnimation>
#include <algorithm>

#include "annotation/color_picker_bridge.h"
#include "widgets/symbol_icon.h"

namespace {

constexpr qreal kButtonCornerRadius = 7.0;
constexpr int kRowSpacing = 4;
constexpr int kRowHorizontalPadding = 10;
constexpr int kRowVerticalPadding = 7;
constexpr qreal kBackgroundCornerRadius = 14.0;
constexpr int kSwatchDiameter = 18;

QColor withOpacity(QColor color, qreal opacity) {
    color.setAlphaF(static_cast<float>(color.alphaF() * opacity));
    return color;
}

PaletteButtonLook toolbarLook() {
    PaletteButtonLook look;
    look.frame = QSize(30, 28);
    look.base = Qt::white;
    look.activeOpacity = 1.0;
    look.hoveredOpacity = 0.85;
    look.idleOpacity = 0.55;
    look.activeFill = 0.22;
    look.hoveredFill = 0.1;
    return look;
}

// A 1 × 16 bar in faint white with 2 of padding either side.
class ToolbarSeparator : public QWidget {
public:
    explicit ToolbarSeparator(QWidget* parent) : QWidget(parent) { setFixedSize(5, 16); }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.fillRect(QRect(2, 0, 1, height()), withOpacity(Qt::white, 0.12));
    }
};

// The checkmark and "Save" on a light pill.
class ToolbarSaveButton : public QAbstractButton {
public:
    explicit ToolbarSaveButton(QWidget* parent) : QAbstractButton(parent) {
        setText(QStringLiteral("Save"));
        setToolTip(paletteToolTip(text(), QStringLiteral("Return")));
        setAccessibleName(text());
        setCursor(Qt::ArrowCursor);
        QFont labelFont = font();
        labelFont.setPixelSize(12);
        labelFont.setWeight(QFont::DemiBold);
        setFont(labelFont);
    }

    QSize sizeHint() const override {
        const int textWidth = QFontMetrics(font()).horizontalAdvance(text());
        return QSize(kPadding + kCheckSize + kSpacing + textWidth + kPadding, 28);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(withOpacity(Qt::white, isDown() ? 0.26 : 0.18));
        painter.drawRoundedRect(QRectF(rect()), kButtonCornerRadius, kButtonCornerRadius);
        const QPixmap check = symbolPixmap(QStringLiteral("checkmark"), Qt::white,
                                           QSize(kCheckSize, kCheckSize), devicePixelRatioF());
        painter.drawPixmap(kPadding, (height() - kCheckSize) / 2, check);
        painter.setPen(Qt::white);
        painter.drawText(QRect(kPadding + kCheckSize + kSpacing, 0, width(), height()),
                         Qt::AlignLeft | Qt::AlignVCenter, text());
    }

private:
    static constexpr int kPadding = 10;
    static constexpr int kCheckSize = 11;
    static constexpr int kSpacing = 4;
};

}  // namespace

QString paletteToolTip(const QString& label, const QString& key) {
    return QStringLiteral("%1 (%2)").arg(label, key);
}

// ---------------------------------------------------------------------------

PaletteToolButton::PaletteToolButton(const QString& symbolName, const QString& label,
                                     const PaletteButtonLook& look, QWidget* parent)
    : QAbstractButton(parent), symbolName_(symbolName), label_(label), look_(look) {
    setText(label);
    setToolTip(label);
    setAccessibleName(label);
    // Checked mirrors "active" for assistive technology; clicks never toggle
    // it themselves (the palette sets it from the state).
    setCheckable(true);
    setFocusPolicy(Qt::TabFocus);
    setFixedSize(look.frame);
}

void PaletteToolButton::setActive(bool active) {
    active_ = active;
    setChecked(active);
    if (active_) {
        animateScaleTo(1.0);
    }
    update();
}

void PaletteToolButton::setLook(const PaletteButtonLook& look) {
    look_ = look;
    symbol_ = QPixmap();
    setFixedSize(look.frame);
    update();
}

const QPixmap& PaletteToolButton::symbol() {
    if (symbol_.isNull() || symbol_.devicePixelRatio() != devicePixelRatioF()) {
        symbol_ = symbolPixmap(symbolName_, look_.base, QSize(kSymbolSize, kSymbolSize),
                               devicePixelRatioF());
    }
    return symbol_;
}

void PaletteToolButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const QPointF centre = QRectF(rect()).center();
    painter.translate(centre);
    painter.scale(scale_, scale_);
    painter.translate(-centre);

    const qreal fill = active_ ? look_.activeFill : (hovered_ ? look_.hoveredFill : 0.0);
    if (fill > 0.0) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(withOpacity(look_.base, fill));
        painter.drawRoundedRect(QRectF(rect()), kButtonCornerRadius, kButtonCornerRadius);
    }
    if (hasFocus()) {
        painter.setPen(QPen(withOpacity(look_.base, 0.5), 1.0));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), kButtonCornerRadius,
                                kButtonCornerRadius);
    }
    painter.setOpacity(active_ ? look_.activeOpacity
                               : (hovered_ ? look_.hoveredOpacity : look_.idleOpacity));
    const QSizeF symbolSize(kSymbolSize, kSymbolSize);
    painter.drawPixmap(QRectF(centre - QPointF(kSymbolSize / 2.0, kSymbolSize / 2.0), symbolSize),
                       symbol(), QRectF(QPointF(0, 0), QSizeF(symbol().size())));
}

void PaletteToolButton::enterEvent(QEnterEvent* event) {
    setHovered(true);
    QAbstractButton::enterEvent(event);
}

void PaletteToolButton::leaveEvent(QEvent* event) {
    setHovered(false);
    QAbstractButton::leaveEvent(event);
}

void PaletteToolButton::setHovered(bool hovered) {
    hovered_ = hovered;
    animateScaleTo(hovered_ && !active_ ? kHoverScale : 1.0);
    update();
}

void PaletteToolButton::animateScaleTo(qreal target) {
    if (!scaleAnimation_) {
        scaleAnimation_ = new QVariantAnimation(this);
        // A quick overshooting ease stands in for a light spring.
        scaleAnimation_->setDuration(180);
        scaleAnimation_->setEasingCurve(QEasingCurve::OutBack);
        connect(scaleAnimation_, &QVariantAnimation::valueChanged, this,
                [this](const QVariant& value) {
                    scale_ = value.toReal();
                    update();
                });
    }
    scaleAnimation_->stop();
    if (qFuzzyCompare(scale_, target)) {
        return;
    }
    scaleAnimation_->setStartValue(scale_);
    scaleAnimation_->setEndValue(target);
    scaleAnimation_->start();
}

// ---------------------------------------------------------------------------

ColorSwatchButton::ColorSwatchButton(int diameter, const QColor& ring, const QString& label,
                                     QWidget* parent)
    : QAbstractButton(parent), diameter_(diameter), ring_(ring) {
    setText(label);
    setToolTip(label);
    setAccessibleName(label);
    setFocusPolicy(Qt::TabFocus);
    setFixedSize(sizeHint());
}

void ColorSwatchButton::setColor(const QColor& color) {
    color_ = color;
    setAccessibleDescription(color.name(QColor::HexArgb));
    update();
}

void ColorSwatchButton::setRingColor(const QColor& ring) {
    ring_ = ring;
    update();
}

QSize ColorSwatchButton::sizeHint() const {
    return QSize(diameter_ + 2, diameter_ + 2);
}

void ColorSwatchButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF circle(QRectF(rect()).center() - QPointF(diameter_ / 2.0, diameter_ / 2.0),
                        QSizeF(diameter_, diameter_));
    painter.setPen(Qt::NoPen);
    painter.setBrush(color_);
    painter.drawEllipse(circle);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(ring_, hasFocus() ? 2.0 : 1.5));
    painter.drawEllipse(circle.adjusted(0.75, 0.75, -0.75, -0.75));
}

// ---------------------------------------------------------------------------

AnnotationToolbar::AnnotationToolbar(AnnotationState* state, QWidget* parent)
    : QWidget(parent), state_(state) {
    setAttribute(Qt::WA_TranslucentBackground);
    setAccessibleName(QStringLiteral("Annotation toolbar"));
    buildRow();
    if (state_) {
        connect(state_, &AnnotationState::activeToolChanged, this,
                &AnnotationToolbar::showActiveTool);
        connect(state_, &AnnotationState::drawingEnabledChanged, this,
                &AnnotationToolbar::showActiveTool);
        connect(state_, &AnnotationState::currentColorChanged, swatch_,
                &ColorSwatchButton::setColor);
    }
    showActiveTool();
}

void AnnotationToolbar::buildRow() {
    auto* row = new QHBoxLayout(this);
    row->setSpacing(kRowSpacing);
    row->setContentsMargins(kRowHorizontalPadding, kRowVerticalPadding, kRowHorizontalPadding,
                            kRowVerticalPadding);
    row->setSizeConstraint(QLayout::SetMinimumSize);

    for (const AnnotationTool tool : kAllAnnotationTools) {
        auto* button =
            new PaletteToolButton(paletteIconName(tool), paletteLabel(tool), toolbarLook(), this);
        button->setToolTip(paletteToolTip(paletteLabel(tool), annotationToolKeyName(tool)));
        connect(button, &QAbstractButton::clicked, this, [this, tool] {
            if (state_) {
                state_->selectTool(tool);
            }
            // Re-choosing the active tool changes nothing in the state, but the
            // click must not leave the button unchecked.
            showActiveTool();
        });
        toolButtons_[static_cast<size_t>(tool)] = button;
        row->addWidget(button);
    }

    row->addWidget(new ToolbarSeparator(this));
    swatch_ = new ColorSwatchButton(kSwatchDiameter, withOpacity(Qt::white, 0.3),
                                    QStringLiteral("Color"), this);
    swatch_->setColor(state_ ? state_->currentColor() : AnnotationState::kInitialColor);
    connect(swatch_, &QAbstractButton::clicked, this, [this] {
        if (state_) {
            ColorPickerBridge::shared().open(state_, this);
        }
    });
    row->addWidget(swatch_);

    row->addWidget(new ToolbarSeparator(this));
    undo_ = new PaletteToolButton(QStringLiteral("arrow.uturn.backward"), QStringLiteral("Undo"),
                                  toolbarLook(), this);
    undo_->setToolTip(paletteToolTip(undo_->label(), QStringLiteral("Ctrl+Z")));
    undo_->setCheckable(false);
    connect(undo_, &QAbstractButton::clicked, this, &AnnotationToolbar::undoRequested);
    row->addWidget(undo_);

    row->addWidget(new ToolbarSeparator(this));
    save_ = new ToolbarSaveButton(this);
    save_->setFixedSize(save_->sizeHint());
    connect(save_, &QAbstractButton::clicked, this, &AnnotationToolbar::saveRequested);
    row->addWidget(save_);
}

void AnnotationToolbar::setAccentColor(const QColor& color) {
    accentColor_ = color;
    // Keyboard focus is the one place the accent shows.
    QPalette accented = palette();
    accented.setColor(QPalette::Highlight, color);
    setPalette(accented);
}

PaletteToolButton* AnnotationToolbar::toolButton(AnnotationTool tool) const {
    return toolButtons_[static_cast<size_t>(tool)];
}

void AnnotationToolbar::showActiveTool() {
    // The highlighted tool is the one a drag draws with: none while drawing
    // is off.
    const bool drawing = state_ && state_->isDrawingEnabled();
    for (const AnnotationTool tool : kAllAnnotationTools) {
        toolButton(tool)->setActive(drawing && tool == state_->activeTool());
    }
}

void AnnotationToolbar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    // No blur of what lies behind is available to a plain X11 window, so the
    // material is a dark translucent fill with a hairline edge.
    const QRectF body = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.setPen(QPen(withOpacity(Qt::white, 0.15), 1.0));
    painter.setBrush(QColor(28, 28, 32, 224));
    painter.drawRoundedRect(body, kBackgroundCornerRadius, kBackgroundCornerRadius);
}

QSize AnnotationToolbar::panelSize(QSize fittingSize) {
    return QSize(std::max(fittingSize.width(), kMinimumPanelWidth), fittingSize.height() + 2);
}

QPoint AnnotationToolbar::placement(const QRectF& selection, const QRect& screenFrame,
                                    const QRect& visibleFrame, QSize panelSize) {
    const qreal frameLeft = screenFrame.x();
    const qreal frameTop = screenFrame.y();
    const qreal visibleBottom = visibleFrame.y() + visibleFrame.height();
    const qreal frameRight = screenFrame.x() + screenFrame.width();

    qreal top = frameTop + selection.bottom() + kGapToSelection;
    if (top + panelSize.height() > visibleBottom) {
        top = frameTop + selection.top() - kGapToSelection - panelSize.height();
    }
    qreal left = frameLeft + selection.left();
    if (frameRight < left + panelSize.width()) {
        left = frameLeft + selection.right() - panelSize.width();
    }
    left = std::max(left, frameLeft + kScreenLeftMargin);
    return QPointF(left, top).toPoint();
}
