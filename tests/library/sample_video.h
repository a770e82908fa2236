// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QString>

// Writes a one-second 320 × 240 test-pattern recording to `path` with the
// ffmpeg program, creating its folder; false when it could not be made.
bool writeSampleVideo(const QString& path);
