// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>
#include <QString>

// Reading a capture file's picture, for showing, copying or saving it again.

// How reading a capture file's picture came out.
enum class CaptureImageStatus {
    loaded,
    // Missing, unreadable, or not a picture Qt can decode.
    unreadable,
    // Its pixels would take more memory than the program allows one image
    // (see image_allocation_limit.h).
    tooLarge,
};

// Whether the caller also needs the picture as PNG bytes.
enum class PngBytes { notWanted, wanted };

struct LoadedCaptureImage {
    CaptureImageStatus status = CaptureImageStatus::unreadable;
    // Upright by the file's orientation tag; null unless loaded.
    QImage image;
    // When wanted and loaded: the file's own bytes when it is a PNG needing
    // no turn, else a PNG encoding of `image`; empty when that fails.
    QByteArray pngData;
    // The picture's size as the file states it; invalid when unknown.
    QSize statedSize;

    bool loaded() const { return status == CaptureImageStatus::loaded; }
};

// Reads the picture at `path`, the format decided by the content (a
// rewritten file keeps its old extension), within the program's image
// allocation limit. Never throws or aborts on bad input: an unreadable or
// too large picture comes back with a null image and its status. Any thread;
// blocks on the disk and decodes, so not on the GUI thread.
LoadedCaptureImage loadCaptureImage(const QString& path, PngBytes bytes = PngBytes::notWanted);
