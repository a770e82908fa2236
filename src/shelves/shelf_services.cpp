// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "shelves/shelf_services.h"

#include "library/screenshot_item.h"

Q_LOGGING_CATEGORY(lcShelfWindow, "quillix.shelfwindow")

QString trimmedShelfName(const QString& name) {
    const auto isBlank = [](QChar c) { return c == u' ' || c == u'\t'; };
    qsizetype begin = 0;
    qsizetype end = name.size();
    while (begin < end && isBlank(name.at(begin))) {
        ++begin;
    }
    while (end > begin && isBlank(name.at(end - 1))) {
        --end;
    }
    return name.mid(begin, end - begin);
}

bool isShelfVideo(const QString& path) {
    return ScreenshotItem::isVideoPath(path);
}
