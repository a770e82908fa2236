// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "bench_support.h"

#include <QLinearGradient>
#include <QPainter>
#include <QRandomGenerator>
#include <algorithm>

QImage screenshotLikeImage(int seed, QSize size) {
    QRandomGenerator random(quint32(seed) * 7919u + 1u);
    const int width = std::max(size.width(), 480);
    const int height = std::max(size.height(), 270);
    const double scale = width / 1920.0;
    const auto scaled = [scale](int value) { return std::max(1, int(value * scale)); };
    QImage image(width, height, QImage::Format_RGB32);
    QPainter painter(&image);
    QLinearGradient background(0, 0, width, height);
    background.setColorAt(0, QColor::fromHsv(random.bounded(360), 90, 200));
    background.setColorAt(1, QColor::fromHsv(random.bounded(360), 120, 80));
    painter.fillRect(image.rect(), background);
    for (int i = 0; i < scaled(40); ++i) {
        const QRect panel(random.bounded(width - scaled(220)), random.bounded(height - scaled(180)),
                          scaled(60) + random.bounded(scaled(500)),
                          scaled(30) + random.bounded(scaled(300)));
        painter.fillRect(panel, QColor::fromRgb(random.generate() | 0xff000000u));
        painter.setPen(QColor::fromRgb(random.generate()));
        for (int line = panel.top() + 8; line < panel.bottom() - 4; line += 14) {
            painter.drawLine(panel.left() + 6, line, panel.left() + 6 + random.bounded(200), line);
        }
    }
    painter.end();
    const QSize patchSize(scaled(400), scaled(300));
    const QPoint patch(random.bounded(width - patchSize.width()),
                       random.bounded(height - patchSize.height()));
    for (int y = 0; y < patchSize.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(patch.y() + y));
        for (int x = 0; x < patchSize.width(); ++x) {
            row[patch.x() + x] = random.generate() | 0xff000000u;
        }
    }
    return image;
}

double median(std::vector<double> values) {
    if (values.empty()) {
        return -1;
    }
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}
