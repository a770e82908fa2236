// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "library/image_clipboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

void putImageOnClipboard(const QImage& image, const QByteArray& pngData) {
    auto* mime = new QMimeData();
    mime->setImageData(image);
    if (!pngData.isEmpty()) {
        mime->setData(QStringLiteral("image/png"), pngData);
    }
    QGuiApplication::clipboard()->setMimeData(mime, QClipboard::Clipboard);
}
