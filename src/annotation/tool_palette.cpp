// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "annotation/tool_palette.h"

#include <QBoxLayout>
#include <QEasingCurve>
#include <QEnterEvent>
#include <QPainter>
#include <QVariantAnimation>

#include "annotation/color_picker_bridge.h"
#include "widgets/symbol_icon.h"
#include "widgets/widget_style.h"

using widget_style::withAlpha;

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
        painter.setBrush(withAlpha(look_.base, fill));
        painter.drawRoundedRect(QRectF(rect()), kCornerRadius, kCornerRadius);
    }
    if (hasFocus()) {
        painter.setPen(QPen(withAlpha(look_.base, 0.5), 1.0));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), kCornerRadius,
                                kCornerRadius);
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

ToolPalette::ToolPalette(AnnotationState* state, const ToolPaletteLook& look, QWidget* host)
    : QObject(host), state_(state), look_(look), host_(host) {
    layout_ = new QBoxLayout(
        look_.orientation == Qt::Horizontal ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom,
        host_);
    layout_->setSpacing(look_.spacing);
    layout_->setContentsMargins(look_.margins);
    // Children are created in layout order, which is also the order keyboard
    // focus and screen readers follow.
    addToolButtons();
    addSwatch();
    undo_ = addActionButton(QStringLiteral("arrow.uturn.backward"), QStringLiteral("Undo"),
                            QStringLiteral("Ctrl+Z"));
    if (state_) {
        connect(state_, &AnnotationState::activeToolChanged, this, &ToolPalette::showActiveTool);
        connect(state_, &AnnotationState::drawingEnabledChanged, this,
                &ToolPalette::showActiveTool);
        connect(state_, &AnnotationState::currentColorChanged, swatch_,
                &ColorSwatchButton::setColor);
    }
    showActiveTool();
}

void ToolPalette::addToolButtons() {
    for (const AnnotationTool tool : kAllAnnotationTools) {
        auto* button =
            new PaletteToolButton(paletteIconName(tool), paletteLabel(tool), look_.buttons, host_);
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
        add(button);
    }
}

void ToolPalette::addSwatch() {
    swatch_ =
        new ColorSwatchButton(look_.swatchDiameter, look_.swatchRing, look_.swatchLabel, host_);
    swatch_->setColor(state_ ? state_->currentColor() : AnnotationState::kInitialColor);
    connect(swatch_, &QAbstractButton::clicked, this, [this] {
        if (state_) {
            ColorPickerBridge::shared().open(state_, host_);
        }
    });
    addGroup(swatch_);
}

PaletteToolButton* ToolPalette::addActionButton(const QString& symbolName, const QString& label,
                                                const QString& key) {
    auto* button = new PaletteToolButton(symbolName, label, look_.buttons, host_);
    button->setToolTip(paletteToolTip(label, key));
    button->setCheckable(false);
    actionButtons_ << button;
    addGroup(button);
    return button;
}

void ToolPalette::addGroup(QWidget* widget) {
    if (look_.makeSeparator) {
        add(look_.makeSeparator(host_));
    }
    add(widget);
}

void ToolPalette::add(QWidget* widget) {
    // A column centres its buttons across its width; a row keeps them on
    // the layout's own alignment.
    const Qt::Alignment alignment =
        look_.orientation == Qt::Vertical ? Qt::AlignHCenter : Qt::Alignment();
    layout_->addWidget(widget, 0, alignment);
}

PaletteToolButton* ToolPalette::toolButton(AnnotationTool tool) const {
    return toolButtons_[static_cast<size_t>(tool)];
}

void ToolPalette::setButtonLook(const PaletteButtonLook& look) {
    look_.buttons = look;
    for (PaletteToolButton* button : toolButtons_) {
        button->setLook(look);
    }
    for (PaletteToolButton* button : actionButtons_) {
        button->setLook(look);
    }
}

void ToolPalette::showActiveTool() {
    // The highlighted tool is the one a drag draws with: none while drawing
    // is off.
    const bool drawing = state_ && state_->isDrawingEnabled();
    for (const AnnotationTool tool : kAllAnnotationTools) {
        toolButton(tool)->setActive(drawing && tool == state_->activeTool());
    }
}
