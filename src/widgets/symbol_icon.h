// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QColor>
#include <QIcon>
#include <QPixmap>
#include <QSize>
#include <QString>

// The bundled monochrome symbol images (one SVG per symbol name, e.g.
// "pencil", "arrow.uturn.backward"), so the palettes look the same under every
// icon theme. The drawings are black; these helpers paint them in any colour.

// The program's own coloured logo.
QIcon programLogo();

// The resource path of a symbol's drawing.
QString symbolIconPath(const QString& name);

// The symbol at `logicalSize` for the given device pixel ratio, every drawn
// pixel in `tint` (the drawing's own alpha kept). An unknown or unreadable
// symbol gives a transparent pixmap rather than nothing.
QPixmap symbolPixmap(const QString& name, const QColor& tint, QSize logicalSize,
                     qreal devicePixelRatio = 1.0);

// The symbol as an icon in `tint`, rendered for normal and double density.
QIcon symbolIcon(const QString& name, const QColor& tint, QSize logicalSize = QSize(24, 24));
