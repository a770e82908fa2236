// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "app/capture_start_gate.h"

#include <utility>

CaptureStartGate::CaptureStartGate(QSet<quint32> leavingWindows, bool compositorRunning)
    : leaving_(std::move(leavingWindows)),
      // Nothing left the screen, so there is nothing for a compositor to
      // repaint either.
      waitForFrame_(compositorRunning && !leaving_.isEmpty()) {}

CaptureStartGate::Step CaptureStartGate::step() const {
    if (deadlinePassed_) {
        return Step::startNow;
    }
    if (!leaving_.isEmpty()) {
        return Step::waitForUnmaps;
    }
    return waitForFrame_ ? Step::waitForCompositorFrame : Step::startNow;
}

CaptureStartGate::Step CaptureStartGate::windowUnmapped(quint32 window) {
    leaving_.remove(window);
    return step();
}

CaptureStartGate::Step CaptureStartGate::compositorFramePassed() {
    // A frame that passes while windows are still mapped shows them still.
    if (leaving_.isEmpty()) {
        waitForFrame_ = false;
    }
    return step();
}

CaptureStartGate::Step CaptureStartGate::deadlinePassed() {
    deadlinePassed_ = true;
    return step();
}
