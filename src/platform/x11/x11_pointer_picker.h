// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <xcb/xcb_keysyms.h>

#include <QAbstractNativeEventFilter>
#include <QTimer>
#include <memory>

#include "platform/pointer_picker.h"

// A pick as an active grab of the pointer and the keyboard on the root
// window, with a crosshair cursor: the X server then sends every move, click
// and key to us, over any window, with or without a compositor. Events come
// through Qt's own connection, so `connection` must be Qt's; the native
// event filter is installed only while a pick runs.
class X11PointerPicker : public PointerPicker, private QAbstractNativeEventFilter {
    Q_OBJECT

public:
    // Nothing without an X connection.
    static std::unique_ptr<X11PointerPicker> create(xcb_connection_t* connection,
                                                    quint32 rootWindow);
    ~X11PointerPicker() override;

    void start() override;
    void stop() override;
    bool isActive() const override { return active_; }

private:
    X11PointerPicker(xcb_connection_t* connection, quint32 rootWindow);

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;
    bool tryGrab();
    void retryGrab();
    void reportPointer();
    bool isEscape(quint8 keycode) const;

    xcb_connection_t* connection_;  // Qt's, not owned
    quint32 rootWindow_;
    quint32 cursor_ = 0;
    xcb_key_symbols_t* keySymbols_ = nullptr;
    bool active_ = false;
    bool pointerGrabbed_ = false;
    bool keyboardGrabbed_ = false;
    int grabAttempts_ = 0;
    QTimer retry_;
};
