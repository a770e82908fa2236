// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include "platform/video_frame_reader.h"

// Video thumbnails through FFmpeg: libavformat opens the file (local files
// only), libavcodec decodes the first frame of the best video stream and
// libswscale scales it to RGB. Damaged or truncated files give a null image;
// a file that takes too long to open or decode is given up on.
class FfmpegVideoFrameReader : public VideoFrameReader {
public:
    QImage firstFrame(const QString& path, int maxSide) const override;
};
