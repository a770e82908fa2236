// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "app/bar_icon.h"

#include <QGuiApplication>
#include <QImageReader>
#include <QPainter>
#include <QPalette>
#include <QPixmap>

namespace BarIcon {
namespace {

// The eight neighbours of a pixel: an outline one point wide.
constexpr QPoint kOutlineOffsets[] = {{-1, -1}, {0, -1}, {1, -1}, {-1, 0},
                                      {1, 0},   {-1, 1}, {0, 1},  {1, 1}};

// `source`'s shape (its alpha) drawn into `side` × `side` pixels in one colour.
QImage shapeIn(const QImage& source, int side, const QColor& colour) {
    QImage shape(side, side, QImage::Format_ARGB32_Premultiplied);
    shape.fill(Qt::transparent);
    QPainter painter(&shape);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(shape.rect(), source);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(shape.rect(), colour);
    return shape;
}

// Keeps the source's shape and paints it the way a panel tints a template
// image: in the palette's text colour, which the desktop theme chooses to
// read on its panels. A tray host that recolours nothing (XEmbed) may still
// sit on a panel of the other lightness, so a one-point outline in the
// opposite lightness keeps the shape readable on light and dark panels
// alike. At 1× and 2× so HiDPI panels get a sharp image.
QIcon tinted(const QImage& source) {
    const QColor ink = QGuiApplication::palette().color(QPalette::Active, QPalette::WindowText);
    const QColor outline =
        ink.lightness() < 128 ? QColor(255, 255, 255, 230) : QColor(0, 0, 0, 230);
    QIcon icon;
    for (const int scale : {1, 2}) {
        const int side = kSize * scale;
        const QImage halo = shapeIn(source, side, outline);
        QPixmap pixmap(side, side);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        for (const QPoint& offset : kOutlineOffsets) {
            painter.drawImage(offset * scale, halo);
        }
        painter.drawImage(0, 0, shapeIn(source, side, ink));
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

std::optional<QImage> loadImage(const QString& path, const QSize& size = {}) {
    QImageReader reader(path);
    reader.setAutoTransform(true);
    if (size.isValid()) {
        reader.setScaledSize(size);
    }
    QImage image = reader.read();
    if (image.isNull()) {
        return std::nullopt;
    }
    return image;
}

}  // namespace

QIcon builtIn() {
    // Rendered large so both the 1× and 2× pixmaps come out crisp.
    const std::optional<QImage> image =
        loadImage(QStringLiteral(":/icons/BarIcon.svg"), QSize(kSize * 4, kSize * 4));
    return image ? tinted(*image) : QIcon();
}

std::optional<QIcon> fromFile(const QString& imagePath) {
    if (imagePath.isEmpty()) {
        return std::nullopt;
    }
    const std::optional<QImage> image = loadImage(imagePath);
    return image ? std::optional<QIcon>(tinted(*image)) : std::nullopt;
}

}  // namespace BarIcon
