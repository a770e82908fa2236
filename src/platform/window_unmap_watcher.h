// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QObject>
#include <QWindow>
#include <optional>

// Tells when windows of ours have left the screen, in the display server's
// own word, so that a capture can start the moment they are gone instead of
// after a fixed pause. GUI thread only.
class WindowUnmapWatcher : public QObject {
    Q_OBJECT

public:
    // The window that puts a window of ours on screen: the window manager's
    // frame around it, or the window itself when nothing frames it.
    using ScreenWindow = quint32;

    using QObject::QObject;

    // Starts watching the screen window of `window` (a top-level window's
    // native id) and returns it; nothing when `window` is not on screen, so
    // there is nothing to wait for. unmapped() follows once it has left.
    virtual std::optional<ScreenWindow> watch(WId window) = 0;
    // Stops every watch.
    virtual void stopWatching() = 0;

Q_SIGNALS:
    void unmapped(WindowUnmapWatcher::ScreenWindow window);
};
