// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <memory>

#include "platform/keyboard_layout.h"

class ClickMonitor;
class HotkeyBackend;
class Notifier;
class PointerPicker;
class ScreenGrabber;
class ScreenRecorderBackend;
class SoundPlayer;
class VideoFrameReader;
class WindowList;
class WindowUnmapWatcher;

// The platform back ends the features talk to, chosen once at start-up for
// the windowing system the program runs on (X11 today; a Wayland portal back
// end can be added beside it). Created on first use, after the
// QGuiApplication; GUI thread only, except videoFrameReader() which is safe on
// workers.
class PlatformServices {
public:
    static PlatformServices& instance();
    ~PlatformServices();

    KeyboardLayout& keyboardLayout() { return *keyboardLayout_; }
    Notifier& notifier() { return *notifier_; }
    SoundPlayer& soundPlayer() { return *soundPlayer_; }
    ScreenGrabber& screenGrabber() { return *screenGrabber_; }
    std::shared_ptr<const VideoFrameReader> videoFrameReader() const { return videoFrameReader_; }
    // Nothing where the display offers no global hotkeys or click monitoring.
    HotkeyBackend* hotkeyBackend() { return hotkeyBackend_.get(); }
    ClickMonitor* clickMonitor() { return clickMonitor_.get(); }
    WindowUnmapWatcher* windowUnmapWatcher() { return windowUnmapWatcher_.get(); }
    // Nothing where the screen cannot be recorded (no X11 display).
    ScreenRecorderBackend* screenRecorder() { return screenRecorder_.get(); }
    WindowList* windowList() { return windowList_.get(); }
    // A new pointer picker for one picking session; nothing where the
    // display server lets no program take the pointer.
    std::unique_ptr<PointerPicker> createPointerPicker();
    // Whether a compositor draws the screen right now (it may start or stop
    // at any time). Where none can be asked, one is assumed.
    bool compositorRunning() const;

    // Whether the screen may be captured without asking the user: always on
    // X11, where no permission exists.
    bool screenCaptureGranted() const;
    // Whether global keys and pointer grabs work without asking: always on X11.
    bool accessibilityGranted() const;

private:
    PlatformServices();

    std::unique_ptr<KeyboardLayout> keyboardLayout_;
    std::unique_ptr<Notifier> notifier_;
    std::unique_ptr<SoundPlayer> soundPlayer_;
    std::unique_ptr<ScreenGrabber> screenGrabber_;
    std::shared_ptr<const VideoFrameReader> videoFrameReader_;
    std::unique_ptr<HotkeyBackend> hotkeyBackend_;
    std::unique_ptr<ClickMonitor> clickMonitor_;
    std::unique_ptr<WindowUnmapWatcher> windowUnmapWatcher_;
    std::unique_ptr<ScreenRecorderBackend> screenRecorder_;
    std::unique_ptr<WindowList> windowList_;
};
