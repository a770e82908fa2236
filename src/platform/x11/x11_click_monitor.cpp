// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "platform/x11/x11_click_monitor.h"

#include <xcb/xcb.h>
#include <xcb/xinput.h>

#include <QCoreApplication>
#include <QCursor>
#include <QGuiApplication>
#include <QWindow>
#include <algorithm>
#include <cstdlib>

namespace {

constexpr quint32 kLeftButton = 1;
constexpr quint32 kRightButton = 3;
// Window managers nest a client one or two levels below the root; tray
// hosts a few more.
constexpr int kMaxDepth = 8;

}  // namespace

std::unique_ptr<X11ClickMonitor> X11ClickMonitor::create(xcb_connection_t* connection,
                                                         quint32 rootWindow) {
    if (connection == nullptr) {
        return nullptr;
    }
    const xcb_query_extension_reply_t* extension =
        xcb_get_extension_data(connection, &xcb_input_id);
    if (extension == nullptr || !extension->present) {
        return nullptr;
    }
    // Raw events need XInput 2.0 or later.
    auto* version = xcb_input_xi_query_version_reply(
        connection, xcb_input_xi_query_version(connection, 2, 2), nullptr);
    const bool supported = version != nullptr && version->major_version >= 2;
    std::free(version);
    if (!supported) {
        return nullptr;
    }
    return std::unique_ptr<X11ClickMonitor>(
        new X11ClickMonitor(connection, rootWindow, extension->major_opcode));
}

X11ClickMonitor::X11ClickMonitor(xcb_connection_t* connection, quint32 rootWindow,
                                 quint8 xinputOpcode)
    : connection_(connection), rootWindow_(rootWindow), xinputOpcode_(xinputOpcode) {
    QCoreApplication::instance()->installNativeEventFilter(this);
}

X11ClickMonitor::~X11ClickMonitor() {
    stop();
    if (QCoreApplication::instance() != nullptr) {
        QCoreApplication::instance()->removeNativeEventFilter(this);
    }
}

void X11ClickMonitor::start() {
    if (!running_) {
        selectRawPresses(true);
        running_ = true;
    }
}

void X11ClickMonitor::stop() {
    if (running_) {
        selectRawPresses(false);
        running_ = false;
    }
}

void X11ClickMonitor::selectRawPresses(bool enabled) {
    struct {
        xcb_input_event_mask_t header;
        quint32 mask;
    } selection{{XCB_INPUT_DEVICE_ALL_MASTER, 1},
                enabled ? quint32(XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS) : 0u};
    xcb_input_xi_select_events(connection_, rootWindow_, 1, &selection.header);
    xcb_flush(connection_);
}

bool X11ClickMonitor::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
    if (!running_ || eventType != "xcb_generic_event_t") {
        return false;
    }
    auto* event = static_cast<xcb_generic_event_t*>(message);
    if ((event->response_type & 0x7f) != XCB_GE_GENERIC) {
        return false;
    }
    auto* generic = reinterpret_cast<xcb_ge_generic_event_t*>(event);
    if (generic->extension != xinputOpcode_ || generic->event_type != XCB_INPUT_RAW_BUTTON_PRESS) {
        return false;
    }
    auto* press = reinterpret_cast<xcb_input_raw_button_press_event_t*>(event);
    if (press->detail == kLeftButton || press->detail == kRightButton) {
        // Raw events carry no position or window; the pointer is where the
        // press happened.
        Q_EMIT pressed(QCursor::pos(), pointerOnOwnWindow());
    }
    // Qt must still see the event: it selects XInput events of its own.
    return false;
}

bool X11ClickMonitor::pointerOnOwnWindow() const {
    // Down from the root through the windows under the pointer: the window
    // manager's frame, then the client in it, and so on. The press is ours
    // when any of them is one of our windows (menus and tooltips sit right
    // under the root; dialogs inside a frame; the tray icon inside its host).
    quint32 window = rootWindow_;
    for (int depth = 0; depth < kMaxDepth; ++depth) {
        auto* reply =
            xcb_query_pointer_reply(connection_, xcb_query_pointer(connection_, window), nullptr);
        const quint32 child = reply != nullptr ? reply->child : quint32(XCB_WINDOW_NONE);
        std::free(reply);
        if (child == XCB_WINDOW_NONE) {
            return false;
        }
        if (isOwnWindow(child)) {
            return true;
        }
        window = child;
    }
    return false;
}

bool X11ClickMonitor::isOwnWindow(quint32 window) const {
    // Every window made on Qt's connection carries its resource-id base.
    const xcb_setup_t* setup = xcb_get_setup(connection_);
    if ((window & ~setup->resource_id_mask) == setup->resource_id_base) {
        return true;
    }
    const QList<QWindow*> windows = QGuiApplication::allWindows();
    return std::any_of(windows.begin(), windows.end(), [window](const QWindow* own) {
        return own->handle() != nullptr && quint32(own->winId()) == window;
    });
}
