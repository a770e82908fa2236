// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

// The PNG encoding of `image`, as capture files, rewrites and the clipboard
// hold it; empty for a null image or when the encoder fails, with the
// encoder's reason in `problem` when given. Any thread.
QByteArray encodePng(const QImage& image, QString* problem = nullptr);
