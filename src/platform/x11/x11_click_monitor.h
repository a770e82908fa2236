// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QAbstractNativeEventFilter>
#include <memory>

#include "platform/click_monitor.h"

struct xcb_connection_t;

// Follows button presses everywhere through XInput 2 raw events selected on
// the root window: X11 delivers other programs' clicks to nobody else, but raw
// events go to every client that asks for them, whatever window is hit.
class X11ClickMonitor : public ClickMonitor, public QAbstractNativeEventFilter {
    Q_OBJECT

public:
    // Nothing when the server lacks XInput 2.
    static std::unique_ptr<X11ClickMonitor> create(xcb_connection_t* connection,
                                                   quint32 rootWindow);
    ~X11ClickMonitor() override;

    void start() override;
    void stop() override;

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

private:
    X11ClickMonitor(xcb_connection_t* connection, quint32 rootWindow, quint8 xinputOpcode);
    void selectRawPresses(bool enabled);
    bool pointerOnOwnWindow() const;
    bool isOwnWindow(quint32 window) const;

    xcb_connection_t* connection_;
    quint32 rootWindow_;
    quint8 xinputOpcode_;
    bool running_ = false;
};
