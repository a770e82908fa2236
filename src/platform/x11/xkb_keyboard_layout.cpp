#include "platform/x11/xkb_keyboard_layout.h"

#include <xkbcommon/xkbcommon-x11.h>
#include <xkbcommon/xkbcommon.h>

#include <array>

#include "platform/key_codes.h"
#include "storage/hotkey_binding.h"

XkbKeyboardLayout::XkbKeyboardLayout(xkb_context* context, xcb_connection_t* connection)
    : context_(context), connection_(connection) {}

XkbKeyboardLayout::~XkbKeyboardLayout() {
    xkb_state_unref(state_);
    xkb_keymap_unref(keymap_);
    xkb_context_unref(context_);
}

std::unique_ptr<XkbKeyboardLayout> XkbKeyboardLayout::fromX11(xcb_connection_t* connection) {
    if (connection == nullptr ||
        !xkb_x11_setup_xkb_extension(
            connection, XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
            XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, nullptr, nullptr)) {
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
    // Keep the user's layout group but translate as if no modifier were held.
    const xkb_layout_index_t group = xkb_state_serialize_layout(state_, XKB_STATE_LAYOUT_EFFECTIVE);
    xkb_state_update_mask(state_, 0, 0, 0, 0, 0, group);
    return true;
}

void XkbKeyboardLayout::refresh() {
    if (connection_ != nullptr) {
        loadFromServer();
    }
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
