// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "platform/ffmpeg/constant_rate_timeline.h"

#include <gtest/gtest.h>

#include <QList>
#include <QRandomGenerator>

namespace {

constexpr qint64 kInterval = 33'333;  // microseconds per frame at 30 per second
constexpr qint64 kStart = 5'000'000;

struct Filled {
    qint64 kept = 0;
    qint64 left = 0;
    qint64 repeats = 0;
};

// Feeds grab times and checks that slots are filled in order, each once.
Filled feed(ConstantRateTimeline& timeline, const QList<qint64>& times) {
    Filled filled;
    for (const qint64 time : times) {
        const qint64 before = timeline.slotsFilled();
        const ConstantRateTimeline::Placement placement = timeline.place(time);
        if (!placement.kept) {
            ++filled.left;
            EXPECT_EQ(timeline.slotsFilled(), before);
            continue;
        }
        ++filled.kept;
        filled.repeats += placement.repeatsBefore;
        EXPECT_EQ(placement.slot, before + placement.repeatsBefore);
        EXPECT_EQ(timeline.slotsFilled(), placement.slot + 1);
    }
    return filled;
}

TEST(RecordingTimeline, JitteredGrabsFillEverySlotOnceAndTenSecondsHold300Frames) {
    QRandomGenerator random(11);
    QList<qint64> times;
    for (qint64 i = 0; i < 300; ++i) {
        // Up to ±0.45 of an interval early or late, as wall-clock stamps are.
        times.append(kStart + i * kInterval + random.bounded(-15'000, 15'000));
    }
    ConstantRateTimeline timeline(30);
    const Filled filled = feed(timeline, times);
    EXPECT_EQ(filled.kept, 300);
    EXPECT_EQ(filled.repeats, 0) << "jitter alone never makes repeats";
    EXPECT_EQ(timeline.repeatsUntil(kStart + 10'000'000), 0);
    EXPECT_EQ(timeline.slotsFilled(), 300);
    EXPECT_EQ(timeline.startMicroseconds(), times.first());
}

TEST(RecordingTimeline, GapsRepeatTheLastPictureAndEarlyPicturesAreLeftOut) {
    ConstantRateTimeline timeline(30);
    // Slots 0 and 1, then nothing until slot 5 (a stall of the screen).
    Filled filled = feed(timeline, {kStart, kStart + kInterval, kStart + 5 * kInterval + 2'000});
    EXPECT_EQ(filled.repeats, 3);  // slots 2, 3, 4
    EXPECT_EQ(timeline.slotsFilled(), 6);

    // A burst of catching up: four pictures within one interval. A picture
    // may move by less than an interval, so the first two take slots 6 and
    // 7; the others would be a whole slot or more early.
    filled = feed(timeline, {kStart + 6 * kInterval, kStart + 6 * kInterval + 1'000,
                             kStart + 6 * kInterval + 2'000, kStart + 6 * kInterval + 3'000});
    EXPECT_EQ(filled.kept, 2);
    EXPECT_EQ(filled.left, 2);
    EXPECT_EQ(timeline.slotsFilled(), 8);
}

TEST(RecordingTimeline, TheLineEndsWhereTheRecordingStopped) {
    ConstantRateTimeline empty(30);
    EXPECT_EQ(empty.repeatsUntil(kStart), 0) << "nothing before the first picture";

    ConstantRateTimeline timeline(30);
    feed(timeline, {kStart, kStart + kInterval});
    // Stopped 3 s after the first picture, with the screen unchanged since:
    // the last picture fills the rest.
    EXPECT_EQ(timeline.repeatsUntil(kStart + 3'000'000), 88);
    EXPECT_EQ(timeline.slotsFilled(), 90);
    // A stop before the last slot already filled adds nothing.
    EXPECT_EQ(timeline.repeatsUntil(kStart + 1'000'000), 0);
    EXPECT_EQ(timeline.slotsFilled(), 90);
}

}  // namespace
