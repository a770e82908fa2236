// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QObject>
#include <QPoint>

// Takes the pointer of the whole desktop for a pick: while active, the
// pointer shows a crosshair, and every move, left click and Escape comes
// here instead of reaching any window, whether or not a compositor runs.
// stop() gives everything back, so an ended pick costs nothing afterwards.
// GUI thread only.
class PointerPicker : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    // Starts a pick (nothing when one is running). moved() follows at once
    // with the pointer's position; failed() when the pointer stays held by
    // another program.
    virtual void start() = 0;
    // Ends the pick; no signal follows. Safe to call at any time.
    virtual void stop() = 0;
    virtual bool isActive() const = 0;

Q_SIGNALS:
    // Positions in desktop pixels (the X root window's), origin top left.
    void moved(const QPoint& position);
    void clicked(const QPoint& position);
    void escapePressed();
    // The pick could not take the pointer and has ended.
    void failed();
};
