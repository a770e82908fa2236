// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

// Flattens a 3840 × 2160 selection with twenty annotations (four blur or
// pixelate regions) several times and prints the median and fastest time,
// plus the two region filters on their own.

#include <QElapsedTimer>
#include <QFont>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QRandomGenerator>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

#include "annotation/annotated_image_renderer.h"
#include "annotation/region_filters.h"

namespace {

constexpr int kRuns = 9;

QImage desktopLikeImage() {
    QImage image(3840, 2160, QImage::Format_ARGB32_Premultiplied);
    image.fill(QColor(236, 236, 240));
    QPainter painter(&image);
    QRandomGenerator random(1);
    for (int i = 0; i < 400; ++i) {
        painter.fillRect(random.bounded(3800), random.bounded(2100), 40 + random.bounded(400),
                         10 + random.bounded(200), QColor::fromRgb(random.generate()));
    }
    return image;
}

QVector<Annotation> twentyAnnotations() {
    const QColor red(255, 69, 69);
    QFont font;
    font.setPixelSize(16);
    QVector<Annotation> list;
    list.append({Annotation::Blur{QRectF(200, 200, 900, 500)}});
    list.append({Annotation::Pixelate{QRectF(1400, 300, 800, 600)}});
    list.append({Annotation::Blur{QRectF(300, 1200, 1200, 400)}});
    list.append({Annotation::Pixelate{QRectF(2600, 1300, 900, 700)}});
    for (int i = 0; i < 4; ++i) {
        QVector<QPointF> points;
        for (int k = 0; k < 200; ++k) {
            points.append(QPointF(100 + k * 15, 800 + i * 100 + (k % 7) * 9));
        }
        list.append({Annotation::Stroke{points, i % 2 ? 12.0 : 2.0, red, i % 2 ? 0.4 : 1.0}});
    }
    for (int i = 0; i < 4; ++i) {
        list.append(
            {Annotation::Arrow{QPointF(300 + i * 700, 1900), QPointF(600 + i * 700, 1700), red}});
        list.append({Annotation::Rectangle{QRectF(250 + i * 800, 150, 500, 300), red}});
        list.append({Annotation::Text{QStringLiteral("Look here %1").arg(i),
                                      QPointF(400 + i * 800, 1100), font, red}});
    }
    return list;
}

double medianMilliseconds(const std::function<void()>& work) {
    std::vector<double> times;
    for (int i = 0; i < kRuns; ++i) {
        QElapsedTimer timer;
        timer.start();
        work();
        times.push_back(timer.nsecsElapsed() / 1e6);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

}  // namespace

int main(int argc, char** argv) {
    QGuiApplication app(argc, argv);
    const QImage image = desktopLikeImage();
    const QVector<Annotation> annotations = twentyAnnotations();

    const double render =
        medianMilliseconds([&] { renderAnnotatedImage(image, annotations, std::nullopt, 1.0); });
    const double cropped = medianMilliseconds(
        [&] { renderAnnotatedImage(image, annotations, QRectF(100, 100, 3600, 2000), 1.0); });
    const double blur =
        medianMilliseconds([&] { blurredRegion(image, QRect(200, 200, 900, 500)); });
    const double pixelate =
        medianMilliseconds([&] { pixelatedRegion(image, QRect(1400, 300, 800, 600)); });

    std::printf(
        "renderAnnotatedImage 3840x2160, 20 annotations (4 regions): median %.1f ms over %d runs "
        "(target <= 150 ms)\n",
        render, kRuns);
    std::printf("  same with a crop of 3600x2000: median %.1f ms\n", cropped);
    std::printf("  blurredRegion 900x500: median %.1f ms\n", blur);
    std::printf("  pixelatedRegion 800x600: median %.1f ms\n", pixelate);
    return 0;
}
