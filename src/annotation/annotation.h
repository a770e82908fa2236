// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QColor>
#include <QFont>
#include <QPointF>
#include <QRectF>
#include <QString>
#include <QVector>
#include <variant>

// One committed shape: an immutable value. Geometry is in the coordinate
// space of the surface it was drawn on (top-left origin, y down); rectangles
// are always normalised.
struct Annotation {
    struct Stroke {
        QVector<QPointF> points;
        qreal width = 2.0;
        QColor color;
        qreal opacity = 1.0;  // replaces the colour's alpha when drawn
        bool operator==(const Stroke&) const = default;
    };
    struct Arrow {
        QPointF from;
        QPointF to;
        QColor color;
        bool operator==(const Arrow&) const = default;
    };
    struct Rectangle {
        QRectF rect;
        QColor color;
        bool operator==(const Rectangle&) const = default;
    };
    struct Text {
        QString text;
        QPointF origin;
        QFont font;
        QColor color;
        bool operator==(const Text&) const = default;
    };
    struct Blur {
        QRectF rect;
        bool operator==(const Blur&) const = default;
    };
    struct Pixelate {
        QRectF rect;
        bool operator==(const Pixelate&) const = default;
    };
    // Only passes a crop through add(); never stored in the list.
    struct Crop {
        QRectF rect;
        bool operator==(const Crop&) const = default;
    };

    using Kind = std::variant<Stroke, Arrow, Rectangle, Text, Blur, Pixelate, Crop>;

    Kind kind;

    bool operator==(const Annotation&) const = default;
};
