// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QImage>
#include <QRect>

// The two privacy filters of blur and pixelate regions. Both read only the
// given pixel region of the source (the blur also a margin around it, so its
// edges blend with their surroundings) and return an image of exactly the
// region's size in ARGB32_Premultiplied; a region that misses the source
// yields a null image. Safe on any thread.

// Standard deviation of the region blur, in source pixels.
inline constexpr qreal kRegionBlurSigma = 12.0;
// Side of one pixelation cell, in source pixels.
inline constexpr int kPixelateCellSize = 12;

// Gaussian blur (three box passes) of `region`; pixels beyond the source's
// edges repeat the edge pixel.
QImage blurredRegion(const QImage& source, const QRect& region, qreal sigma = kRegionBlurSigma);

// Square cells of `cellSize` pixels, each filled with the average colour of
// its pixels inside the region. The region's centre lies on a cell corner, so
// the cells sit symmetrically around it.
QImage pixelatedRegion(const QImage& source, const QRect& region, int cellSize = kPixelateCellSize);
