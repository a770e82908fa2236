// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "platform/x11/x11_window_list.h"

#include <xcb/xcb.h>
#include <xcb/xcb_ewmh.h>
#include <xcb/xcb_icccm.h>

#include <QCoreApplication>
#include <QFile>
#include <algorithm>
#include <cstdlib>

namespace {

template <typename Reply>
using ReplyPointer = std::unique_ptr<Reply, decltype(&std::free)>;

template <typename Reply>
ReplyPointer<Reply> owned(Reply* reply) {
    return ReplyPointer<Reply>(reply, &std::free);
}

QString processName(qint64 processId) {
    if (processId <= 0) {
        return {};
    }
    QFile comm(QStringLiteral("/proc/%1/comm").arg(processId));
    if (!comm.open(QIODevice::ReadOnly)) {
        return {};
    }
    return QString::fromLocal8Bit(comm.readLine().trimmed());
}

}  // namespace

// The requests of one window, all sent before any reply is read; those of
// its identity only while it is not known yet.
struct X11WindowList::WindowRequests {
    xcb_get_window_attributes_cookie_t attributes;
    xcb_get_geometry_cookie_t geometry;
    xcb_translate_coordinates_cookie_t origin;
    xcb_get_property_cookie_t extents;
    xcb_get_property_cookie_t state;
    bool asksIdentity;
    xcb_get_property_cookie_t pid;
    xcb_get_property_cookie_t wmClass;
    xcb_get_property_cookie_t type;
};

struct X11WindowList::Atoms {
    xcb_ewmh_connection_t ewmh{};

    ~Atoms() { xcb_ewmh_connection_wipe(&ewmh); }
    Atoms() = default;
    Atoms(const Atoms&) = delete;
    Atoms& operator=(const Atoms&) = delete;

    // The first type the window names that EWMH defines decides; a window
    // naming none is a normal one.
    X11WindowCandidate::Kind kind(const xcb_ewmh_get_atoms_reply_t& types) const {
        const xcb_atom_t others[] = {
            ewmh._NET_WM_WINDOW_TYPE_DESKTOP,       ewmh._NET_WM_WINDOW_TYPE_DOCK,
            ewmh._NET_WM_WINDOW_TYPE_TOOLBAR,       ewmh._NET_WM_WINDOW_TYPE_MENU,
            ewmh._NET_WM_WINDOW_TYPE_UTILITY,       ewmh._NET_WM_WINDOW_TYPE_SPLASH,
            ewmh._NET_WM_WINDOW_TYPE_DROPDOWN_MENU, ewmh._NET_WM_WINDOW_TYPE_POPUP_MENU,
            ewmh._NET_WM_WINDOW_TYPE_TOOLTIP,       ewmh._NET_WM_WINDOW_TYPE_NOTIFICATION,
            ewmh._NET_WM_WINDOW_TYPE_COMBO,         ewmh._NET_WM_WINDOW_TYPE_DND};
        for (quint32 index = 0; index < types.atoms_len; ++index) {
            const xcb_atom_t type = types.atoms[index];
            if (type == ewmh._NET_WM_WINDOW_TYPE_NORMAL) {
                return X11WindowCandidate::Kind::normal;
            }
            if (type == ewmh._NET_WM_WINDOW_TYPE_DIALOG) {
                return X11WindowCandidate::Kind::dialog;
            }
            if (std::find(std::begin(others), std::end(others), type) != std::end(others)) {
                return X11WindowCandidate::Kind::other;
            }
        }
        return X11WindowCandidate::Kind::normal;
    }
};

namespace x11_window_list {

bool isPickable(const X11WindowCandidate& window, const X11OwnWindows& own) {
    if (window.kind == X11WindowCandidate::Kind::other || !window.viewable || window.hidden ||
        window.frame.isEmpty()) {
        return false;
    }
    const bool ownProcess = window.processId != 0 && window.processId == own.processId;
    const bool ownConnection = (window.windowId & ~own.idMask) == own.idBase;
    return !ownProcess && !ownConnection;
}

std::vector<X11WindowCandidate> pickableFrontToBack(
    const std::vector<X11WindowCandidate>& bottomToTop, const X11OwnWindows& own) {
    std::vector<X11WindowCandidate> frontToBack;
    frontToBack.reserve(bottomToTop.size());
    std::copy_if(bottomToTop.rbegin(), bottomToTop.rend(), std::back_inserter(frontToBack),
                 [&own](const X11WindowCandidate& window) { return isPickable(window, own); });
    return frontToBack;
}

QRect frameAround(const QRect& clientInRoot, int borderWidth, int left, int right, int top,
                  int bottom) {
    return clientInRoot.adjusted(-borderWidth - left, -borderWidth - top, borderWidth + right,
                                 borderWidth + bottom);
}

}  // namespace x11_window_list

std::unique_ptr<X11WindowList> X11WindowList::create(xcb_connection_t* connection,
                                                     int screenNumber) {
    if (connection == nullptr) {
        return nullptr;
    }
    auto atoms = std::make_unique<Atoms>();
    xcb_intern_atom_cookie_t* cookies = xcb_ewmh_init_atoms(connection, &atoms->ewmh);
    if (cookies == nullptr || xcb_ewmh_init_atoms_replies(&atoms->ewmh, cookies, nullptr) == 0) {
        return nullptr;
    }
    return std::unique_ptr<X11WindowList>(
        new X11WindowList(connection, screenNumber, std::move(atoms)));
}

X11WindowList::X11WindowList(xcb_connection_t* connection, int screenNumber,
                             std::unique_ptr<Atoms> atoms)
    : connection_(connection), screenNumber_(screenNumber), atoms_(std::move(atoms)) {
    const xcb_setup_t* setup = xcb_get_setup(connection_);
    own_ = {QCoreApplication::applicationPid(), setup->resource_id_base, setup->resource_id_mask};
}

X11WindowList::~X11WindowList() = default;

std::vector<WindowInfo> X11WindowList::windows() {
    const std::vector<X11WindowCandidate> frontToBack = pickable();
    std::vector<WindowInfo> result;
    result.reserve(frontToBack.size());
    std::transform(frontToBack.begin(), frontToBack.end(), std::back_inserter(result), &infoOf);
    return result;
}

std::optional<WindowInfo> X11WindowList::windowAt(const QPoint& point) {
    const std::vector<X11WindowCandidate> frontToBack = pickable();
    const auto found = std::find_if(
        frontToBack.begin(), frontToBack.end(),
        [&point](const X11WindowCandidate& window) { return window.frame.contains(point); });
    return found != frontToBack.end() ? std::optional<WindowInfo>(infoOf(*found)) : std::nullopt;
}

std::vector<X11WindowCandidate> X11WindowList::pickable() {
    return x11_window_list::pickableFrontToBack(candidates(stackingBottomToTop()), own_);
}

WindowInfo X11WindowList::infoOf(const X11WindowCandidate& window) {
    QString owner = processName(window.processId);
    if (owner.isEmpty()) {
        owner = window.classInstance;
    }
    return {window.windowId, window.frame, owner, window_list::screenShowingMost(window.frame)};
}

std::vector<quint32> X11WindowList::stackingBottomToTop() {
    xcb_ewmh_get_windows_reply_t list{};
    xcb_ewmh_connection_t* ewmh = &atoms_->ewmh;
    if (xcb_ewmh_get_client_list_stacking_reply(
            ewmh, xcb_ewmh_get_client_list_stacking(ewmh, screenNumber_), &list, nullptr) == 0) {
        return {};
    }
    std::vector<quint32> windows(list.windows, list.windows + list.windows_len);
    xcb_ewmh_get_windows_reply_wipe(&list);
    return windows;
}

std::vector<X11WindowCandidate> X11WindowList::candidates(const std::vector<quint32>& windows) {
    xcb_ewmh_connection_t* ewmh = &atoms_->ewmh;
    const xcb_window_t root = ewmh->screens[screenNumber_]->root;
    forgetWindowsNotIn(windows);
    std::vector<WindowRequests> requests;
    requests.reserve(windows.size());
    for (const quint32 window : windows) {
        WindowRequests request{xcb_get_window_attributes(connection_, window),
                               xcb_get_geometry(connection_, window),
                               xcb_translate_coordinates(connection_, window, root, 0, 0),
                               xcb_ewmh_get_frame_extents(ewmh, window),
                               xcb_ewmh_get_wm_state(ewmh, window),
                               !identities_.contains(window),
                               {},
                               {},
                               {}};
        if (request.asksIdentity) {
            request.pid = xcb_ewmh_get_wm_pid(ewmh, window);
            request.wmClass = xcb_icccm_get_wm_class(connection_, window);
            request.type = xcb_ewmh_get_wm_window_type(ewmh, window);
        }
        requests.push_back(request);
    }
    std::vector<X11WindowCandidate> result;
    result.reserve(windows.size());
    for (std::size_t index = 0; index < windows.size(); ++index) {
        result.push_back(candidateFromReplies(windows[index], requests[index]));
    }
    return result;
}

void X11WindowList::forgetWindowsNotIn(const std::vector<quint32>& windows) {
    std::erase_if(identities_, [&windows](const auto& known) {
        return std::find(windows.begin(), windows.end(), known.first) == windows.end();
    });
}

X11WindowList::Identity X11WindowList::identityFromReplies(const WindowRequests& request) {
    xcb_ewmh_connection_t* ewmh = &atoms_->ewmh;
    Identity identity;
    quint32 pid = 0;
    if (xcb_ewmh_get_wm_pid_reply(ewmh, request.pid, &pid, nullptr) != 0) {
        identity.processId = pid;
    }
    xcb_icccm_get_wm_class_reply_t wmClass{};
    if (xcb_icccm_get_wm_class_reply(connection_, request.wmClass, &wmClass, nullptr) != 0) {
        identity.classInstance = QString::fromLocal8Bit(wmClass.instance_name);
        xcb_icccm_get_wm_class_reply_wipe(&wmClass);
    }
    xcb_ewmh_get_atoms_reply_t types{};
    if (xcb_ewmh_get_wm_window_type_reply(ewmh, request.type, &types, nullptr) != 0) {
        identity.kind = atoms_->kind(types);
        xcb_ewmh_get_atoms_reply_wipe(&types);
    }
    return identity;
}

X11WindowCandidate X11WindowList::candidateFromReplies(quint32 windowId,
                                                       const WindowRequests& request) {
    xcb_ewmh_connection_t* ewmh = &atoms_->ewmh;
    X11WindowCandidate window;
    window.windowId = windowId;
    // Every reply is read, so none is left waiting on the connection, even
    // for a window that has gone meanwhile.
    const auto attributes =
        owned(xcb_get_window_attributes_reply(connection_, request.attributes, nullptr));
    const auto geometry = owned(xcb_get_geometry_reply(connection_, request.geometry, nullptr));
    const auto origin =
        owned(xcb_translate_coordinates_reply(connection_, request.origin, nullptr));
    xcb_ewmh_get_extents_reply_t extents{};
    const bool hasExtents =
        xcb_ewmh_get_frame_extents_reply(ewmh, request.extents, &extents, nullptr) != 0;
    xcb_ewmh_get_atoms_reply_t states{};
    if (xcb_ewmh_get_wm_state_reply(ewmh, request.state, &states, nullptr) != 0) {
        window.hidden = std::find(states.atoms, states.atoms + states.atoms_len,
                                  ewmh->_NET_WM_STATE_HIDDEN) != states.atoms + states.atoms_len;
        xcb_ewmh_get_atoms_reply_wipe(&states);
    }
    if (request.asksIdentity) {
        const Identity identity = identityFromReplies(request);
        // A window that has gone answers nothing worth keeping.
        if (attributes) {
            identities_[windowId] = identity;
        }
    }
    if (const auto known = identities_.find(windowId); known != identities_.end()) {
        window.processId = known->second.processId;
        window.classInstance = known->second.classInstance;
        window.kind = known->second.kind;
    }
    window.viewable = attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
    if (geometry && origin) {
        window.frame = x11_window_list::frameAround(
            QRect(origin->dst_x, origin->dst_y, geometry->width, geometry->height),
            geometry->border_width, hasExtents ? int(extents.left) : 0,
            hasExtents ? int(extents.right) : 0, hasExtents ? int(extents.top) : 0,
            hasExtents ? int(extents.bottom) : 0);
    }
    return window;
}
