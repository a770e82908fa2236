// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QObject>
#include <QPoint>

// Reports left and right mouse presses anywhere on screen, in any program's
// window, while it is active (the shell closes the popover on clicks outside
// every window of ours).
class ClickMonitor : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    virtual void start() = 0;
    virtual void stop() = 0;

Q_SIGNALS:
    // Emitted on the GUI thread with the pointer position in screen pixels;
    // `onOwnWindow` when the press landed on one of this program's windows
    // (a dialog, a menu, the tray icon…), whatever their stacking.
    void pressed(const QPoint& globalPosition, bool onOwnWindow);
};
