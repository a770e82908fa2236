#include "platform/platform_services.h"

#include <QGuiApplication>

#include "platform/x11/xkb_keyboard_layout.h"

namespace {

xcb_connection_t* x11Connection() {
    auto* x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x11 ? x11->connection() : nullptr;
}

std::unique_ptr<KeyboardLayout> makeKeyboardLayout() {
    if (std::unique_ptr<KeyboardLayout> layout = XkbKeyboardLayout::fromX11(x11Connection())) {
        return layout;
    }
    return std::make_unique<FixedKeyboardLayout>();
}

}  // namespace

PlatformServices& PlatformServices::instance() {
    static PlatformServices* services = new PlatformServices();
    return *services;
}

PlatformServices::PlatformServices() : keyboardLayout_(makeKeyboardLayout()) {}
