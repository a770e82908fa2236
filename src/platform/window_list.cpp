// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "platform/window_list.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>
#include <algorithm>

namespace {

// A screen's bounds in desktop pixels: Qt keeps a screen's top left in
// device pixels and divides only its size by the scale factor.
QRect nativeGeometry(const QScreen& screen) {
    const QRect logical = screen.geometry();
    const qreal ratio = screen.devicePixelRatio();
    return {logical.topLeft(), (QSizeF(logical.size()) * ratio).toSize()};
}

qint64 area(const QRect& rect) {
    return rect.isEmpty() ? 0 : qint64(rect.width()) * rect.height();
}

}  // namespace

std::optional<WindowInfo> WindowList::windowAt(const QPoint& point) {
    return window_list::frontWindowAt(windows(), point);
}

namespace window_list {

std::optional<WindowInfo> frontWindowAt(const std::vector<WindowInfo>& frontToBack,
                                        const QPoint& point) {
    const auto hit =
        std::find_if(frontToBack.begin(), frontToBack.end(),
                     [&point](const WindowInfo& window) { return window.frame.contains(point); });
    if (hit == frontToBack.end()) {
        return std::nullopt;
    }
    return *hit;
}

int displayShowingMost(const QRect& frame, const QList<QRect>& displays, int mainDisplay) {
    int best = mainDisplay;
    qint64 bestArea = 0;
    for (int index = 0; index < displays.size(); ++index) {
        const qint64 shared = area(frame.intersected(displays.at(index)));
        // Strictly larger: the first of equal displays keeps it.
        if (shared > bestArea) {
            best = index;
            bestArea = shared;
        }
    }
    return best;
}

QString screenShowingMost(const QRect& frame) {
    const QList<QScreen*> screens = QGuiApplication::screens();
    if (screens.isEmpty()) {
        return {};
    }
    QList<QRect> bounds;
    bounds.reserve(screens.size());
    for (const QScreen* screen : screens) {
        bounds.append(nativeGeometry(*screen));
    }
    const QScreen* underPointer = QGuiApplication::screenAt(QCursor::pos());
    const int main = std::max<int>(0, screens.indexOf(underPointer));
    return screens.at(displayShowingMost(frame, bounds, main))->name();
}

}  // namespace window_list
