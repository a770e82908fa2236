// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QList>
#include <QPoint>
#include <QRect>
#include <QString>
#include <optional>
#include <vector>

// One top-level window of another program, as the user sees it on screen.
struct WindowInfo {
    // The display server's id of the program's own window (on X11 the client
    // window, not the window manager's frame around it).
    quint32 windowId = 0;
    // Where the window sits, decorations included, in pixels of the whole
    // desktop (the X root window), the origin at its top left.
    QRect frame;
    // The program showing it: its process name, else its class name.
    QString ownerName;
    // The display that shows most of the window (QScreen::name()).
    QString displayName;
};

// The windows the user can point at: other programs' normal windows and
// dialogs that are on screen, front to back. Docks, the desktop, minimised
// windows and this program's own windows are never listed. GUI thread only.
class WindowList {
public:
    virtual ~WindowList() = default;

    // Asks the display server afresh every time: windows move and restack
    // while the user points.
    virtual std::vector<WindowInfo> windows() = 0;

    // The front-most listed window whose frame contains `point` (desktop
    // pixels), nothing over the bare desktop.
    virtual std::optional<WindowInfo> windowAt(const QPoint& point);
};

namespace window_list {

// The first window of `frontToBack` whose frame contains `point`.
std::optional<WindowInfo> frontWindowAt(const std::vector<WindowInfo>& frontToBack,
                                        const QPoint& point);

// The index in `displays` of the display whose bounds share the largest area
// with `frame` (the first of equals); `mainDisplay` when none touches it.
int displayShowingMost(const QRect& frame, const QList<QRect>& displays, int mainDisplay);

// displayShowingMost() over the program's screens in desktop pixels, the
// screen under the pointer counting as the main one; its QScreen::name().
QString screenShowingMost(const QRect& frame);

}  // namespace window_list
