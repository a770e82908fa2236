// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QtGlobal>

// Qt refuses to decode a picture whose pixels would take more memory than
// its allocation limit, 256 MB unless raised: an 8192 × 8192 screenshot is
// the largest it reads. Captures of large or several screens and stitched
// pictures go beyond that, so the program raises the limit to a share of the
// machine's memory.

// The limit for a machine with `physicalMemoryBytes` of memory, in MB: a
// quarter of it, never below Qt's own 256 MB nor above 4 GB (a picture of a
// billion pixels). An unknown size (0 or less) keeps 256 MB.
int imageAllocationLimitMegabytes(qint64 physicalMemoryBytes);

// Sets the process-wide limit from this machine's memory. Only the first
// call does anything; any thread.
void raiseImageAllocationLimit();
