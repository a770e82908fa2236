// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "annotation/region_filters.h"

#include <QtGlobal>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

namespace {

constexpr int kChannels = 4;

// Radii of three box filters whose combination approximates a Gaussian of
// standard deviation `sigma` (the widths are odd, as close to the ideal as
// possible, and chosen so the summed variance matches sigma²).
std::array<int, 3> boxRadiiForGaussian(qreal sigma) {
    constexpr int kPasses = 3;
    const qreal idealWidth = std::sqrt(12.0 * sigma * sigma / kPasses + 1.0);
    int lower = static_cast<int>(std::floor(idealWidth));
    if (lower % 2 == 0) {
        --lower;
    }
    const int upper = lower + 2;
    const qreal idealLowerCount =
        (12.0 * sigma * sigma - kPasses * lower * lower - 4.0 * kPasses * lower - 3.0 * kPasses) /
        (-4.0 * lower - 4.0);
    const int lowerCount = static_cast<int>(std::lround(idealLowerCount));
    std::array<int, 3> radii{};
    for (int i = 0; i < kPasses; ++i) {
        radii[i] = ((i < lowerCount ? lower : upper) - 1) / 2;
    }
    return radii;
}

// Division by the box width as a multiply and shift, which the compiler can
// vectorise; exact enough for 8-bit channels (the result never exceeds 255).
struct BoxAverage {
    explicit BoxAverage(int window) : reciprocal((65536 + window / 2) / window) {}
    uint8_t operator()(uint32_t sum) const {
        return static_cast<uint8_t>((sum * reciprocal + 32768) >> 16);
    }
    uint32_t reciprocal;
};

// One horizontal box pass over every row; pixels past either end repeat the
// edge pixel (the row is copied into a padded line first, so the sliding sum
// needs no bounds checks).
void boxBlurRows(const std::vector<uint8_t>& src, std::vector<uint8_t>& dst, int width, int height,
                 int radius) {
    const BoxAverage average(2 * radius + 1);
    const size_t rowLength = static_cast<size_t>(width) * kChannels;
    std::vector<uint8_t> padded((static_cast<size_t>(width) + 2 * radius) * kChannels);
    for (int y = 0; y < height; ++y) {
        const uint8_t* in = src.data() + y * rowLength;
        uint8_t* out = dst.data() + y * rowLength;
        for (int i = 0; i < radius; ++i) {
            std::copy_n(in, kChannels, padded.data() + i * kChannels);
            std::copy_n(in + rowLength - kChannels, kChannels,
                        padded.data() + (radius + width + i) * kChannels);
        }
        std::copy_n(in, rowLength, padded.data() + static_cast<size_t>(radius) * kChannels);
        std::array<uint32_t, kChannels> sum{};
        for (int i = 0; i < 2 * radius + 1; ++i) {
            for (int c = 0; c < kChannels; ++c) {
                sum[c] += padded[i * kChannels + c];
            }
        }
        const uint8_t* leaving = padded.data();
        const uint8_t* entering = padded.data() + (2 * radius + 1) * kChannels;
        for (int x = 0; x < width; ++x) {
            for (int c = 0; c < kChannels; ++c) {
                out[x * kChannels + c] = average(sum[c]);
            }
            if (x + 1 < width) {
                for (int c = 0; c < kChannels; ++c) {
                    sum[c] += entering[c] - leaving[c];
                }
                entering += kChannels;
                leaving += kChannels;
            }
        }
    }
}

// One vertical box pass; keeps a running sum per column and walks the rows
// in memory order so it stays cache friendly on wide images.
void boxBlurColumns(const std::vector<uint8_t>& src, std::vector<uint8_t>& dst, int width,
                    int height, int radius) {
    const BoxAverage average(2 * radius + 1);
    const size_t rowLength = static_cast<size_t>(width) * kChannels;
    std::vector<uint32_t> sums(rowLength, 0);
    auto row = [&](int y) {
        return src.data() + static_cast<size_t>(std::clamp(y, 0, height - 1)) * rowLength;
    };
    for (int i = -radius; i <= radius; ++i) {
        const uint8_t* in = row(i);
        for (size_t k = 0; k < rowLength; ++k) {
            sums[k] += in[k];
        }
    }
    for (int y = 0; y < height; ++y) {
        uint8_t* out = dst.data() + static_cast<size_t>(y) * rowLength;
        for (size_t k = 0; k < rowLength; ++k) {
            out[k] = average(sums[k]);
        }
        const uint8_t* entering = row(y + radius + 1);
        const uint8_t* leaving = row(y - radius);
        for (size_t k = 0; k < rowLength; ++k) {
            sums[k] += static_cast<uint32_t>(entering[k]) - leaving[k];
        }
    }
}

QImage premultipliedCopy(const QImage& source, const QRect& area) {
    return source.copy(area).convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

}  // namespace

QImage blurredRegion(const QImage& source, const QRect& region, qreal sigma) {
    const QRect target = region.intersected(source.rect());
    if (target.isEmpty()) {
        return {};
    }
    const std::array<int, 3> radii = boxRadiiForGaussian(std::max<qreal>(sigma, 0.5));
    const int margin = radii[0] + radii[1] + radii[2];
    const QRect area = target.adjusted(-margin, -margin, margin, margin).intersected(source.rect());
    const QImage input = premultipliedCopy(source, area);
    if (input.isNull()) {
        return {};
    }
    const int width = input.width();
    const int height = input.height();
    const size_t rowLength = static_cast<size_t>(width) * kChannels;
    std::vector<uint8_t> pixels(rowLength * height);
    for (int y = 0; y < height; ++y) {
        std::copy_n(input.constScanLine(y), rowLength, pixels.data() + y * rowLength);
    }
    std::vector<uint8_t> scratch(pixels.size());
    for (const int radius : radii) {
        boxBlurRows(pixels, scratch, width, height, radius);
        boxBlurColumns(scratch, pixels, width, height, radius);
    }
    QImage result(target.size(), QImage::Format_ARGB32_Premultiplied);
    if (result.isNull()) {
        return {};
    }
    const QPoint offset = target.topLeft() - area.topLeft();
    const size_t resultRowLength = static_cast<size_t>(target.width()) * kChannels;
    for (int y = 0; y < target.height(); ++y) {
        const uint8_t* from = pixels.data() + (y + offset.y()) * rowLength +
                              static_cast<size_t>(offset.x()) * kChannels;
        std::copy_n(from, resultRowLength, result.scanLine(y));
    }
    return result;
}

namespace {

// Cell boundaries along one axis of length `length`: cells of `cellSize`
// with a boundary on `centre` (which may lie outside), clipped to
// [0, length). Returns the start of every cell plus `length` as the end.
std::vector<int> cellEdges(int length, int centre, int cellSize) {
    const int first = ((centre % cellSize) + cellSize) % cellSize;
    std::vector<int> edges{0};
    for (int edge = first == 0 ? cellSize : first; edge < length; edge += cellSize) {
        edges.push_back(edge);
    }
    edges.push_back(length);
    return edges;
}

}  // namespace

QImage pixelatedRegion(const QImage& source, const QRect& region, int cellSize) {
    const QRect target = region.intersected(source.rect());
    if (target.isEmpty()) {
        return {};
    }
    QImage image = premultipliedCopy(source, target);
    if (image.isNull()) {
        return {};
    }
    const int size = std::max(cellSize, 1);
    // The grid follows the whole region's centre, even where the region
    // reaches past the picture and only part of it is filtered.
    const QPoint centre = region.topLeft() + QPoint(region.width() / 2, region.height() / 2);
    const std::vector<int> columns = cellEdges(image.width(), centre.x() - target.left(), size);
    const std::vector<int> rows = cellEdges(image.height(), centre.y() - target.top(), size);
    const size_t cellsAcross = columns.size() - 1;
    std::vector<uint64_t> sums(cellsAcross * kChannels);
    for (size_t r = 0; r + 1 < rows.size(); ++r) {
        std::fill(sums.begin(), sums.end(), 0);
        for (int y = rows[r]; y < rows[r + 1]; ++y) {
            const uint8_t* line = image.constScanLine(y);
            for (size_t c = 0; c < cellsAcross; ++c) {
                for (int x = columns[c]; x < columns[c + 1]; ++x) {
                    for (int k = 0; k < kChannels; ++k) {
                        sums[c * kChannels + k] += line[x * kChannels + k];
                    }
                }
            }
        }
        for (size_t c = 0; c < cellsAcross; ++c) {
            const uint64_t count =
                static_cast<uint64_t>(columns[c + 1] - columns[c]) * (rows[r + 1] - rows[r]);
            std::array<uint8_t, kChannels> average{};
            for (int k = 0; k < kChannels; ++k) {
                average[k] = static_cast<uint8_t>((sums[c * kChannels + k] + count / 2) / count);
            }
            for (int y = rows[r]; y < rows[r + 1]; ++y) {
                uint8_t* line = image.scanLine(y);
                for (int x = columns[c]; x < columns[c + 1]; ++x) {
                    std::copy(average.begin(), average.end(), line + x * kChannels);
                }
            }
        }
    }
    return image;
}
