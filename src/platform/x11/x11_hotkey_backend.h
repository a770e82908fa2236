// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <xcb/xcb.h>

#include <QAbstractNativeEventFilter>
#include <array>
#include <memory>
#include <vector>

#include "platform/hotkey_backend.h"

// Global hotkeys as passive key grabs on the root window. Each combination is
// grabbed four times, with and without CapsLock and NumLock, so that the
// locks do not disable it. Presses reach the program through Qt's own event
// stream (a native event filter), so `connection` must be the one Qt uses.
//
// A held key repeats, but a held combination is reported once: a press of a
// combination that is already down is ignored until its key is released.
// The server reports a repeat either as another press alone (detectable
// auto-repeat) or as a release and a press with the same time stamp; both
// are recognised.
class X11HotkeyBackend : public HotkeyBackend, private QAbstractNativeEventFilter {
    Q_OBJECT

public:
    // X error codes used as statuses.
    static constexpr int kBadValue = 2;    // the key or mask cannot be grabbed at all
    static constexpr int kBadAccess = 10;  // another client (or another id) holds it

    // Nothing without a usable X connection. Installs the event filter on the
    // running QCoreApplication.
    static std::unique_ptr<X11HotkeyBackend> create(xcb_connection_t* connection,
                                                    xcb_window_t root);
    // The same for the connection and default screen of the running
    // QGuiApplication; nothing when it does not run on X11.
    static std::unique_ptr<X11HotkeyBackend> createForApplication();
    ~X11HotkeyBackend() override;

    int grab(quint32 id, quint32 keyCode, quint32 modifiers) override;
    void ungrab(quint32 id) override;
    void ungrabAll() override;

private:
    // Where the logical modifiers sit among X's eight modifier bits on this server.
    struct ModifierMasks {
        quint16 numLock = XCB_MOD_MASK_2;
        quint16 super = XCB_MOD_MASK_4;
        quint16 alt = XCB_MOD_MASK_1;
    };

    struct Grab {
        quint32 id = 0;
        xcb_keycode_t keycode = 0;
        quint16 modifiers = 0;  // X modifier bits, without the lock variants
        std::vector<quint16> heldVariants;
        bool down = false;  // pressed, and its key not released since
    };

    // The last release of a grabbed key, to tell a repeat's release-and-press
    // pair from a real release.
    struct Release {
        xcb_keycode_t keycode = 0;
        xcb_timestamp_t time = 0;
    };

    X11HotkeyBackend(xcb_connection_t* connection, xcb_window_t root);

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;
    bool handlePress(const xcb_key_press_event_t& press);
    bool handleRelease(const xcb_key_release_event_t& release);

    void readModifierMasks();
    quint16 xModifiersFor(quint32 modifiers) const;
    std::array<quint16, 4> lockVariants() const;
    bool isHeld(xcb_keycode_t keycode, quint16 modifiers) const;
    int grabVariants(Grab& grab);
    void ungrabVariants(const Grab& grab);

    xcb_connection_t* connection_;  // Qt's connection, not owned
    xcb_window_t root_;
    ModifierMasks masks_;
    std::vector<Grab> grabs_;
    Release lastRelease_;
};
