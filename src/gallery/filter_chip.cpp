// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "gallery/filter_chip.h"

#include <QEnterEvent>
#include <QPainter>
#include <QPainterPath>
#include <QVariantAnimation>
#include <functional>

#include "widgets/symbol_icon.h"
#include "widgets/widget_style.h"

namespace {

constexpr qreal kCornerRadius = 6;
constexpr int kHoverMs = 100;
constexpr int kSelectMs = 80;
constexpr int kTextPixelSize = 11;
constexpr int kIconPixelSize = 11;
constexpr int kIconFrameWidth = 28;
constexpr int kPaddingX = 7;
constexpr int kPaddingY = 4;

QVariantAnimation* makeProgressAnimation(QObject* parent, int durationMs,
                                         const std::function<void(qreal)>& apply) {
    auto* animation = new QVariantAnimation(parent);
    animation->setDuration(durationMs);
    animation->setEasingCurve(QEasingCurve::OutQuad);
    QObject::connect(animation, &QVariantAnimation::valueChanged, parent,
                     [apply](const QVariant& value) { apply(value.toReal()); });
    return animation;
}

void animateTo(QVariantAnimation* animation, qreal from, qreal to) {
    animation->stop();
    animation->setStartValue(from);
    animation->setEndValue(to);
    animation->start();
}

}  // namespace

FilterChip::FilterChip(QWidget* parent) : QAbstractButton(parent) {
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    hoverAnimation_ = makeProgressAnimation(this, kHoverMs, [this](qreal value) {
        hoverProgress_ = value;
        update();
    });
    selectAnimation_ = makeProgressAnimation(this, kSelectMs, [this](qreal value) {
        selectProgress_ = value;
        update();
    });
}

void FilterChip::setSelected(bool selected) {
    if (selected == selected_) {
        return;
    }
    selected_ = selected;
    if (isVisible()) {
        animateTo(selectAnimation_, selectProgress_, selected ? 1.0 : 0.0);
    } else {
        selectAnimation_->stop();
        selectProgress_ = selected ? 1.0 : 0.0;
    }
    update();
}

void FilterChip::enterEvent(QEnterEvent* event) {
    hovered_ = true;
    animateTo(hoverAnimation_, hoverProgress_, 1.0);
    QAbstractButton::enterEvent(event);
}

void FilterChip::leaveEvent(QEvent* event) {
    hovered_ = false;
    animateTo(hoverAnimation_, hoverProgress_, 0.0);
    QAbstractButton::leaveEvent(event);
}

QColor FilterChip::contentColor() const {
    const QPalette& colors = palette();
    const QColor unselected = widget_style::mix(widget_style::secondary(colors),
                                                widget_style::primary(colors), hoverProgress_);
    return widget_style::mix(unselected, widget_style::accent(colors), selectProgress_);
}

void FilterChip::paintBackground(QPainter& painter) const {
    using namespace widget_style;
    const QPalette& colors = palette();
    const QColor idleFill = withAlpha(primary(colors), 0.0);
    const QColor unselectedFill = mix(idleFill, withAlpha(primary(colors), 0.06), hoverProgress_);
    const QColor fill = mix(unselectedFill, withAlpha(accent(colors), 0.12), selectProgress_);
    const QColor outline =
        mix(withAlpha(accent(colors), 0.0), withAlpha(accent(colors), 0.3), selectProgress_);

    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF box = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.setPen(outline.alpha() > 0 ? QPen(outline, 1.0) : QPen(Qt::NoPen));
    painter.setBrush(fill);
    painter.drawRoundedRect(box, kCornerRadius, kCornerRadius);
    // Chips take the focus from the keyboard only; show where it is.
    if (hasFocus()) {
        painter.setPen(QPen(accent(colors), 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(box.adjusted(0.5, 0.5, -0.5, -0.5), kCornerRadius, kCornerRadius);
    }
}

TextFilterChip::TextFilterChip(const QString& label, QWidget* parent) : FilterChip(parent) {
    setText(label);
    setAccessibleName(label);
    setFont(widget_style::font(font(), kTextPixelSize, QFont::Medium));
}

QSize TextFilterChip::sizeHint() const {
    const QFontMetrics metrics(font());
    return {metrics.horizontalAdvance(text()) + 2 * kPaddingX, metrics.height() + 2 * kPaddingY};
}

void TextFilterChip::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    paintBackground(painter);
    painter.setPen(contentColor());
    painter.setFont(font());
    painter.drawText(rect(), Qt::AlignCenter, text());
}

IconFilterChip::IconFilterChip(const QString& symbol, const QString& accessibleName,
                               QWidget* parent)
    : FilterChip(parent), symbol_(symbol) {
    setAccessibleName(accessibleName);
    setToolTip(accessibleName);
    setFont(widget_style::font(font(), kTextPixelSize, QFont::Medium));
}

QSize IconFilterChip::sizeHint() const {
    return {kIconFrameWidth, QFontMetrics(font()).height() + 2 * kPaddingY};
}

void IconFilterChip::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    paintBackground(painter);
    const QSize iconSize(kIconPixelSize, kIconPixelSize);
    const QPixmap icon = symbolPixmap(symbol_, contentColor(), iconSize, devicePixelRatioF());
    const QPointF topLeft((width() - kIconPixelSize) / 2.0, (height() - kIconPixelSize) / 2.0);
    painter.drawPixmap(topLeft, icon);
}
