// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QImage>
#include <QRect>

// Variance of the grey level over `area`: high on sharp edges, low once blurred.
inline double greyVariance(const QImage& image, const QRect& area) {
    double sum = 0;
    double sumSquares = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            const double v = qGray(image.pixel(x, y));
            sum += v;
            sumSquares += v * v;
        }
    }
    const double n = static_cast<double>(area.width()) * area.height();
    return sumSquares / n - (sum / n) * (sum / n);
}
