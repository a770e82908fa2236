// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "onboarding/entrance_animation.h"

#include <QEasingCurve>
#include <QGraphicsEffect>
#include <QPainter>
#include <QVariantAnimation>
#include <QWidget>
#include <algorithm>

// Draws its widget faded to `progress` and lowered by kRise × (1 − progress).
class EntranceEffect : public QGraphicsEffect {
public:
    explicit EntranceEffect(QObject* parent) : QGraphicsEffect(parent) {}

    void setProgress(qreal progress) {
        progress_ = std::clamp(progress, 0.0, 1.0);
        update();
    }

    QRectF boundingRectFor(const QRectF& rect) const override {
        return rect.adjusted(0, 0, 0, EntranceAnimation::kRise);
    }

protected:
    void draw(QPainter* painter) override {
        if (progress_ <= 0.0) {
            return;
        }
        if (progress_ >= 1.0) {
            drawSource(painter);
            return;
        }
        QPoint offset;
        const QPixmap pixmap = sourcePixmap(Qt::LogicalCoordinates, &offset);
        painter->save();
        painter->setOpacity(painter->opacity() * progress_);
        painter->drawPixmap(
            QPointF(offset) + QPointF(0, EntranceAnimation::kRise * (1 - progress_)), pixmap);
        painter->restore();
    }

private:
    qreal progress_ = 1.0;
};

EntranceAnimation::EntranceAnimation(const QList<QWidget*>& elements, QObject* parent)
    : QObject(parent) {
    for (QWidget* element : elements) {
        if (element == nullptr) {
            continue;
        }
        Entry entry;
        entry.element = element;
        // The widget owns its effect; the animation belongs to this object.
        entry.effect = new EntranceEffect(element);
        entry.effect->setEnabled(false);
        element->setGraphicsEffect(entry.effect);
        entry.animation = new QVariantAnimation(this);
        EntranceEffect* effect = entry.effect;
        connect(entry.animation, &QVariantAnimation::valueChanged, this,
                [effect](const QVariant& value) { effect->setProgress(value.toReal()); });
        // Once in place the element is drawn directly again, without the
        // off-screen copy the effect needs.
        connect(entry.animation, &QVariantAnimation::finished, this,
                [effect] { effect->setEnabled(false); });
        entries_.append(entry);
    }
}

void EntranceAnimation::start(const Entry& entry, int delayMs) {
    entry.animation->stop();
    entry.effect->setProgress(0.0);
    entry.effect->setEnabled(true);
    // The delay is the flat first part of one animation, so a replay simply
    // restarts it: the value stays 0 until the delay has passed.
    const int total = delayMs + kDurationMs;
    const qreal flat = static_cast<qreal>(delayMs) / total;
    QVariantAnimation::KeyValues keys{{0.0, 0.0}};
    if (flat > 0.0) {
        keys.append({flat, 0.0});
    }
    // A few intermediate keys trace an ease-out from the end of the delay.
    const QEasingCurve easeOut(QEasingCurve::OutCubic);
    constexpr int kKeys = 8;
    for (int key = 1; key <= kKeys; ++key) {
        const qreal local = static_cast<qreal>(key) / kKeys;
        keys.append({flat + (1.0 - flat) * local, easeOut.valueForProgress(local)});
    }
    entry.animation->setDuration(total);
    entry.animation->setKeyValues(keys);
    entry.animation->start();
}

void EntranceAnimation::play() {
    int delay = 0;
    for (const Entry& entry : entries_) {
        start(entry, delay);
        delay += kStepMs;
    }
}

void EntranceAnimation::replay(QWidget* element) {
    for (const Entry& entry : entries_) {
        if (entry.element == element) {
            start(entry, 0);
        }
    }
}

bool EntranceAnimation::isRunning() const {
    return std::any_of(entries_.begin(), entries_.end(), [](const Entry& entry) {
        return entry.animation->state() == QAbstractAnimation::Running;
    });
}
