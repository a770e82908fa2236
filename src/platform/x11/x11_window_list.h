// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QPoint>
#include <QRect>
#include <QString>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "platform/window_list.h"

struct xcb_connection_t;

// What the X server and the window manager say about one client window,
// before the list decides whether the user can pick it.
struct X11WindowCandidate {
    enum class Kind { normal, dialog, other };

    quint32 windowId = 0;
    QRect frame;            // root pixels, the window manager's decorations included
    qint64 processId = 0;   // _NET_WM_PID, 0 when the window gives none
    QString classInstance;  // the first half of WM_CLASS
    Kind kind = Kind::normal;
    bool viewable = false;  // mapped, and every ancestor too
    bool hidden = false;    // minimised (_NET_WM_STATE_HIDDEN)
};

// How to tell the windows of this program: its process id, and the id range
// of the X connection that made them.
struct X11OwnWindows {
    qint64 processId = 0;
    quint32 idBase = 0;
    quint32 idMask = 0;
};

namespace x11_window_list {

// Only normal windows and dialogs that are on screen, and never ours.
bool isPickable(const X11WindowCandidate& window, const X11OwnWindows& own);

// The pickable windows of a _NET_CLIENT_LIST_STACKING (bottom to top), front
// to back.
std::vector<X11WindowCandidate> pickableFrontToBack(
    const std::vector<X11WindowCandidate>& bottomToTop, const X11OwnWindows& own);

// The client's rectangle in the root grown by its border and the frame
// extents (left, right, top, bottom) the window manager draws around it.
QRect frameAround(const QRect& clientInRoot, int borderWidth, int left, int right, int top,
                  int bottom);

}  // namespace x11_window_list

// The window list of an EWMH window manager: _NET_CLIENT_LIST_STACKING read
// front to back, each client's geometry translated to the root and grown by
// _NET_FRAME_EXTENTS, its owner from /proc/<_NET_WM_PID>/comm or WM_CLASS.
// Every request for all windows goes out before the first reply is read, so
// a look-up costs one round trip to the server. What a window says of itself
// once (its process, class and type) is kept while it stays listed, so a
// pointer move asks only where the windows are.
class X11WindowList : public WindowList {
public:
    // Nothing when the connection is missing. `connection` is Qt's own, so
    // that windows made by this program are recognised by their id range.
    static std::unique_ptr<X11WindowList> create(xcb_connection_t* connection, int screenNumber);
    ~X11WindowList() override;

    std::vector<WindowInfo> windows() override;
    // Owner and display are worked out for the window found alone.
    std::optional<WindowInfo> windowAt(const QPoint& point) override;

private:
    struct Atoms;
    struct WindowRequests;
    // What does not change while a window lives.
    struct Identity {
        qint64 processId = 0;
        QString classInstance;
        X11WindowCandidate::Kind kind = X11WindowCandidate::Kind::normal;
    };

    X11WindowList(xcb_connection_t* connection, int screenNumber, std::unique_ptr<Atoms> atoms);
    std::vector<quint32> stackingBottomToTop();
    std::vector<X11WindowCandidate> candidates(const std::vector<quint32>& windows);
    std::vector<X11WindowCandidate> pickable();
    void forgetWindowsNotIn(const std::vector<quint32>& windows);
    Identity identityFromReplies(const WindowRequests& request);
    X11WindowCandidate candidateFromReplies(quint32 windowId, const WindowRequests& request);
    static WindowInfo infoOf(const X11WindowCandidate& window);

    xcb_connection_t* connection_;
    int screenNumber_;
    std::unique_ptr<Atoms> atoms_;
    X11OwnWindows own_;
    std::unordered_map<quint32, Identity> identities_;
};
