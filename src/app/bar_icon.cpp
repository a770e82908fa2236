#include "app/bar_icon.h"

#include <QImageReader>
#include <QPainter>
#include <QPixmap>

namespace BarIcon {
namespace {

// Most Linux panels are dark; a light tint reads on them.
const QColor kTint(0xf2, 0xf2, 0xf2);

// Keeps the source's shape (its alpha) and paints it in the tint colour, at
// 1× and 2× so HiDPI panels get a sharp image.
QIcon tinted(const QImage& source) {
    QIcon icon;
    for (const int scale : {1, 2}) {
        QPixmap pixmap(kSize * scale, kSize * scale);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.drawImage(pixmap.rect(), source);
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(pixmap.rect(), kTint);
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
