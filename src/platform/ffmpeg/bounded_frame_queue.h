// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QtGlobal>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <vector>

#include "platform/ffmpeg/av_pointers.h"

// Hands grabbed pictures from the grabbing thread to the encoding thread.
// A fixed set of pictures circulates: the grabber takes a free one, fills it
// and queues it; the encoder takes it, and gives it back once it no longer
// needs it. When none is free the grabber drops its picture instead of
// waiting or allocating, so a slow encoder costs frames, never memory.
class BoundedFrameQueue {
public:
    struct Grabbed {
        AvFramePtr frame;
        qint64 grabbedAt = 0;  // microseconds, steady clock
    };

    explicit BoundedFrameQueue(std::vector<AvFramePtr> frames);

    // A free picture, or nothing when every one is queued or in use.
    AvFramePtr takeFree();
    // Gives a picture back to the free set.
    void recycle(AvFramePtr frame);

    void push(AvFramePtr frame, qint64 grabbedAt);
    // The oldest queued picture; waits for one. Nothing once the queue is
    // closed and empty.
    std::optional<Grabbed> pop();
    // No more pictures will be pushed.
    void close();

private:
    std::mutex mutex_;
    std::condition_variable queued_;
    std::vector<AvFramePtr> free_;
    std::deque<Grabbed> ready_;
    bool closed_ = false;
};
