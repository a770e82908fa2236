// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "platform/ffmpeg/bounded_frame_queue.h"

#include <utility>

BoundedFrameQueue::BoundedFrameQueue(std::vector<AvFramePtr> frames) : free_(std::move(frames)) {}

AvFramePtr BoundedFrameQueue::takeFree() {
    const std::lock_guard lock(mutex_);
    if (free_.empty()) {
        return {};
    }
    AvFramePtr frame = std::move(free_.back());
    free_.pop_back();
    return frame;
}

void BoundedFrameQueue::recycle(AvFramePtr frame) {
    if (!frame) {
        return;
    }
    const std::lock_guard lock(mutex_);
    free_.push_back(std::move(frame));
}

void BoundedFrameQueue::push(AvFramePtr frame, qint64 grabbedAt) {
    {
        const std::lock_guard lock(mutex_);
        ready_.push_back({std::move(frame), grabbedAt});
    }
    queued_.notify_one();
}

std::optional<BoundedFrameQueue::Grabbed> BoundedFrameQueue::pop() {
    std::unique_lock lock(mutex_);
    queued_.wait(lock, [this] { return !ready_.empty() || closed_; });
    if (ready_.empty()) {
        return std::nullopt;
    }
    Grabbed grabbed = std::move(ready_.front());
    ready_.pop_front();
    return grabbed;
}

void BoundedFrameQueue::close() {
    {
        const std::lock_guard lock(mutex_);
        closed_ = true;
    }
    queued_.notify_all();
}
