// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "platform/platform_services.h"

#include <xcb/xcb.h>

#include <QGuiApplication>

#include "platform/canberra/canberra_sound_player.h"
#include "platform/dbus/freedesktop_notifier.h"
#include "platform/ffmpeg/ffmpeg_screen_recorder.h"
#include "platform/ffmpeg/ffmpeg_video_frame_reader.h"
#include "platform/pointer_picker.h"
#include "platform/window_list.h"
#include "platform/window_unmap_watcher.h"
#include "platform/x11/x11_click_monitor.h"
#include "platform/x11/x11_compositor.h"
#include "platform/x11/x11_hotkey_backend.h"
#include "platform/x11/x11_pointer_picker.h"
#include "platform/x11/x11_screen_grabber.h"
#include "platform/x11/x11_window_list.h"
#include "platform/x11/x11_window_unmap_watcher.h"
#include "platform/x11/xkb_keyboard_layout.h"

namespace {

xcb_connection_t* x11Connection() {
    auto* x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x11 ? x11->connection() : nullptr;
}

xcb_window_t x11RootWindow(xcb_connection_t* connection) {
    return connection ? xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root : 0;
}

std::unique_ptr<KeyboardLayout> makeKeyboardLayout(xcb_connection_t* connection) {
    if (std::unique_ptr<KeyboardLayout> layout = XkbKeyboardLayout::fromX11(connection)) {
        return layout;
    }
    return std::make_unique<FixedKeyboardLayout>();
}

}  // namespace

PlatformServices& PlatformServices::instance() {
    static auto* services = new PlatformServices();
    return *services;
}

PlatformServices::PlatformServices()
    : notifier_(std::make_unique<FreedesktopNotifier>()),
      soundPlayer_(std::make_unique<CanberraSoundPlayer>()),
      screenGrabber_(std::make_unique<X11ScreenGrabber>()),
      videoFrameReader_(std::make_shared<FfmpegVideoFrameReader>()) {
    xcb_connection_t* connection = x11Connection();
    keyboardLayout_ = makeKeyboardLayout(connection);
    if (connection != nullptr) {
        hotkeyBackend_ = X11HotkeyBackend::createForApplication();
        clickMonitor_ = X11ClickMonitor::create(connection, x11RootWindow(connection));
        windowUnmapWatcher_ =
            std::make_unique<X11WindowUnmapWatcher>(connection, x11RootWindow(connection));
        screenRecorder_ = std::make_unique<FfmpegScreenRecorder>(qgetenv("DISPLAY"));
        // The root window of x11RootWindow() is the first screen's.
        windowList_ = X11WindowList::create(connection, 0);
    }
}

std::unique_ptr<PointerPicker> PlatformServices::createPointerPicker() {
    xcb_connection_t* connection = x11Connection();
    return X11PointerPicker::create(connection, x11RootWindow(connection));
}

bool PlatformServices::screenCaptureGranted() const {
    return x11Connection() != nullptr;
}

bool PlatformServices::accessibilityGranted() const {
    return x11Connection() != nullptr;
}

bool PlatformServices::compositorRunning() const {
    xcb_connection_t* connection = x11Connection();
    // Only X11 shows translucent pixels without compositing; other display
    // servers always compose.
    return connection == nullptr || x11CompositorRunning(connection);
}

PlatformServices::~PlatformServices() = default;
