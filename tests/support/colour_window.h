// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QColor>
#include <QRect>
#include <QWidget>
#include <array>

// A window of known colours on the test desktop, for checking recorded
// pixels: four quadrants (red, green / blue, yellow), placed exactly where
// asked (the window manager neither frames nor moves it) above everything.
class ColourWindow : public QWidget {
public:
    static constexpr std::array<QRgb, 4> kQuadrants = {0xffe01010, 0xff10c010, 0xff1010e0,
                                                       0xffe0e010};

    // Shows the window at `frame` and waits until the screen shows it;
    // false when it never does.
    bool showAt(const QRect& frame);

    // The colour of the quadrant holding `point`, relative to the window.
    QRgb colourAt(const QPoint& point) const;

protected:
    void paintEvent(QPaintEvent* event) override;
};

// Whether two colours differ by at most `tolerance` in each channel (video
// encoding shifts colours a little).
bool coloursClose(QRgb a, QRgb b, int tolerance = 28);

// Moves the pointer to the desktop's far corner, out of recorded areas.
void parkPointer();
