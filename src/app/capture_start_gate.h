// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QSet>
#include <QtGlobal>

// Decides when a capture may freeze the screen. Our own panels are hidden
// just before a capture so that they do not end up in it; the capture waits
// until the X server has reported every one of them unmapped, plus one frame
// where a compositor draws the screen (it repaints only on its next frame).
// With nothing of ours on screen it starts at once. Past its deadline it
// starts whatever is still outstanding. Pure logic: the caller feeds it the
// events and acts on the step it answers.
class CaptureStartGate {
public:
    enum class Step { startNow, waitForUnmaps, waitForCompositorFrame };

    // `leavingWindows`: the screen windows (a window, or the window
    // manager's frame around it) of the panels that were on screen when
    // they were told to hide.
    CaptureStartGate(QSet<quint32> leavingWindows, bool compositorRunning);

    Step step() const;

    // Each returns the step that follows.
    Step windowUnmapped(quint32 window);
    Step compositorFramePassed();
    Step deadlinePassed();

private:
    QSet<quint32> leaving_;
    bool waitForFrame_;
    bool deadlinePassed_ = false;
};
