// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QImage>
#include <QRectF>
#include <QVector>
#include <optional>

#include "annotation/annotation.h"

// Flattens annotations into a new image. `annotations` and `cropRect` are in
// the base image's point space (top-left origin); blur and pixelate regions
// filter the base image's pixels; the result is cropped to `cropRect` when
// there is one. Returns `image` unchanged when no bitmap can be made. Safe on
// worker threads.
QImage renderAnnotatedImage(const QImage& image, const QVector<Annotation>& annotations,
                            const std::optional<QRectF>& cropRect, qreal scale = 1.0);
