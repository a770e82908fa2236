// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "library/capture_image_loader.h"

#include <QBuffer>
#include <QFile>
#include <QImageReader>

#include "library/image_allocation_limit.h"
#include "library/png_encoding.h"

namespace {

constexpr qint64 kMegabyte = 1024 * 1024;
constexpr qint64 kBytesPerPixel = 4;

// Whether a picture of `size` is beyond what Qt may allocate for one image;
// a limit of 0 means Qt allocates without one.
bool exceedsAllocationLimit(const QSize& size) {
    const qint64 limit = qint64(QImageReader::allocationLimit()) * kMegabyte;
    return size.isValid() && limit > 0 &&
           qint64(size.width()) * size.height() * kBytesPerPixel > limit;
}

QByteArray readWholeFile(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return file.readAll();
}

}  // namespace

LoadedCaptureImage loadCaptureImage(const QString& path, PngBytes bytes) {
    raiseImageAllocationLimit();
    LoadedCaptureImage loaded;
    const QByteArray content = readWholeFile(path);
    if (content.isEmpty()) {
        return loaded;
    }
    QBuffer buffer;
    buffer.setData(content);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setAutoTransform(true);
    loaded.statedSize = reader.size();
    const bool isPng = reader.format() == QByteArrayLiteral("png");
    loaded.image = reader.read();
    if (loaded.image.isNull()) {
        loaded.status = exceedsAllocationLimit(loaded.statedSize) ? CaptureImageStatus::tooLarge
                                                                  : CaptureImageStatus::unreadable;
        return loaded;
    }
    loaded.status = CaptureImageStatus::loaded;
    if (bytes == PngBytes::wanted) {
        // The file's own bytes spare an encoding and are exactly what was
        // saved; a turned picture no longer matches them.
        const bool upright = reader.transformation() == QImageIOHandler::TransformationNone;
        loaded.pngData = isPng && upright ? content : encodePng(loaded.image);
    }
    return loaded;
}
