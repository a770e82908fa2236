// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QPixmap>

class QScreen;

// Freezes a screen into a picture at its full pixel resolution, without the
// pointer. One implementation per windowing system.
class ScreenGrabber {
public:
    virtual ~ScreenGrabber() = default;

    // The screen as it is now; a null pixmap when it cannot be read.
    virtual QPixmap grab(QScreen& screen) = 0;
    // Pays the set-up of the first grab (shared memory on X11) ahead of the
    // first capture.
    virtual void warmUp(QScreen& screen) = 0;
};
