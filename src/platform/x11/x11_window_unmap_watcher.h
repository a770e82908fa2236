// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QAbstractNativeEventFilter>
#include <QSet>
#include <memory>

#include "platform/window_unmap_watcher.h"

struct xcb_connection_t;

// Watches UnmapNotify (and DestroyNotify) of the root window's child that
// shows a window of ours: the window manager's frame around it, whose
// structure events we select ourselves, or our own override-redirect window,
// whose structure events Qt selects already. Events reach us through Qt's
// own connection.
class X11WindowUnmapWatcher : public WindowUnmapWatcher, public QAbstractNativeEventFilter {
    Q_OBJECT

public:
    X11WindowUnmapWatcher(xcb_connection_t* connection, quint32 rootWindow);
    ~X11WindowUnmapWatcher() override;

    std::optional<ScreenWindow> watch(WId window) override;
    void stopWatching() override;

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

private:
    bool isViewable(quint32 window) const;
    // The child of the root window that holds `window` (or `window` itself).
    std::optional<quint32> topLevelAncestor(quint32 window) const;
    void selectStructureEvents(quint32 window, bool enabled);

    xcb_connection_t* connection_;
    quint32 rootWindow_;
    QSet<quint32> watched_;
    // Window-manager frames whose structure events we selected.
    QSet<quint32> selectedFrames_;
};
