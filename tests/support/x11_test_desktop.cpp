// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "support/x11_test_desktop.h"

#include <xcb/xcb.h>
#include <xcb/xcb_icccm.h>

#include <QTest>
#include <cstdlib>
#include <cstring>

namespace {

template <typename Reply>
std::unique_ptr<Reply, decltype(&std::free)> owned(Reply* reply) {
    return {reply, &std::free};
}

constexpr int kWaitMs = 10000;

xcb_atom_t atom(xcb_connection_t* connection, const char* name) {
    const auto reply = owned(xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 0, std::strlen(name), name), nullptr));
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

}  // namespace

X11TestDesktop::X11TestDesktop() {
    connection_ = xcb_connect(nullptr, nullptr);
    root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
}

X11TestDesktop::~X11TestDesktop() {
    closeAll();
    xcb_disconnect(connection_);
}

quint32 X11TestDesktop::openWindow(const QRect& geometry, const QString& colour,
                                   const QString& title) {
    auto process = std::make_unique<QProcess>();
    process->start(
        QStringLiteral(QUILLIX_TEST_WINDOW),
        {QString::number(geometry.x()), QString::number(geometry.y()),
         QString::number(geometry.width()), QString::number(geometry.height()), colour, title});
    if (!process->waitForReadyRead(kWaitMs)) {
        return 0;
    }
    const auto window = quint32(process->readLine().trimmed().toULongLong());
    processes_.push_back(std::move(process));
    // Framed: the window manager has reparented it and set its extents.
    const bool framed = QTest::qWaitFor(
        [&] { return !viewableRect(window).isEmpty() && frameOf(window) != viewableRect(window); },
        kWaitMs);
    return framed ? window : 0;
}

quint32 X11TestDesktop::openProgram(const QString& program, const QStringList& arguments,
                                    const QString& instance) {
    auto process = std::make_unique<QProcess>();
    process->start(program, arguments);
    processes_.push_back(std::move(process));
    quint32 window = 0;
    const bool found = QTest::qWaitFor(
        [&] {
            window = findFramedClient(instance);
            return window != 0;
        },
        kWaitMs);
    return found ? window : 0;
}

void X11TestDesktop::closeAll() {
    for (const auto& process : processes_) {
        process->kill();
        process->waitForFinished();
    }
    processes_.clear();
}

quint32 X11TestDesktop::findFramedClient(const QString& instance) const {
    static const xcb_atom_t clientList = atom(connection_, "_NET_CLIENT_LIST");
    const auto list = owned(xcb_get_property_reply(
        connection_, xcb_get_property(connection_, 0, root_, clientList, XCB_ATOM_WINDOW, 0, 1024),
        nullptr));
    if (!list) {
        return 0;
    }
    const auto* windows = static_cast<const quint32*>(xcb_get_property_value(list.get()));
    const int count = xcb_get_property_value_length(list.get()) / 4;
    for (int index = 0; index < count; ++index) {
        xcb_icccm_get_wm_class_reply_t wmClass{};
        if (xcb_icccm_get_wm_class_reply(connection_,
                                         xcb_icccm_get_wm_class(connection_, windows[index]),
                                         &wmClass, nullptr) == 0) {
            continue;
        }
        const bool match = instance == QString::fromLatin1(wmClass.instance_name);
        xcb_icccm_get_wm_class_reply_wipe(&wmClass);
        if (match && !viewableRect(windows[index]).isEmpty()) {
            return windows[index];
        }
    }
    return 0;
}

QRect X11TestDesktop::frameOf(quint32 client) const {
    quint32 window = client;
    for (int depth = 0; depth < 8; ++depth) {
        const auto tree =
            owned(xcb_query_tree_reply(connection_, xcb_query_tree(connection_, window), nullptr));
        if (!tree) {
            return {};
        }
        if (tree->parent == root_) {
            break;
        }
        window = tree->parent;
    }
    const auto geometry =
        owned(xcb_get_geometry_reply(connection_, xcb_get_geometry(connection_, window), nullptr));
    if (!geometry) {
        return {};
    }
    const int border = geometry->border_width;
    return {geometry->x, geometry->y, geometry->width + 2 * border, geometry->height + 2 * border};
}

QRect X11TestDesktop::viewableRect(quint32 window) const {
    const auto attributes = owned(xcb_get_window_attributes_reply(
        connection_, xcb_get_window_attributes(connection_, window), nullptr));
    const auto geometry =
        owned(xcb_get_geometry_reply(connection_, xcb_get_geometry(connection_, window), nullptr));
    const auto origin = owned(xcb_translate_coordinates_reply(
        connection_, xcb_translate_coordinates(connection_, window, root_, 0, 0), nullptr));
    if (!attributes || !geometry || !origin || attributes->map_state != XCB_MAP_STATE_VIEWABLE) {
        return {};
    }
    return {origin->dst_x, origin->dst_y, geometry->width, geometry->height};
}

bool X11TestDesktop::pointerAndKeyboardFree() const {
    const auto pointer = owned(xcb_grab_pointer_reply(
        connection_,
        xcb_grab_pointer(connection_, 0, root_, XCB_EVENT_MASK_BUTTON_PRESS, XCB_GRAB_MODE_ASYNC,
                         XCB_GRAB_MODE_ASYNC, XCB_WINDOW_NONE, XCB_CURSOR_NONE, XCB_CURRENT_TIME),
        nullptr));
    const auto keyboard =
        owned(xcb_grab_keyboard_reply(connection_,
                                      xcb_grab_keyboard(connection_, 0, root_, XCB_CURRENT_TIME,
                                                        XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
                                      nullptr));
    xcb_ungrab_pointer(connection_, XCB_CURRENT_TIME);
    xcb_ungrab_keyboard(connection_, XCB_CURRENT_TIME);
    xcb_flush(connection_);
    return pointer && pointer->status == XCB_GRAB_STATUS_SUCCESS && keyboard &&
           keyboard->status == XCB_GRAB_STATUS_SUCCESS;
}

quint32 X11TestDesktop::activeWindow() const {
    static const xcb_atom_t active = atom(connection_, "_NET_ACTIVE_WINDOW");
    const auto reply = owned(xcb_get_property_reply(
        connection_, xcb_get_property(connection_, 0, root_, active, XCB_ATOM_WINDOW, 0, 1),
        nullptr));
    if (!reply || xcb_get_property_value_length(reply.get()) < 4) {
        return 0;
    }
    return *static_cast<const quint32*>(xcb_get_property_value(reply.get()));
}

void X11TestDesktop::xdotool(const QStringList& arguments) {
    QProcess::execute(QStringLiteral("xdotool"), arguments);
}
