// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QByteArray>
#include <QImage>

// Puts a picture on the clipboard as Qt's image type (which other programs
// read as image/png, image/bmp, …) and, when given, as the exact PNG bytes
// under image/png. GUI thread only.
void putImageOnClipboard(const QImage& image, const QByteArray& pngData = {});
