// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QString>

// Rewrites an MP4 written for crash safety while recording (fragmented:
// a header without samples, then self-contained fragments) as an ordinary
// MP4 with its index at the front ("faststart"), so that every player can
// open and seek it, and thumbnails and streaming start without reading the
// whole file. The pictures are copied, not encoded again.
//
// The new file is written beside `path` under a hidden name and renamed over
// it only when complete, so `path` always holds a playable file. Returns an
// empty string on success, otherwise why `path` was left as it was.
QString remuxToFaststartMp4(const QString& path);
