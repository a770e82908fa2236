// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QImage>
#include <QString>

// Extracts a still picture from a video file for the gallery's thumbnails.
// Implementations are thread-safe: the screenshot library calls them from
// several worker threads at once.
class VideoFrameReader {
public:
    virtual ~VideoFrameReader() = default;

    // The first video frame of the file at `path`, turned upright when the
    // file says it should be shown rotated, and scaled so that its longer side
    // is at most `maxSide` pixels (never enlarged). A null image when the file
    // cannot be read, holds no video or is damaged.
    virtual QImage firstFrame(const QString& path, int maxSide) const = 0;
};
