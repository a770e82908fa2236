// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QAbstractNativeEventFilter>
#include <memory>

#include "platform/keyboard_layout.h"

struct xcb_connection_t;
struct xkb_context;
struct xkb_keymap;
struct xkb_state;

// Key labels from the X server's current keymap and layout group, through
// xkbcommon. On the running application's own connection it follows the
// server: a switch to another layout group (XKB state notify) or a new keymap
// (setxkbmap, a desktop's layout settings) updates the labels and emits
// changed().
class XkbKeyboardLayout : public KeyboardLayout, private QAbstractNativeEventFilter {
    Q_OBJECT

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
    // Listens for the server's layout changes through the application's
    // event stream.
    void followServer(quint8 firstXkbEvent);
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;
    void showGroup(quint32 group);
    void reloadSoon();

    xkb_context* context_ = nullptr;
    xcb_connection_t* connection_ = nullptr;  // not owned; null for a named layout
    xkb_keymap* keymap_ = nullptr;
    xkb_state* state_ = nullptr;
    qint32 device_ = -1;
    quint32 group_ = 0;  // the layout group labels are read in
    bool following_ = false;
    quint8 firstXkbEvent_ = 0;
    bool reloadPending_ = false;
};
