// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include "platform/screen_grabber.h"

// Reads the root window's pixels under the screen through Qt's X11 platform
// (MIT-SHM where the server offers it).
class X11ScreenGrabber : public ScreenGrabber {
public:
    QPixmap grab(QScreen& screen) override;
    void warmUp(QScreen& screen) override;
};
