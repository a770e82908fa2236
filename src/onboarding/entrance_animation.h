// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QList>
#include <QObject>

class QVariantAnimation;
class QWidget;
class EntranceEffect;

// Lets a slide's elements (symbol, title, text, extra) appear one after
// another: each fades in while rising a few pixels into place, a little later
// than the one before it. The elements keep their place in their layout; only
// their drawing moves, so a relayout during the animation cannot fight it.
class EntranceAnimation : public QObject {
    Q_OBJECT

public:
    static constexpr int kDurationMs = 320;
    static constexpr int kStepMs = 50;
    static constexpr qreal kRise = 8.0;

    // `elements` in the order they appear; every one must outlive this
    // animation's use (they are normally siblings under the same parent).
    explicit EntranceAnimation(const QList<QWidget*>& elements, QObject* parent = nullptr);

    // Starts every element from hidden, each kStepMs after the previous one.
    void play();
    // Lets only `element` appear again, at once (for a part whose content
    // changed while it was on screen).
    void replay(QWidget* element);

    bool isRunning() const;

private:
    struct Entry {
        QWidget* element = nullptr;
        EntranceEffect* effect = nullptr;
        QVariantAnimation* animation = nullptr;
    };

    void start(const Entry& entry, int delayMs);

    QList<Entry> entries_;
};
