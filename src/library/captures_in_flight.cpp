// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "library/captures_in_flight.h"

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>
#include <atomic>

namespace {

std::atomic<int> capturesInFlight = 0;

// Tokens may be released on worker threads, so the wait looks at the count
// now and then instead of being told.
constexpr int kPollIntervalMs = 10;

}  // namespace

CaptureInFlight::CaptureInFlight() {
    ++capturesInFlight;
}

CaptureInFlight::~CaptureInFlight() {
    --capturesInFlight;
}

int CaptureInFlight::count() {
    return capturesInFlight.load();
}

bool waitForCapturesInFlight(std::chrono::milliseconds bound) {
    if (CaptureInFlight::count() == 0) {
        return true;
    }
    const QDeadlineTimer deadline(bound);
    QEventLoop loop;
    QTimer poll;
    poll.setInterval(kPollIntervalMs);
    QObject::connect(&poll, &QTimer::timeout, &loop, [&loop, &deadline] {
        if (CaptureInFlight::count() == 0 || deadline.hasExpired()) {
            loop.quit();
        }
    });
    poll.start();
    loop.exec();
    return CaptureInFlight::count() == 0;
}
