// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "platform/x11/x11_window_unmap_watcher.h"

#include <xcb/xcb.h>

#include <QCoreApplication>
#include <cstdlib>

namespace {

template <typename Reply>
using ReplyPointer = std::unique_ptr<Reply, decltype(&std::free)>;

// Deeper nesting than this is no window manager's frame.
constexpr int kMaxAncestors = 16;

}  // namespace

X11WindowUnmapWatcher::X11WindowUnmapWatcher(xcb_connection_t* connection, quint32 rootWindow)
    : connection_(connection), rootWindow_(rootWindow) {
    QCoreApplication::instance()->installNativeEventFilter(this);
}

X11WindowUnmapWatcher::~X11WindowUnmapWatcher() {
    stopWatching();
    if (QCoreApplication::instance() != nullptr) {
        QCoreApplication::instance()->removeNativeEventFilter(this);
    }
}

std::optional<WindowUnmapWatcher::ScreenWindow> X11WindowUnmapWatcher::watch(WId window) {
    const auto native = quint32(window);
    if (native == XCB_WINDOW_NONE || !isViewable(native)) {
        return std::nullopt;
    }
    const std::optional<quint32> top = topLevelAncestor(native);
    if (!top) {
        return std::nullopt;
    }
    // Our own windows already report their structure events to Qt's
    // connection; changing their event mask would take Qt's away.
    if (*top != native && !selectedFrames_.contains(*top)) {
        selectStructureEvents(*top, true);
        selectedFrames_.insert(*top);
    }
    watched_.insert(*top);
    return *top;
}

void X11WindowUnmapWatcher::stopWatching() {
    for (const quint32 frame : std::as_const(selectedFrames_)) {
        selectStructureEvents(frame, false);
    }
    selectedFrames_.clear();
    watched_.clear();
    xcb_flush(connection_);
}

bool X11WindowUnmapWatcher::isViewable(quint32 window) const {
    const ReplyPointer<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(connection_, xcb_get_window_attributes(connection_, window),
                                        nullptr),
        &std::free);
    return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
}

std::optional<quint32> X11WindowUnmapWatcher::topLevelAncestor(quint32 window) const {
    for (int depth = 0; depth < kMaxAncestors; ++depth) {
        const ReplyPointer<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(connection_, xcb_query_tree(connection_, window), nullptr),
            &std::free);
        if (!tree) {
            return std::nullopt;
        }
        if (tree->parent == rootWindow_ || tree->parent == XCB_WINDOW_NONE) {
            return window;
        }
        window = tree->parent;
    }
    return std::nullopt;
}

void X11WindowUnmapWatcher::selectStructureEvents(quint32 window, bool enabled) {
    const quint32 mask = enabled ? XCB_EVENT_MASK_STRUCTURE_NOTIFY : XCB_EVENT_MASK_NO_EVENT;
    // The frame may be gone already (the window manager destroys it when our
    // window is withdrawn): drop that error instead of reporting it.
    const xcb_void_cookie_t cookie =
        xcb_change_window_attributes_checked(connection_, window, XCB_CW_EVENT_MASK, &mask);
    xcb_discard_reply(connection_, cookie.sequence);
}

bool X11WindowUnmapWatcher::nativeEventFilter(const QByteArray& eventType, void* message,
                                              qintptr*) {
    if (watched_.isEmpty() || eventType != "xcb_generic_event_t") {
        return false;
    }
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    // Sent events (the withdrawal notice of ICCCM) are requests, not facts.
    if (event->response_type & 0x80) {
        return false;
    }
    quint32 window = XCB_WINDOW_NONE;
    switch (event->response_type) {
        case XCB_UNMAP_NOTIFY:
            window = reinterpret_cast<const xcb_unmap_notify_event_t*>(event)->window;
            break;
        case XCB_DESTROY_NOTIFY:
            window = reinterpret_cast<const xcb_destroy_notify_event_t*>(event)->window;
            break;
        default:
            return false;
    }
    if (watched_.remove(window)) {
        if (selectedFrames_.remove(window)) {
            selectStructureEvents(window, false);
        }
        Q_EMIT unmapped(window);
    }
    // Qt still handles the event for its own windows.
    return false;
}
