// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "platform/ffmpeg/constant_rate_timeline.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double kMicrosecondsPerSecond = 1e6;

}  // namespace

ConstantRateTimeline::ConstantRateTimeline(int framesPerSecond)
    : framesPerSecond_(std::max(1, framesPerSecond)) {}

double ConstantRateTimeline::slotPosition(qint64 microseconds) const {
    return static_cast<double>(microseconds - *start_) * framesPerSecond_ / kMicrosecondsPerSecond;
}

ConstantRateTimeline::Placement ConstantRateTimeline::place(qint64 microseconds) {
    if (!start_) {
        start_ = microseconds;
        nextSlot_ = 1;
        return {true, 0, 0};
    }
    const double position = slotPosition(microseconds);
    const auto next = static_cast<double>(nextSlot_);
    if (next >= position + 1.0) {
        return {};  // its slot, and the one after, are already filled
    }
    qint64 slot = nextSlot_;
    if (next <= position - 1.0) {
        // A real gap (the screen or the encoder was late): the picture goes
        // to its own slot, the ones before it repeat the previous picture.
        slot = std::max(nextSlot_, static_cast<qint64>(std::llround(position)));
    }
    const qint64 repeats = slot - nextSlot_;
    nextSlot_ = slot + 1;
    return {true, repeats, slot};
}

qint64 ConstantRateTimeline::repeatsUntil(qint64 endMicroseconds) {
    if (!start_) {
        return 0;
    }
    const qint64 total = std::llround(std::max(0.0, slotPosition(endMicroseconds)));
    const qint64 repeats = std::max<qint64>(0, total - nextSlot_);
    nextSlot_ += repeats;
    return repeats;
}
