// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

// Pixel checks of flattened images: every annotation kind drawn on a known
// picture, the crop arithmetic and the output scale.

#include "annotation/annotated_image_renderer.h"

#include <gtest/gtest.h>

#include <QFont>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QImage>
#include <QRandomGenerator>
#include <cmath>

#include "image_statistics.h"

namespace {

const QColor kGrey(128, 128, 128);
const QColor kRed(255, 0, 0);
const QColor kBlue(0, 0, 255);
const QColor kGreen(0, 200, 0);

QImage solidImage(int width, int height, const QColor& color = kGrey) {
    QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
    image.fill(color);
    return image;
}

// Every pixel distinct: red encodes x, green encodes y.
QImage coordinateImage(int width, int height) {
    QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            image.setPixel(x, y, qRgb(x % 256, y % 256, (x / 256) * 16 + (y / 256)));
        }
    }
    return image;
}

QImage noiseImage(int width, int height) {
    QRandomGenerator random(42);
    QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const int v = random.bounded(256);
            image.setPixel(x, y, qRgb(v, 255 - v, v / 2));
        }
    }
    return image;
}

// Colour expected where `color` at `alpha` covers `under` completely.
QColor blended(const QColor& color, qreal alpha, const QColor& under) {
    auto mix = [&](int top, int bottom) {
        return static_cast<int>(std::lround(top * alpha + bottom * (1 - alpha)));
    };
    return QColor(mix(color.red(), under.red()), mix(color.green(), under.green()),
                  mix(color.blue(), under.blue()));
}

::testing::AssertionResult pixelNear(const QImage& image, int x, int y, const QColor& expected,
                                     int tolerance = 3) {
    const QColor actual = image.pixelColor(x, y);
    if (std::abs(actual.red() - expected.red()) <= tolerance &&
        std::abs(actual.green() - expected.green()) <= tolerance &&
        std::abs(actual.blue() - expected.blue()) <= tolerance) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure()
           << "pixel (" << x << ", " << y << ") is " << actual.name().toStdString() << ", expected "
           << expected.name().toStdString();
}

// The smallest rectangle holding every dark pixel; empty when there is none.
QRect darkInk(const QImage& image) {
    QRect ink;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qGray(image.pixel(x, y)) < 128) {
                ink |= QRect(x, y, 1, 1);
            }
        }
    }
    return ink;
}

Annotation stroke(QVector<QPointF> points, qreal width, const QColor& color, qreal opacity) {
    return {Annotation::Stroke{std::move(points), width, color, opacity}};
}

}  // namespace

TEST(AnnotatedImageRendererTest, StrokesUseTheirOpacityInsteadOfTheColourAlpha) {
    QColor halfTransparentRed = kRed;
    halfTransparentRed.setAlphaF(0.2f);
    const QImage out =
        renderAnnotatedImage(solidImage(200, 200),
                             {stroke({{20, 50}, {180, 50}}, 2.0, halfTransparentRed, 1.0),
                              stroke({{20, 100}, {180, 100}}, 12.0, kBlue, 0.4)},
                             std::nullopt);
    ASSERT_EQ(out.size(), QSize(200, 200));
    EXPECT_TRUE(pixelNear(out, 100, 49, kRed));
    EXPECT_TRUE(pixelNear(out, 100, 50, kRed));
    EXPECT_TRUE(pixelNear(out, 100, 46, kGrey));
    EXPECT_TRUE(pixelNear(out, 100, 100, blended(kBlue, 0.4, kGrey)));
    EXPECT_TRUE(pixelNear(out, 100, 95, blended(kBlue, 0.4, kGrey)));
    EXPECT_TRUE(pixelNear(out, 100, 108, kGrey));
    // Round caps reach half the width past the end points.
    EXPECT_TRUE(pixelNear(out, 15, 100, blended(kBlue, 0.4, kGrey)));
}

TEST(AnnotatedImageRendererTest, ArrowHasAFilledTwelvePointHeadAtItsTip) {
    const QImage out = renderAnnotatedImage(
        solidImage(200, 200), {{Annotation::Arrow{{20, 150}, {150, 150}, kBlue}}}, std::nullopt);
    EXPECT_TRUE(pixelNear(out, 100, 150, kBlue));  // shaft
    EXPECT_TRUE(pixelNear(out, 100, 153, kGrey));  // shaft is thin
    EXPECT_TRUE(pixelNear(out, 146, 150, kBlue));
    EXPECT_TRUE(pixelNear(out, 142, 152, kBlue));  // inside the head, off the shaft
    EXPECT_TRUE(pixelNear(out, 142, 147, kBlue));
    EXPECT_TRUE(pixelNear(out, 138, 154, kGrey));  // a 14-point head would cover this
    EXPECT_TRUE(pixelNear(out, 153, 150, kGrey));  // nothing past the tip
}

TEST(AnnotatedImageRendererTest, RectangleIsAnOutlineOnly) {
    const QImage out = renderAnnotatedImage(
        solidImage(200, 200), {{Annotation::Rectangle{QRectF(40, 40, 100, 60), kGreen}}},
        std::nullopt);
    EXPECT_TRUE(pixelNear(out, 90, 39, kGreen));
    EXPECT_TRUE(pixelNear(out, 90, 40, kGreen));
    EXPECT_TRUE(pixelNear(out, 40, 70, kGreen));
    EXPECT_TRUE(pixelNear(out, 139, 70, kGreen));
    EXPECT_TRUE(pixelNear(out, 90, 100, kGreen));
    EXPECT_TRUE(pixelNear(out, 90, 70, kGrey));  // interior untouched
    EXPECT_TRUE(pixelNear(out, 90, 44, kGrey));
    EXPECT_TRUE(pixelNear(out, 90, 35, kGrey));
}

TEST(AnnotatedImageRendererTest, TextHangsBelowItsOriginAsOnTheCanvas) {
    QFont font;
    font.setPixelSize(40);
    const QFontMetricsF metrics(font);
    const QImage out =
        renderAnnotatedImage(solidImage(200, 200, Qt::white),
                             {{Annotation::Text{"HH", {50, 100}, font, Qt::black}}}, std::nullopt);
    const QRect ink = darkInk(out);
    ASSERT_FALSE(ink.isEmpty()) << "no text drawn";
    EXPECT_GE(ink.top(), 100);  // nothing above the top of the text box
    EXPECT_NEAR(ink.bottom(), 100 + metrics.ascent() - 1, 1.5);  // capitals end on the baseline
    EXPECT_NEAR(ink.left(), 52, 3);
}

TEST(AnnotatedImageRendererTest, TextAtTheTopEdgeIsKeptWhole) {
    QFont font;
    font.setPixelSize(20);
    const QImage out =
        renderAnnotatedImage(solidImage(120, 60, Qt::white),
                             {{Annotation::Text{"HH", {10, 0}, font, Qt::black}}}, std::nullopt);
    const QRect ink = darkInk(out);
    ASSERT_FALSE(ink.isEmpty()) << "the text was cut away";
    EXPECT_NEAR(ink.height(), QFontMetricsF(font).capHeight(), 1.5);
}

TEST(AnnotatedImageRendererTest, BlurSmoothsOnlyInsideItsRegion) {
    const QImage base = noiseImage(200, 200);
    const QRect region(50, 40, 100, 80);
    const QImage out =
        renderAnnotatedImage(base, {{Annotation::Blur{QRectF(region)}}}, std::nullopt);
    const QRect inner = region.adjusted(10, 10, -10, -10);
    EXPECT_LT(greyVariance(out, inner), greyVariance(base, inner) / 20);
    // Pixels of the region's edge are blurred too.
    EXPECT_LT(greyVariance(out, QRect(50, 40, 100, 2)),
              greyVariance(base, QRect(50, 40, 100, 2)) / 5);
    for (int y = 0; y < 200; ++y) {
        for (int x = 0; x < 200; ++x) {
            if (!region.contains(x, y)) {
                ASSERT_EQ(out.pixel(x, y), base.pixel(x, y)) << x << "," << y;
            }
        }
    }
}

TEST(AnnotatedImageRendererTest, PixelateCellsAreUniformAndCentredOnTheRegion) {
    const QImage base = coordinateImage(200, 200);
    // Region centre (65, 65): cell edges at 53, 65, 77 on both axes.
    const QRect region(40, 40, 50, 50);
    const QImage out =
        renderAnnotatedImage(base, {{Annotation::Pixelate{QRectF(region)}}}, std::nullopt);
    const QRgb cell = out.pixel(65, 65);
    for (int y = 65; y < 77; ++y) {
        for (int x = 65; x < 77; ++x) {
            ASSERT_EQ(out.pixel(x, y), cell) << x << "," << y;
        }
    }
    // The cell's colour is the average of its pixels (x and y from 65 to 76).
    EXPECT_NEAR(qRed(cell), 70.5, 1.0);
    EXPECT_NEAR(qGreen(cell), 70.5, 1.0);
    EXPECT_NE(out.pixel(64, 65), cell);
    EXPECT_NE(out.pixel(65, 64), cell);
    EXPECT_NE(out.pixel(77, 65), cell);
    EXPECT_EQ(out.pixel(53, 53), out.pixel(64, 64));
    // The cells stop at the region's edges: a one-pixel sliver is left there.
    EXPECT_EQ(out.pixel(41, 41), out.pixel(52, 52));
    EXPECT_NE(out.pixel(40, 41), out.pixel(41, 41));
    EXPECT_EQ(out.pixel(39, 40), base.pixel(39, 40));
    EXPECT_EQ(out.pixel(90, 90), base.pixel(90, 90));
}

TEST(AnnotatedImageRendererTest, RegionsReachingPastThePictureKeepTheirGrid) {
    const QImage base = coordinateImage(200, 200);
    // Centre x = 200, the picture's right edge: cells end there.
    const QImage out = renderAnnotatedImage(base,
                                            {{Annotation::Pixelate{QRectF(160, 40, 80, 48)}},
                                             {Annotation::Blur{QRectF(-30, 150, 60, 80)}}},
                                            std::nullopt);
    ASSERT_EQ(out.size(), QSize(200, 200));
    EXPECT_EQ(out.pixel(188, 55), out.pixel(199, 63));
    EXPECT_NE(out.pixel(187, 55), out.pixel(188, 55));
    EXPECT_EQ(out.pixel(160, 55), out.pixel(163, 55));
    EXPECT_NE(out.pixel(163, 55), out.pixel(164, 55));
    EXPECT_EQ(out.pixel(159, 55), base.pixel(159, 55));
    EXPECT_NE(out.pixel(10, 180), base.pixel(10, 180));
    EXPECT_EQ(out.pixel(31, 180), base.pixel(31, 180));
}

TEST(AnnotatedImageRendererTest, CropCutsThePictureAndCarriesAnnotationsAlong) {
    const QImage base = coordinateImage(200, 200);
    const QImage out =
        renderAnnotatedImage(base,
                             {stroke({{0, 100}, {200, 100}}, 2.0, kRed, 1.0),
                              {Annotation::Rectangle{QRectF(60, 60, 20, 20), kBlue}}},
                             QRectF(50, 40, 100, 80));
    ASSERT_EQ(out.size(), QSize(100, 80));
    EXPECT_EQ(out.pixel(0, 0), base.pixel(50, 40));
    EXPECT_EQ(out.pixel(99, 79), base.pixel(149, 119));
    EXPECT_EQ(out.pixel(45, 30), base.pixel(95, 70));
    // The stroke crossing the crop is cut at both borders, 60 lower in the cut.
    EXPECT_TRUE(pixelNear(out, 0, 60, kRed));
    EXPECT_TRUE(pixelNear(out, 99, 60, kRed));
    // The rectangle keeps its place on the picture.
    EXPECT_TRUE(pixelNear(out, 20, 19, kBlue));
    EXPECT_TRUE(pixelNear(out, 9, 30, kBlue));
}

TEST(AnnotatedImageRendererTest, CropReachingPastThePictureIsShortened) {
    const QImage base = coordinateImage(200, 200);
    const QImage pastFarEdge = renderAnnotatedImage(base, {}, QRectF(150, 170, 100, 100));
    ASSERT_EQ(pastFarEdge.size(), QSize(50, 30));
    EXPECT_EQ(pastFarEdge.pixel(0, 0), base.pixel(150, 170));
    EXPECT_EQ(pastFarEdge.pixel(49, 29), base.pixel(199, 199));

    const QImage beforeNearEdge = renderAnnotatedImage(base, {}, QRectF(-20, -10, 100, 60));
    ASSERT_EQ(beforeNearEdge.size(), QSize(100, 60));
    EXPECT_EQ(beforeNearEdge.pixel(0, 0), base.pixel(0, 0));
    EXPECT_EQ(beforeNearEdge.pixel(99, 59), base.pixel(99, 59));

    // Nothing left to keep: the picture comes back untouched.
    const QImage outside = renderAnnotatedImage(base, {}, QRectF(250, 0, 40, 40));
    EXPECT_EQ(outside, base);
}

TEST(AnnotatedImageRendererTest, ScaleMultipliesThePixelSize) {
    const QImage out = renderAnnotatedImage(
        solidImage(200, 100), {stroke({{20, 50}, {180, 50}}, 2.0, kRed, 1.0)}, std::nullopt, 2.0);
    ASSERT_EQ(out.size(), QSize(400, 200));
    EXPECT_EQ(out.devicePixelRatio(), 2.0);
    EXPECT_TRUE(pixelNear(out, 200, 99, kRed));
    EXPECT_TRUE(pixelNear(out, 200, 101, kRed));
    EXPECT_TRUE(pixelNear(out, 200, 104, kGrey));
    EXPECT_TRUE(pixelNear(out, 10, 10, kGrey));
}

TEST(AnnotatedImageRendererTest, HighDensityPictureIsMeasuredInPoints) {
    QImage base = solidImage(400, 200);
    base.setDevicePixelRatio(2.0);
    const QImage out = renderAnnotatedImage(base, {}, QRectF(10, 10, 50, 40));
    EXPECT_EQ(out.size(), QSize(50, 40));
}

TEST(AnnotatedImageRendererTest, NullPictureComesBackAsItIs) {
    const QImage out = renderAnnotatedImage(QImage(), {stroke({{0, 0}, {5, 5}}, 2, kRed, 1)},
                                            QRectF(0, 0, 10, 10));
    EXPECT_TRUE(out.isNull());
}

int main(int argc, char** argv) {
    QGuiApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
