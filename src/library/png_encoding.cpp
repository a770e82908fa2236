// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "library/png_encoding.h"

#include <QBuffer>
#include <QImageWriter>

QByteArray encodePng(const QImage& image, QString* problem) {
    if (image.isNull()) {
        if (problem) {
            *problem = QStringLiteral("there is no picture to encode");
        }
        return {};
    }
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, QByteArrayLiteral("png"));
    if (!buffer.open(QIODevice::WriteOnly) || !writer.write(image)) {
        if (problem) {
            *problem = writer.errorString();
        }
        return {};
    }
    return bytes;
}
