#pragma once

#include <memory>

#include "platform/keyboard_layout.h"

struct xcb_connection_t;
struct xkb_context;
struct xkb_keymap;
struct xkb_state;

// Key labels from the X server's current keymap and layout group, through
// xkbcommon.
class XkbKeyboardLayout : public KeyboardLayout {
public:
    // The core keyboard of `connection`; nothing when the server lacks XKB.
    static std::unique_ptr<XkbKeyboardLayout> fromX11(xcb_connection_t* connection);

    // A keymap compiled from RMLVO names ("us", "de", …) without a server.
    static std::unique_ptr<XkbKeyboardLayout> fromLayoutName(const char* layout);

    ~XkbKeyboardLayout() override;

    QString keyLabel(quint32 keyCode) const override;
    void refresh() override;

private:
    XkbKeyboardLayout(xkb_context* context, xcb_connection_t* connection);
    bool loadFromServer();

    xkb_context* context_ = nullptr;
    xcb_connection_t* connection_ = nullptr;  // not owned; null for a named layout
    xkb_keymap* keymap_ = nullptr;
    xkb_state* state_ = nullptr;
};
