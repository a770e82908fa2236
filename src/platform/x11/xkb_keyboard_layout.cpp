// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "platform/x11/xkb_keyboard_layout.h"

#include <xcb/xcb.h>
#include <xkbcommon/xkbcommon-x11.h>
#include <xkbcommon/xkbcommon.h>
// xkb.h names a member "explicit", which C++ reserves.
#if defined(__clang__)
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wkeyword-macro"
#endif
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit
#if defined(__clang__)
#pragma clang diagnostic pop
#endif

#include <QCoreApplication>
#include <QGuiApplication>
#include <QTimer>
#include <array>

#include "platform/key_codes.h"

namespace {

// The XKB events that tell of another layout group or another keymap.
constexpr uint16_t kLayoutEvents = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY |
                                   XCB_XKB_EVENT_TYPE_MAP_NOTIFY | XCB_XKB_EVENT_TYPE_STATE_NOTIFY;
constexpr uint16_t kGroupParts = XCB_XKB_STATE_PART_GROUP_STATE | XCB_XKB_STATE_PART_GROUP_BASE |
                                 XCB_XKB_STATE_PART_GROUP_LATCH | XCB_XKB_STATE_PART_GROUP_LOCK;

// The leading fields that every XKB event shares.
struct XkbEventHeader {
    uint8_t responseType;
    uint8_t xkbType;
    uint16_t sequence;
    xcb_timestamp_t time;
    uint8_t deviceId;
};

bool isApplicationConnection(xcb_connection_t* connection) {
    // Not qGuiApp: the running application may be a plain QCoreApplication.
    const auto* application = qobject_cast<QGuiApplication*>(QCoreApplication::instance());
    const auto* x11 =
        application ? application->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x11 != nullptr && x11->connection() == connection;
}

}  // namespace

XkbKeyboardLayout::XkbKeyboardLayout(xkb_context* context, xcb_connection_t* connection)
    : context_(context), connection_(connection) {}

XkbKeyboardLayout::~XkbKeyboardLayout() {
    if (following_ && QCoreApplication::instance() != nullptr) {
        QCoreApplication::instance()->removeNativeEventFilter(this);
    }
    xkb_state_unref(state_);
    xkb_keymap_unref(keymap_);
    xkb_context_unref(context_);
}

std::unique_ptr<XkbKeyboardLayout> XkbKeyboardLayout::fromX11(xcb_connection_t* connection) {
    uint8_t firstXkbEvent = 0;
    if (connection == nullptr ||
        !xkb_x11_setup_xkb_extension(
            connection, XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
            XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, &firstXkbEvent, nullptr)) {
        return nullptr;
    }
    xkb_context* context = xkb_context_new(XKB_CONTEXT_NO_FLAGS);
    if (context == nullptr) {
        return nullptr;
    }
    std::unique_ptr<XkbKeyboardLayout> layout(new XkbKeyboardLayout(context, connection));
    if (!layout->loadFromServer()) {
        return nullptr;
    }
    // Only the application's connection has its events read (by Qt).
    if (isApplicationConnection(connection)) {
        layout->followServer(firstXkbEvent);
    }
    return layout;
}

std::unique_ptr<XkbKeyboardLayout> XkbKeyboardLayout::fromLayoutName(const char* layoutName) {
    xkb_context* context = xkb_context_new(XKB_CONTEXT_NO_FLAGS);
    if (context == nullptr) {
        return nullptr;
    }
    std::unique_ptr<XkbKeyboardLayout> layout(new XkbKeyboardLayout(context, nullptr));
    const xkb_rule_names names{nullptr, nullptr, layoutName, nullptr, nullptr};
    layout->keymap_ = xkb_keymap_new_from_names(context, &names, XKB_KEYMAP_COMPILE_NO_FLAGS);
    layout->state_ = layout->keymap_ ? xkb_state_new(layout->keymap_) : nullptr;
    if (layout->state_ == nullptr) {
        return nullptr;
    }
    return layout;
}

bool XkbKeyboardLayout::loadFromServer() {
    const int32_t device = xkb_x11_get_core_keyboard_device_id(connection_);
    if (device < 0) {
        return false;
    }
    xkb_keymap* keymap =
        xkb_x11_keymap_new_from_device(context_, connection_, device, XKB_KEYMAP_COMPILE_NO_FLAGS);
    xkb_state* state =
        keymap ? xkb_x11_state_new_from_device(keymap, connection_, device) : nullptr;
    if (state == nullptr) {
        xkb_keymap_unref(keymap);
        return false;
    }
    xkb_state_unref(state_);
    xkb_keymap_unref(keymap_);
    keymap_ = keymap;
    state_ = state;
    device_ = device;
    showGroup(xkb_state_serialize_layout(state_, XKB_STATE_LAYOUT_EFFECTIVE));
    return true;
}

// Keeps the user's layout group but translates as if no modifier were held.
void XkbKeyboardLayout::showGroup(quint32 group) {
    group_ = group;
    xkb_state_update_mask(state_, 0, 0, 0, 0, 0, group);
}

void XkbKeyboardLayout::refresh() {
    if (connection_ != nullptr) {
        loadFromServer();
    }
}

void XkbKeyboardLayout::followServer(quint8 firstXkbEvent) {
    if (QCoreApplication::instance() == nullptr) {
        return;
    }
    // The same selection Qt makes for its own keyboard handling (all
    // details of these three events), so adding it changes nothing for Qt.
    const xcb_xkb_select_events_details_t noDetails{};
    xcb_xkb_select_events_aux(connection_, XCB_XKB_ID_USE_CORE_KBD, kLayoutEvents, 0, kLayoutEvents,
                              0, 0, &noDetails);
    xcb_flush(connection_);
    firstXkbEvent_ = firstXkbEvent;
    following_ = true;
    QCoreApplication::instance()->installNativeEventFilter(this);
}

bool XkbKeyboardLayout::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
    if (eventType != "xcb_generic_event_t") {
        return false;
    }
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    if ((event->response_type & 0x7f) != firstXkbEvent_) {
        return false;
    }
    const auto* header = reinterpret_cast<const XkbEventHeader*>(event);
    if (header->deviceId != device_) {
        return false;
    }
    switch (header->xkbType) {
        case XCB_XKB_STATE_NOTIFY: {
            const auto* state = reinterpret_cast<const xcb_xkb_state_notify_event_t*>(event);
            if ((state->changed & kGroupParts) != 0 && state->group != group_) {
                showGroup(state->group);
                Q_EMIT changed();
            }
            break;
        }
        case XCB_XKB_NEW_KEYBOARD_NOTIFY:
        case XCB_XKB_MAP_NOTIFY:
            reloadSoon();
            break;
        default:
            break;
    }
    // Qt handles these events for its own keyboard too.
    return false;
}

// A new keymap arrives as a burst of notifications; it is read once, after
// the burst.
void XkbKeyboardLayout::reloadSoon() {
    if (reloadPending_) {
        return;
    }
    reloadPending_ = true;
    QTimer::singleShot(0, this, [this] {
        reloadPending_ = false;
        if (loadFromServer()) {
            Q_EMIT changed();
        }
    });
}

QString XkbKeyboardLayout::keyLabel(quint32 keyCode) const {
    const std::optional<quint32> xKeycode = KeyCodes::xKeycodeFromKeyCode(keyCode);
    if (!xKeycode) {
        return keyName(keyCode);
    }
    std::array<char, 16> buffer{};
    const int length = xkb_state_key_get_utf8(state_, *xKeycode, buffer.data(), buffer.size());
    const QString text = QString::fromUtf8(buffer.data(), qBound(0, length, 15)).toUpper();
    // Control characters (Return, Tab, Escape) and blanks read better as names.
    const bool printable = !text.isEmpty() && text.at(0).isPrint() && !text.at(0).isSpace();
    return printable ? text : keyName(keyCode);
}
