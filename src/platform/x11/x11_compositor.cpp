// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "platform/x11/x11_compositor.h"

#include <xcb/xcb.h>

#include <QByteArray>
#include <cstdlib>
#include <memory>

namespace {

template <typename Reply>
using ReplyPointer = std::unique_ptr<Reply, decltype(&std::free)>;

xcb_atom_t managerSelection(xcb_connection_t* connection) {
    char* host = nullptr;
    int display = 0;
    int screen = 0;
    // Only the screen number of $DISPLAY is wanted here.
    if (xcb_parse_display(nullptr, &host, &display, &screen) == 0) {
        screen = 0;
    }
    std::free(host);
    const QByteArray name = "_NET_WM_CM_S" + QByteArray::number(screen);
    const ReplyPointer<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(
            connection, xcb_intern_atom(connection, 0, name.size(), name.constData()), nullptr),
        &std::free);
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

}  // namespace

bool x11CompositorRunning(xcb_connection_t* connection) {
    if (connection == nullptr) {
        return false;
    }
    // The atom never changes for a display; its owner comes and goes.
    static const xcb_atom_t selection = managerSelection(connection);
    if (selection == XCB_ATOM_NONE) {
        return false;
    }
    const ReplyPointer<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, selection),
                                      nullptr),
        &std::free);
    return owner && owner->owner != XCB_WINDOW_NONE;
}
