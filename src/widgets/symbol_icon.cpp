// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "widgets/symbol_icon.h"

#include <QFile>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <QtGlobal>

// The symbol drawings live in their own resource file (symbols.qrc, generated
// from resources/icons/symbols by the build), compiled into the core library.
// Nothing else references its initialiser, so the linker would leave it out:
// register it explicitly, once. (Outside any
// namespace: the macro declares the initialiser where it is used.)
static void ensureSymbolResources() {
    static const bool registered = [] {
        Q_INIT_RESOURCE(symbols);
        Q_INIT_RESOURCE(quillix);
        return true;
    }();
    Q_UNUSED(registered);
}

QIcon programLogo() {
    ensureSymbolResources();
    return QIcon(QStringLiteral(":/icons/Logo.svg"));
}

QString symbolIconPath(const QString& name) {
    return QStringLiteral(":/icons/symbols/%1.svg").arg(name);
}

QPixmap symbolPixmap(const QString& name, const QColor& tint, QSize logicalSize,
                     qreal devicePixelRatio) {
    ensureSymbolResources();
    const qreal ratio = devicePixelRatio > 0 ? devicePixelRatio : 1.0;
    const QSize pixelSize = (QSizeF(logicalSize.expandedTo(QSize(1, 1))) * ratio).toSize();
    QImage image(pixelSize, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);

    // A missing drawing stays blank (and quiet).
    const QString path = symbolIconPath(name);
    QSvgRenderer renderer;
    if (QFile::exists(path) && renderer.load(path)) {
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        renderer.render(&painter, QRectF(QPointF(0, 0), QSizeF(pixelSize)));
        // Keep the drawing's coverage, replace its colour.
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(image.rect(), tint);
    }
    QPixmap pixmap = QPixmap::fromImage(std::move(image));
    pixmap.setDevicePixelRatio(ratio);
    return pixmap;
}

QIcon symbolIcon(const QString& name, const QColor& tint, QSize logicalSize) {
    QIcon icon;
    for (const qreal ratio : {1.0, 2.0}) {
        icon.addPixmap(symbolPixmap(name, tint, logicalSize, ratio));
    }
    return icon;
}
