// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "support/colour_window.h"

#include <QCursor>
#include <QGuiApplication>
#include <QPainter>
#include <QScreen>
#include <QTest>
#include <cstdlib>

bool ColourWindow::showAt(const QRect& frame) {
    setWindowFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                   Qt::X11BypassWindowManagerHint);
    setAccessibleName(QStringLiteral("Colour test window"));
    setGeometry(frame);
    show();
    raise();
    if (!QTest::qWaitForWindowExposed(this)) {
        return false;
    }
    // Exposed is not yet drawn: wait until the screen itself shows a quadrant.
    QScreen* screen = QGuiApplication::primaryScreen();
    const QPoint probe = frame.topLeft() + QPoint(4, 4);
    return QTest::qWaitFor(
        [&] {
            const QImage shot = screen->grabWindow(0, probe.x(), probe.y(), 1, 1).toImage();
            return !shot.isNull() && coloursClose(shot.pixel(0, 0), kQuadrants[0], 0);
        },
        5000);
}

QRgb ColourWindow::colourAt(const QPoint& point) const {
    const int column = point.x() < width() / 2 ? 0 : 1;
    const int row = point.y() < height() / 2 ? 0 : 1;
    return kQuadrants[static_cast<size_t>(row * 2 + column)];
}

void ColourWindow::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const int halfWidth = width() / 2;
    const int halfHeight = height() / 2;
    painter.fillRect(0, 0, halfWidth, halfHeight, QColor(kQuadrants[0]));
    painter.fillRect(halfWidth, 0, width() - halfWidth, halfHeight, QColor(kQuadrants[1]));
    painter.fillRect(0, halfHeight, halfWidth, height() - halfHeight, QColor(kQuadrants[2]));
    painter.fillRect(halfWidth, halfHeight, width() - halfWidth, height() - halfHeight,
                     QColor(kQuadrants[3]));
}

bool coloursClose(QRgb a, QRgb b, int tolerance) {
    return std::abs(qRed(a) - qRed(b)) <= tolerance &&
           std::abs(qGreen(a) - qGreen(b)) <= tolerance &&
           std::abs(qBlue(a) - qBlue(b)) <= tolerance;
}

void parkPointer() {
    const QRect desktop = QGuiApplication::primaryScreen()->virtualGeometry();
    QCursor::setPos(desktop.bottomRight());
}
