// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "platform/x11/x11_screen_grabber.h"

#include <QScreen>

QPixmap X11ScreenGrabber::grab(QScreen& screen) {
    return screen.grabWindow(0);
}

void X11ScreenGrabber::warmUp(QScreen& screen) {
    // A whole-screen grab, so that the shared memory of full-size grabs is
    // set up too.
    screen.grabWindow(0);
}
