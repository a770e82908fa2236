// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "onboarding/slide_stage.h"

#include <QEasingCurve>
#include <QPainter>
#include <QVariantAnimation>
#include <algorithm>

SlideStage::SlideStage(QWidget* parent) : QWidget(parent) {
    setAccessibleName(QStringLiteral("Slides"));
    transition_ = new QVariantAnimation(this);
    transition_->setStartValue(0.0);
    transition_->setEndValue(1.0);
    transition_->setDuration(kTransitionMs);
    // A spring this well damped barely overshoots: an ease-out is its shape.
    transition_->setEasingCurve(QEasingCurve::OutCubic);
    connect(transition_, &QVariantAnimation::valueChanged, this,
            [this](const QVariant& value) { step(value.toReal()); });
    connect(transition_, &QVariantAnimation::finished, this, [this] {
        outgoing_ = QPixmap();
        update();
    });
}

void SlideStage::addSlide(QWidget* slide) {
    slide->hide();
    slide->setGeometry(rect());
    slides_.append(slide);
}

void SlideStage::showSlide(int index) {
    if (index < 0 || index >= count() || index == current_) {
        return;
    }
    QWidget* previous = slideAt(current_);
    const bool animated = previous != nullptr && isVisible();
    direction_ = index > current_ ? 1 : -1;
    transition_->stop();
    outgoing_ = animated ? previous->grab() : QPixmap();
    if (previous != nullptr) {
        previous->hide();
    }
    current_ = index;
    QWidget* next = slideAt(index);
    next->setGeometry(rect());
    next->show();
    if (animated) {
        step(0.0);
        transition_->start();
    } else {
        step(1.0);
    }
}

int SlideStage::travel() const {
    return width() * 2 / 5;
}

void SlideStage::step(qreal progress) {
    progress_ = progress;
    if (QWidget* slide = slideAt(current_)) {
        slide->move(qRound(direction_ * travel() * (1.0 - progress)), 0);
    }
    update();
}

void SlideStage::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    for (QWidget* slide : std::as_const(slides_)) {
        slide->resize(size());
    }
    step(progress_);
}

void SlideStage::paintEvent(QPaintEvent*) {
    if (outgoing_.isNull()) {
        return;
    }
    // The old slide leaves faster than the new one arrives, so the two never
    // read as one.
    QPainter painter(this);
    painter.setOpacity(std::clamp(1.0 - 2.0 * progress_, 0.0, 1.0));
    painter.drawPixmap(QPointF(-direction_ * travel() * progress_, 0), outgoing_);
}
