// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "onboarding/page_dots.h"

#include <QAbstractButton>
#include <QEasingCurve>
#include <QPainter>
#include <QVariantAnimation>
#include <algorithm>
#include <cmath>

#include "widgets/widget_style.h"

namespace {

// Room around each drawn dot for the pointer and the focus ring.
constexpr int kPadding = 3;
constexpr int kHeight = 16;

// A dot draws itself from how selected it is (set by PageDots).
class PageDot : public QAbstractButton {
public:
    using QAbstractButton::QAbstractButton;

    void setSelection(qreal selection) {
        selection_ = selection;
        update();
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QRectF capsule = QRectF(rect()).adjusted(kPadding, 0, -kPadding, 0);
        const QRectF dot(capsule.left(), (height() - PageDots::kDotSize) / 2.0, capsule.width(),
                         PageDots::kDotSize);
        const qreal radius = PageDots::kDotSize / 2.0;
        const qreal opacity = 0.2 + 0.8 * selection_;
        painter.setPen(Qt::NoPen);
        painter.setBrush(widget_style::withAlpha(Qt::white, opacity));
        painter.drawRoundedRect(dot, radius, radius);
        if (hasFocus()) {
            painter.setBrush(Qt::NoBrush);
            painter.setPen(QPen(widget_style::accent(palette()), 1.5));
            painter.drawRoundedRect(dot.adjusted(-2, -2, 2, 2), radius + 2, radius + 2);
        }
    }

private:
    qreal selection_ = 0.0;
};

}  // namespace

PageDots::PageDots(int count, QWidget* parent) : QWidget(parent) {
    setAccessibleName(QStringLiteral("Slide position"));
    for (int index = 0; index < count; ++index) {
        auto* dot = new PageDot(this);
        dot->setAccessibleName(QStringLiteral("Slide %1 of %2").arg(index + 1).arg(count));
        dot->setToolTip(dot->accessibleName());
        dot->setFocusPolicy(Qt::StrongFocus);
        dot->setCursor(Qt::PointingHandCursor);
        connect(dot, &QAbstractButton::clicked, this, [this, index] { Q_EMIT dotClicked(index); });
        dots_.append(dot);
    }
    animation_ = new QVariantAnimation(this);
    animation_->setDuration(kAnimationMs);
    // A small overshoot, like a lightly damped spring.
    QEasingCurve spring(QEasingCurve::OutBack);
    spring.setOvershoot(0.8);
    animation_->setEasingCurve(spring);
    connect(animation_, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
        position_ = value.toReal();
        placeDots();
    });
    setFixedSize(sizeHint());
    placeDots();
}

void PageDots::setCurrent(int index) {
    index = std::clamp(index, 0, count() - 1);
    if (index == current_) {
        return;
    }
    current_ = index;
    animation_->stop();
    if (isVisible()) {
        animation_->setStartValue(position_);
        animation_->setEndValue(static_cast<qreal>(index));
        animation_->start();
    } else {
        position_ = index;
        placeDots();
    }
}

qreal PageDots::selection(int index) const {
    return std::clamp(1.0 - std::abs(position_ - index), 0.0, 1.0);
}

QSize PageDots::sizeHint() const {
    const int dotsWidth = (count() - 1) * kDotSize + kCapsuleWidth;
    return {dotsWidth + count() * 2 * kPadding + (count() - 1) * kGap, kHeight};
}

void PageDots::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    placeDots();
}

void PageDots::placeDots() {
    // The capsule's extra width is shared by the dots it is moving between,
    // so the row keeps its total width while it moves.
    qreal x = (width() - sizeHint().width()) / 2.0;
    for (int index = 0; index < count(); ++index) {
        const qreal selected = selection(index);
        const qreal dotWidth = kDotSize + (kCapsuleWidth - kDotSize) * selected;
        const QRectF area(x, 0, dotWidth + 2 * kPadding, kHeight);
        dots_[index]->setGeometry(area.toRect());
        static_cast<PageDot*>(dots_[index])->setSelection(selected);
        x += area.width() + kGap;
    }
}
