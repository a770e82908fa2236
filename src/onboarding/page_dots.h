// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QList>
#include <QWidget>

class QAbstractButton;
class QVariantAnimation;

// One dot per slide: the current slide's dot is drawn as a wide capsule, the
// others as faint small dots. A change of slide stretches and fades the dots
// over ≈0.3 s with a slight overshoot. Each dot is a button ("Slide N of M")
// that asks for its slide.
class PageDots : public QWidget {
    Q_OBJECT

public:
    static constexpr int kDotSize = 6;
    static constexpr int kCapsuleWidth = 18;
    static constexpr int kGap = 2;
    static constexpr int kAnimationMs = 300;

    explicit PageDots(int count, QWidget* parent = nullptr);

    // Moves the capsule to `index` (animated while shown).
    void setCurrent(int index);
    int current() const { return current_; }

    int count() const { return static_cast<int>(dots_.size()); }
    QAbstractButton* dot(int index) const { return dots_.value(index); }
    // How far dot `index` is the current one right now: 1 current, 0 not.
    qreal selection(int index) const;

    QSize sizeHint() const override;

Q_SIGNALS:
    void dotClicked(int index);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void placeDots();

    QList<QAbstractButton*> dots_;
    int current_ = 0;
    // The capsule's position in slides; between two indices while it moves.
    qreal position_ = 0.0;
    QVariantAnimation* animation_ = nullptr;
};
