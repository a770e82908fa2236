// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "gallery/color_swatch.h"

#include <QPainter>
#include <QVariantAnimation>

#include "widgets/symbol_icon.h"
#include "widgets/widget_style.h"

namespace {

constexpr qreal kDiameter = 18;
// Room for the largest scale (120 %) without clipping.
constexpr int kWidgetSide = 22;
constexpr int kScaleMs = 200;
constexpr int kCheckPixelSize = 8;
constexpr int kCrossPixelSize = 7;

}  // namespace

ColorSwatch::ColorSwatch(std::optional<ColorLabel> label, QWidget* parent)
    : QAbstractButton(parent), label_(label) {
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::TabFocus);
    const QString name = label ? colorLabelTitle(*label) : QStringLiteral("No color");
    setAccessibleName(name);
    setToolTip(name);
    setFixedSize(kWidgetSide, kWidgetSide);
    scaleAnimation_ = new QVariantAnimation(this);
    scaleAnimation_->setDuration(kScaleMs);
    QEasingCurve spring(QEasingCurve::OutBack);
    spring.setOvershoot(1.2);
    scaleAnimation_->setEasingCurve(spring);
    connect(scaleAnimation_, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
        scale_ = value.toReal();
        update();
    });
}

QSize ColorSwatch::sizeHint() const {
    return {kWidgetSide, kWidgetSide};
}

qreal ColorSwatch::targetScale() const {
    if (!selected_) {
        return 1.0;
    }
    return label_ ? 1.2 : 1.1;
}

void ColorSwatch::setSelected(bool selected) {
    if (selected == selected_) {
        return;
    }
    selected_ = selected;
    scaleAnimation_->stop();
    if (isVisible()) {
        scaleAnimation_->setStartValue(scale_);
        scaleAnimation_->setEndValue(targetScale());
        scaleAnimation_->start();
    } else {
        scale_ = targetScale();
    }
    update();
}

void ColorSwatch::paintEvent(QPaintEvent*) {
    using namespace widget_style;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPointF centre = QRectF(rect()).center();
    painter.translate(centre);
    painter.scale(scale_, scale_);
    const QRectF circle(-kDiameter / 2, -kDiameter / 2, kDiameter, kDiameter);
    const QColor ink = primary(palette());

    QString mark;
    QColor markColor;
    int markSize = 0;
    if (label_) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(colorLabelColor(*label_));
        painter.drawEllipse(circle);
        if (selected_) {
            mark = QStringLiteral("checkmark");
            markColor = Qt::white;
            markSize = kCheckPixelSize;
        }
    } else {
        const qreal strokeWidth = 1.5;
        painter.setPen(QPen(withAlpha(ink, selected_ ? 0.5 : 0.25), strokeWidth));
        painter.setBrush(selected_ ? withAlpha(ink, 0.15) : QColor(Qt::transparent));
        painter.drawEllipse(
            circle.adjusted(strokeWidth / 2, strokeWidth / 2, -strokeWidth / 2, -strokeWidth / 2));
        mark = QStringLiteral("xmark");
        markColor = withAlpha(ink, selected_ ? 0.7 : 0.35);
        markSize = kCrossPixelSize;
    }
    if (hasFocus()) {
        // Swatches take the focus from the keyboard only; show where it is.
        painter.setPen(QPen(accent(palette()), 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(circle.adjusted(-1.5, -1.5, 1.5, 1.5));
    }
    if (!mark.isEmpty()) {
        const QPixmap pixmap =
            symbolPixmap(mark, markColor, QSize(markSize, markSize), devicePixelRatioF() * scale_);
        painter.drawPixmap(QRectF(-markSize / 2.0, -markSize / 2.0, markSize, markSize), pixmap,
                           QRectF(pixmap.rect()));
    }
}
