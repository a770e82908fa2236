// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QtGlobal>
#include <optional>

// Places grabbed pictures on a video time line of constant frame rate that
// begins with the first picture. Grab times jitter around the nominal
// interval, so a picture may move by less than one frame interval to the
// next free slot; a longer gap is filled with the previous picture, and a
// picture arriving a whole interval early (its slot already taken) is left
// out. Every slot is thus filled exactly once, and a recording of D seconds
// holds frame rate × D frames.
class ConstantRateTimeline {
public:
    explicit ConstantRateTimeline(int framesPerSecond);

    struct Placement {
        bool kept = false;         // false: the picture is left out
        qint64 repeatsBefore = 0;  // slots to fill with the previous picture first
        qint64 slot = -1;          // the picture's own slot when kept
    };

    // Where a picture grabbed at `microseconds` (any steady clock) goes.
    // Times must not go backwards.
    Placement place(qint64 microseconds);

    // The slots to fill with the last picture so that the line lasts until
    // `endMicroseconds`; afterwards the line is complete. Nothing before the
    // first picture.
    qint64 repeatsUntil(qint64 endMicroseconds);

    // Slots filled so far (the next free slot).
    qint64 slotsFilled() const { return nextSlot_; }
    // When the first picture was grabbed.
    std::optional<qint64> startMicroseconds() const { return start_; }

private:
    double slotPosition(qint64 microseconds) const;

    int framesPerSecond_;
    std::optional<qint64> start_;
    qint64 nextSlot_ = 0;
};
