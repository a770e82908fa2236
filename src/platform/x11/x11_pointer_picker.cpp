// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "platform/x11/x11_pointer_picker.h"

#include <xcb/xcb.h>

#include <QCoreApplication>
#include <cstdlib>

namespace {

constexpr quint8 kLeftButton = 1;
constexpr xcb_keysym_t kEscapeKeysym = 0xff1b;
// The crosshair of X's standard cursor font, and its mask glyph.
constexpr quint16 kCrosshairGlyph = 34;
// Another program may hold the pointer for a moment (an open menu, a
// button still down): try again for about a second before giving up.
constexpr int kGrabRetryMs = 50;
constexpr int kMaxGrabAttempts = 20;

quint32 crosshairCursor(xcb_connection_t* connection) {
    const xcb_font_t font = xcb_generate_id(connection);
    const char name[] = "cursor";
    xcb_open_font(connection, font, sizeof(name) - 1, name);
    const xcb_cursor_t cursor = xcb_generate_id(connection);
    xcb_create_glyph_cursor(connection, cursor, font, font, kCrosshairGlyph, kCrosshairGlyph + 1, 0,
                            0, 0, 0xffff, 0xffff, 0xffff);
    xcb_close_font(connection, font);
    return cursor;
}

}  // namespace

std::unique_ptr<X11PointerPicker> X11PointerPicker::create(xcb_connection_t* connection,
                                                           quint32 rootWindow) {
    if (connection == nullptr) {
        return nullptr;
    }
    return std::unique_ptr<X11PointerPicker>(new X11PointerPicker(connection, rootWindow));
}

X11PointerPicker::X11PointerPicker(xcb_connection_t* connection, quint32 rootWindow)
    : connection_(connection), rootWindow_(rootWindow) {
    retry_.setInterval(kGrabRetryMs);
    connect(&retry_, &QTimer::timeout, this, &X11PointerPicker::retryGrab);
}

X11PointerPicker::~X11PointerPicker() {
    stop();
}

void X11PointerPicker::start() {
    if (active_) {
        return;
    }
    active_ = true;
    cursor_ = crosshairCursor(connection_);
    // The keymap may have changed since the last pick.
    keySymbols_ = xcb_key_symbols_alloc(connection_);
    QCoreApplication::instance()->installNativeEventFilter(this);
    grabAttempts_ = 0;
    if (!tryGrab()) {
        retry_.start();
    }
}

void X11PointerPicker::stop() {
    if (!active_) {
        return;
    }
    active_ = false;
    retry_.stop();
    if (QCoreApplication::instance() != nullptr) {
        QCoreApplication::instance()->removeNativeEventFilter(this);
    }
    if (pointerGrabbed_) {
        xcb_ungrab_pointer(connection_, XCB_CURRENT_TIME);
    }
    if (keyboardGrabbed_) {
        xcb_ungrab_keyboard(connection_, XCB_CURRENT_TIME);
    }
    pointerGrabbed_ = false;
    keyboardGrabbed_ = false;
    xcb_free_cursor(connection_, cursor_);
    cursor_ = 0;
    xcb_key_symbols_free(keySymbols_);
    keySymbols_ = nullptr;
    xcb_flush(connection_);
}

// Grabs what is not held yet; true once both are ours.
bool X11PointerPicker::tryGrab() {
    ++grabAttempts_;
    if (!pointerGrabbed_) {
        const quint16 events = XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_BUTTON_PRESS |
                               XCB_EVENT_MASK_BUTTON_RELEASE;
        auto* reply = xcb_grab_pointer_reply(
            connection_,
            xcb_grab_pointer(connection_, 0, rootWindow_, events, XCB_GRAB_MODE_ASYNC,
                             XCB_GRAB_MODE_ASYNC, XCB_WINDOW_NONE, cursor_, XCB_CURRENT_TIME),
            nullptr);
        pointerGrabbed_ = reply != nullptr && reply->status == XCB_GRAB_STATUS_SUCCESS;
        std::free(reply);
        if (pointerGrabbed_) {
            reportPointer();
        }
    }
    if (!keyboardGrabbed_) {
        auto* reply =
            xcb_grab_keyboard_reply(connection_,
                                    xcb_grab_keyboard(connection_, 0, rootWindow_, XCB_CURRENT_TIME,
                                                      XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
                                    nullptr);
        keyboardGrabbed_ = reply != nullptr && reply->status == XCB_GRAB_STATUS_SUCCESS;
        std::free(reply);
    }
    return pointerGrabbed_ && keyboardGrabbed_;
}

void X11PointerPicker::retryGrab() {
    if (tryGrab()) {
        retry_.stop();
        return;
    }
    if (grabAttempts_ < kMaxGrabAttempts) {
        return;
    }
    retry_.stop();
    // Without the pointer there is no pick; without the keyboard alone the
    // pick still works, only Escape does not reach it.
    if (!pointerGrabbed_) {
        stop();
        Q_EMIT failed();
    }
}

void X11PointerPicker::reportPointer() {
    auto* pointer =
        xcb_query_pointer_reply(connection_, xcb_query_pointer(connection_, rootWindow_), nullptr);
    if (pointer != nullptr) {
        const QPoint position(pointer->root_x, pointer->root_y);
        std::free(pointer);
        Q_EMIT moved(position);
    }
}

bool X11PointerPicker::isEscape(quint8 keycode) const {
    return keySymbols_ != nullptr &&
           xcb_key_symbols_get_keysym(keySymbols_, keycode, 0) == kEscapeKeysym;
}

bool X11PointerPicker::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
    if (!active_ || eventType != "xcb_generic_event_t") {
        return false;
    }
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    // Grabbed events are reported on the root; everything else is Qt's.
    switch (event->response_type & 0x7f) {
        case XCB_MOTION_NOTIFY: {
            const auto* motion = reinterpret_cast<const xcb_motion_notify_event_t*>(event);
            if (motion->event != rootWindow_) {
                return false;
            }
            Q_EMIT moved({motion->root_x, motion->root_y});
            return true;
        }
        case XCB_BUTTON_PRESS: {
            const auto* press = reinterpret_cast<const xcb_button_press_event_t*>(event);
            if (press->event != rootWindow_) {
                return false;
            }
            if (press->detail == kLeftButton) {
                Q_EMIT clicked({press->root_x, press->root_y});
            }
            return true;
        }
        case XCB_BUTTON_RELEASE:
            return reinterpret_cast<const xcb_button_release_event_t*>(event)->event == rootWindow_;
        case XCB_KEY_PRESS: {
            const auto* key = reinterpret_cast<const xcb_key_press_event_t*>(event);
            if (key->event != rootWindow_) {
                return false;
            }
            if (isEscape(key->detail)) {
                Q_EMIT escapePressed();
            }
            return true;
        }
        default:
            // Key releases too are left to the other filters: the hotkey
            // that started this pick may still wait for its key's release,
            // which can arrive after the grab, and would otherwise take the
            // next press for a repeat.
            return false;
    }
}
