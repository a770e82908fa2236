// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QImage>
#include <QSize>
#include <vector>

// Something like a desktop screenshot: a gradient, flat panels with lines of
// "text", hard edges and one busy photo-like patch, different for every seed.
// Panel sizes and counts follow the picture's size (full HD by default).
QImage screenshotLikeImage(int seed, QSize size = {1920, 1080});

// The middle value (the upper one of an even count); -1 for none.
double median(std::vector<double> values);
