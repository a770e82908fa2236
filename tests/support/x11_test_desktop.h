// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QProcess>
#include <QRect>
#include <QString>
#include <memory>
#include <vector>

struct xcb_connection_t;

// The test desktop seen from outside the program under test: windows of
// another process, and what the X server says about any window, over an X
// connection of the tests' own.
class X11TestDesktop {
public:
    X11TestDesktop();
    ~X11TestDesktop();
    X11TestDesktop(const X11TestDesktop&) = delete;
    X11TestDesktop& operator=(const X11TestDesktop&) = delete;

    // Starts a test_window process and waits until the window manager has
    // framed it; its client window id, 0 on failure.
    quint32 openWindow(const QRect& geometry, const QString& colour, const QString& title);
    // Starts another X client (e.g. xlogo) and waits for a framed window
    // whose WM_CLASS instance is `instance`.
    quint32 openProgram(const QString& program, const QStringList& arguments,
                        const QString& instance);
    void closeAll();

    // The window manager's frame around a client (its child of the root),
    // in root coordinates, as the server has it.
    QRect frameOf(quint32 client) const;
    // A window's rectangle in root coordinates; empty when it is not viewable.
    QRect viewableRect(quint32 window) const;
    // Whether the pointer and keyboard are free: another client could grab
    // them right now (grabs and releases at once).
    bool pointerAndKeyboardFree() const;
    quint32 activeWindow() const;

    // Runs xdotool with `arguments` and waits for it.
    static void xdotool(const QStringList& arguments);

private:
    quint32 waitForClient(QProcess& process, const QString& instance);
    quint32 findFramedClient(const QString& instance) const;

    xcb_connection_t* connection_ = nullptr;
    quint32 root_ = 0;
    std::vector<std::unique_ptr<QProcess>> processes_;
};
