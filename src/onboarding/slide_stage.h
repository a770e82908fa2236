// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QList>
#include <QPixmap>
#include <QWidget>

class QVariantAnimation;

// The area the slides take turns in. Changing slides moves the new one in
// from the side it lies on while a picture of the old one slides the other
// way and fades, with the feel of a well-damped spring (≈0.38 s).
class SlideStage : public QWidget {
    Q_OBJECT

public:
    static constexpr int kTransitionMs = 380;

    explicit SlideStage(QWidget* parent = nullptr);

    // Adds a slide (made with this stage as its parent), hidden until shown.
    void addSlide(QWidget* slide);
    QWidget* slideAt(int index) const { return slides_.value(index); }
    int count() const { return static_cast<int>(slides_.size()); }
    int current() const { return current_; }

    // Shows slide `index`; animated when the stage is on screen.
    void showSlide(int index);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void step(qreal progress);
    int travel() const;

    QList<QWidget*> slides_;
    int current_ = -1;
    // Which way the slides move: 1 when going forward, −1 back.
    int direction_ = 1;
    qreal progress_ = 1.0;
    QPixmap outgoing_;
    QVariantAnimation* transition_ = nullptr;
};
