#pragma once

#include <memory>

#include "platform/keyboard_layout.h"

// The platform back ends the features talk to, chosen once at start-up for
// the windowing system the program runs on (X11 today; a Wayland portal back
// end can be added beside it).
class PlatformServices {
public:
    static PlatformServices& instance();

    KeyboardLayout& keyboardLayout() { return *keyboardLayout_; }

private:
    PlatformServices();

    std::unique_ptr<KeyboardLayout> keyboardLayout_;
};
