// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "platform/x11/x11_hotkey_backend.h"

#include <X11/keysym.h>
#include <xcb/xcb_keysyms.h>

#include <QCoreApplication>
#include <QGuiApplication>
#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <optional>

#include "platform/key_codes.h"

namespace {

struct FreeDeleter {
    void operator()(void* pointer) const { std::free(pointer); }
};
template <typename T>
using XcbReply = std::unique_ptr<T, FreeDeleter>;

struct KeySymbolsDeleter {
    void operator()(xcb_key_symbols_t* symbols) const { xcb_key_symbols_free(symbols); }
};

// Shift, Lock, Control, Mod1…Mod5; key events also carry pointer-button bits.
constexpr quint16 kAllModifierBits = 0xff;
// Shift, Lock and Control are fixed by the protocol; the others float.
constexpr int kFirstFloatingModifier = 3;
constexpr int kModifierCount = 8;

bool listContains(const xcb_keycode_t* keycodes, xcb_keycode_t keycode) {
    for (; *keycodes != XCB_NO_SYMBOL; ++keycodes) {
        if (*keycodes == keycode) {
            return true;
        }
    }
    return false;
}

// The modifier bit (Mod1…Mod5) that one of `keysyms` is mapped to, if any.
std::optional<quint16> modifierBitOf(const xcb_get_modifier_mapping_reply_t& mapping,
                                     xcb_key_symbols_t* symbols,
                                     std::initializer_list<xcb_keysym_t> keysyms) {
    const xcb_keycode_t* mapped = xcb_get_modifier_mapping_keycodes(&mapping);
    const int perModifier = mapping.keycodes_per_modifier;
    for (const xcb_keysym_t keysym : keysyms) {
        const XcbReply<xcb_keycode_t> keycodes(xcb_key_symbols_get_keycode(symbols, keysym));
        if (!keycodes) {
            continue;
        }
        for (int modifier = kFirstFloatingModifier; modifier < kModifierCount; ++modifier) {
            for (int slot = 0; slot < perModifier; ++slot) {
                const xcb_keycode_t keycode = mapped[modifier * perModifier + slot];
                if (keycode != 0 && listContains(keycodes.get(), keycode)) {
                    return static_cast<quint16>(1u << modifier);
                }
            }
        }
    }
    return std::nullopt;
}

}  // namespace

X11HotkeyBackend::X11HotkeyBackend(xcb_connection_t* connection, xcb_window_t root)
    : connection_(connection), root_(root) {}

std::unique_ptr<X11HotkeyBackend> X11HotkeyBackend::create(xcb_connection_t* connection,
                                                           xcb_window_t root) {
    // Presses are read from the application's event stream, so without a
    // running application there is nothing to deliver them.
    if (connection == nullptr || xcb_connection_has_error(connection) != 0 ||
        root == XCB_WINDOW_NONE || QCoreApplication::instance() == nullptr) {
        return nullptr;
    }
    std::unique_ptr<X11HotkeyBackend> backend(new X11HotkeyBackend(connection, root));
    backend->readModifierMasks();
    QCoreApplication::instance()->installNativeEventFilter(backend.get());
    return backend;
}

std::unique_ptr<X11HotkeyBackend> X11HotkeyBackend::createForApplication() {
    // Not qGuiApp: the running application may be a plain QCoreApplication.
    const auto* application = qobject_cast<QGuiApplication*>(QCoreApplication::instance());
    const auto* x11 =
        application ? application->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    xcb_connection_t* connection = x11 ? x11->connection() : nullptr;
    if (connection == nullptr) {
        return nullptr;
    }
    // Qt opened the connection from $DISPLAY; its screen number picks the root.
    char* host = nullptr;
    int displayNumber = 0;
    int screenNumber = 0;
    if (xcb_parse_display(nullptr, &host, &displayNumber, &screenNumber) == 0) {
        screenNumber = 0;
    }
    std::free(host);
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    xcb_window_t root = screens.rem > 0 ? screens.data->root : xcb_window_t{XCB_WINDOW_NONE};
    for (int index = 0; screens.rem > 0; xcb_screen_next(&screens), ++index) {
        if (index == screenNumber) {
            root = screens.data->root;
        }
    }
    return create(connection, root);
}

X11HotkeyBackend::~X11HotkeyBackend() {
    ungrabAll();
    if (QCoreApplication::instance() != nullptr) {
        QCoreApplication::instance()->removeNativeEventFilter(this);
    }
}

int X11HotkeyBackend::grab(quint32 id, quint32 keyCode, quint32 modifiers) {
    const std::optional<quint32> xKeycode = KeyCodes::xKeycodeFromKeyCode(keyCode);
    const xcb_setup_t* setup = xcb_get_setup(connection_);
    if (!xKeycode || *xKeycode < setup->min_keycode || *xKeycode > setup->max_keycode) {
        return kBadValue;
    }
    // A full registration starts from nothing: the moment to pick up a
    // modifier map that changed since the last one.
    if (grabs_.empty()) {
        readModifierMasks();
    }
    Grab grab{id, static_cast<xcb_keycode_t>(*xKeycode), xModifiersFor(modifiers), {}};
    // X lets a client grab the same combination twice, the second silently
    // replacing the first; two actions on one combination must not both win.
    if (isHeld(grab.keycode, grab.modifiers)) {
        return kBadAccess;
    }
    const int status = grabVariants(grab);
    if (status == 0) {
        grabs_.push_back(std::move(grab));
    }
    return status;
}

void X11HotkeyBackend::ungrab(quint32 id) {
    const auto held = std::find_if(grabs_.begin(), grabs_.end(),
                                   [id](const Grab& grab) { return grab.id == id; });
    if (held == grabs_.end()) {
        return;
    }
    ungrabVariants(*held);
    grabs_.erase(held);
    xcb_flush(connection_);
}

void X11HotkeyBackend::ungrabAll() {
    for (const Grab& grab : grabs_) {
        ungrabVariants(grab);
    }
    grabs_.clear();
    lastRelease_ = {};
    xcb_flush(connection_);
}

void X11HotkeyBackend::readModifierMasks() {
    const std::unique_ptr<xcb_key_symbols_t, KeySymbolsDeleter> symbols(
        xcb_key_symbols_alloc(connection_));
    const XcbReply<xcb_get_modifier_mapping_reply_t> mapping(xcb_get_modifier_mapping_reply(
        connection_, xcb_get_modifier_mapping(connection_), nullptr));
    if (!symbols || !mapping) {
        return;  // keep the conventional Mod2 / Mod4 / Mod1
    }
    const ModifierMasks conventional;
    masks_.numLock =
        modifierBitOf(*mapping, symbols.get(), {XK_Num_Lock}).value_or(conventional.numLock);
    masks_.super = modifierBitOf(*mapping, symbols.get(), {XK_Super_L, XK_Super_R})
                       .value_or(conventional.super);
    masks_.alt = modifierBitOf(*mapping, symbols.get(), {XK_Alt_L, XK_Alt_R, XK_Meta_L})
                     .value_or(conventional.alt);
}

// Bits outside the four known ones are not grabbed; the stored mask keeps them.
quint16 X11HotkeyBackend::xModifiersFor(quint32 modifiers) const {
    quint16 x = 0;
    if ((modifiers & KeyModifiers::kSuper) != 0) {
        x |= masks_.super;
    }
    if ((modifiers & KeyModifiers::kShift) != 0) {
        x |= XCB_MOD_MASK_SHIFT;
    }
    if ((modifiers & KeyModifiers::kAlt) != 0) {
        x |= masks_.alt;
    }
    if ((modifiers & KeyModifiers::kControl) != 0) {
        x |= XCB_MOD_MASK_CONTROL;
    }
    return x;
}

std::array<quint16, 4> X11HotkeyBackend::lockVariants() const {
    const quint16 lock = XCB_MOD_MASK_LOCK;
    return {0, lock, masks_.numLock, static_cast<quint16>(masks_.numLock | lock)};
}

bool X11HotkeyBackend::isHeld(xcb_keycode_t keycode, quint16 modifiers) const {
    for (const Grab& grab : grabs_) {
        if (grab.keycode == keycode && grab.modifiers == modifiers) {
            return true;
        }
    }
    return false;
}

// All four variants or none: a combination that works only with NumLock off
// would be worse than one that visibly fails.
int X11HotkeyBackend::grabVariants(Grab& grab) {
    const std::array<quint16, 4> variants = lockVariants();
    std::array<xcb_void_cookie_t, 4> cookies{};
    for (size_t index = 0; index < variants.size(); ++index) {
        // owner_events off: presses always arrive at the root, even while one
        // of the program's own windows has the focus.
        cookies[index] =
            xcb_grab_key_checked(connection_, 0, root_, grab.modifiers | variants[index],
                                 grab.keycode, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    }
    int status = 0;
    for (size_t index = 0; index < variants.size(); ++index) {
        const XcbReply<xcb_generic_error_t> error(xcb_request_check(connection_, cookies[index]));
        if (error) {
            status = status != 0 ? status : error->error_code;
        } else {
            grab.heldVariants.push_back(variants[index]);
        }
    }
    if (status != 0) {
        ungrabVariants(grab);
        grab.heldVariants.clear();
        xcb_flush(connection_);
    }
    return status;
}

void X11HotkeyBackend::ungrabVariants(const Grab& grab) {
    for (const quint16 variant : grab.heldVariants) {
        xcb_ungrab_key(connection_, grab.keycode, root_, grab.modifiers | variant);
    }
}

bool X11HotkeyBackend::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
    if (eventType != "xcb_generic_event_t") {
        return false;
    }
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    switch (event->response_type & 0x7f) {
        case XCB_KEY_PRESS:
            return handlePress(*reinterpret_cast<const xcb_key_press_event_t*>(event));
        case XCB_KEY_RELEASE:
            return handleRelease(*reinterpret_cast<const xcb_key_release_event_t*>(event));
        default:
            return false;
    }
}

bool X11HotkeyBackend::handlePress(const xcb_key_press_event_t& press) {
    if (press.event != root_) {
        return false;
    }
    const quint16 locks = XCB_MOD_MASK_LOCK | masks_.numLock;
    const quint16 modifiers = press.state & kAllModifierBits & ~locks;
    for (Grab& grab : grabs_) {
        if (grab.keycode != press.detail || grab.modifiers != modifiers) {
            continue;
        }
        const bool repeatPair =
            lastRelease_.keycode == press.detail && lastRelease_.time == press.time;
        const bool repeat = grab.down || repeatPair;
        grab.down = true;
        if (!repeat) {
            const quint32 id = grab.id;  // a receiver may ungrab everything
            Q_EMIT pressed(id);
        }
        return true;
    }
    return false;
}

// The grab that a press activates lasts until its key is released, so the
// release arrives here whatever the modifiers are by then (they may already
// be up): the key alone ends the combination.
bool X11HotkeyBackend::handleRelease(const xcb_key_release_event_t& release) {
    if (release.event != root_) {
        return false;
    }
    bool ours = false;
    for (Grab& grab : grabs_) {
        if (grab.keycode == release.detail) {
            grab.down = false;
            ours = true;
        }
    }
    if (ours) {
        lastRelease_ = {release.detail, release.time};
    }
    return ours;
}
