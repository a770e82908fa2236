// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <chrono>
#include <memory>

// Captures whose file is being written, or whose follow-up (registry first)
// has not run yet. Quitting waits for them: a capture saved just before a
// logout must still be recorded as the program's own, or it is missing from
// the gallery after the next start.
//
// A capture holds a token from the moment its save starts until its
// follow-up has run; the token may be copied into continuations and released
// on any thread.
class CaptureInFlight {
public:
    CaptureInFlight();
    ~CaptureInFlight();
    CaptureInFlight(const CaptureInFlight&) = delete;
    CaptureInFlight& operator=(const CaptureInFlight&) = delete;

    // How many tokens are alive.
    static int count();
};

using CaptureInFlightToken = std::shared_ptr<const CaptureInFlight>;

inline CaptureInFlightToken startCaptureInFlight() {
    return std::make_shared<const CaptureInFlight>();
}

// Once the main event loop has ended: goes on handling events until no
// capture is in flight, for at most `bound`. GUI thread. Returns whether
// every capture finished in time.
bool waitForCapturesInFlight(std::chrono::milliseconds bound = std::chrono::seconds(3));
