// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "library/image_allocation_limit.h"

#include <unistd.h>

#include <QImageReader>
#include <algorithm>
#include <mutex>

namespace {

constexpr qint64 kMegabyte = 1024 * 1024;
constexpr int kQtDefaultMegabytes = 256;
constexpr int kCeilingMegabytes = 4096;

qint64 physicalMemory() {
    const long pages = ::sysconf(_SC_PHYS_PAGES);
    const long pageSize = ::sysconf(_SC_PAGESIZE);
    if (pages <= 0 || pageSize <= 0) {
        return 0;
    }
    return static_cast<qint64>(pages) * pageSize;
}

}  // namespace

int imageAllocationLimitMegabytes(qint64 physicalMemoryBytes) {
    if (physicalMemoryBytes <= 0) {
        return kQtDefaultMegabytes;
    }
    const qint64 quarter = physicalMemoryBytes / 4 / kMegabyte;
    return static_cast<int>(std::clamp<qint64>(quarter, kQtDefaultMegabytes, kCeilingMegabytes));
}

void raiseImageAllocationLimit() {
    static std::once_flag once;
    std::call_once(once, [] {
        QImageReader::setAllocationLimit(imageAllocationLimitMegabytes(physicalMemory()));
    });
}
