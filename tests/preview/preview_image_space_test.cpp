// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

// Where the preview shows a picture, how shapes drawn over it are flattened
// onto the picture's pixels, and how file sizes read.

#include "preview/preview_image_space.h"

#include <gtest/gtest.h>

#include <QLocale>

#include "preview/preview_sidebar.h"

namespace {

const QRectF kHalfSize(QPointF(24, 24), QSizeF(400, 300));  // an 800 × 600 picture at half size
const QSizeF kPicture(800, 600);

}  // namespace

TEST(PreviewImageSpace, PictureIsFittedInsideTheMarginsAndCentred) {
    // Wide area: the height decides, the picture is centred horizontally.
    EXPECT_EQ(previewImageDisplayRect({1000, 348}, kPicture), QRectF(300, 24, 400, 300));
    // Tall area: the width decides.
    EXPECT_EQ(previewImageDisplayRect({448, 1000}, kPicture), QRectF(24, 350, 400, 300));
    // Small pictures are enlarged to fill the room.
    EXPECT_EQ(previewImageDisplayRect({248, 148}, {20, 10}), QRectF(24, 24, 200, 100));
    // No room or no picture: nothing.
    EXPECT_TRUE(previewImageDisplayRect({48, 300}, kPicture).isEmpty());
    EXPECT_TRUE(previewImageDisplayRect({500, 500}, {0, 0}).isEmpty());
}

namespace {

// How many pixels of column `x` between `fromY` and `toY` (excluded) are
// painted, i.e. not the picture's white.
int paintedInColumn(const QImage& image, int x, int fromY, int toY) {
    int count = 0;
    for (int y = fromY; y < toY; ++y) {
        count += image.pixel(x, y) != qRgb(255, 255, 255) ? 1 : 0;
    }
    return count;
}

QImage whitePicture(QSize size) {
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(Qt::white);
    return picture;
}

}  // namespace

TEST(PreviewFlattening, ShapesGrowWithThePictureAndEveryPixelIsKept) {
    const QPointF o = kHalfSize.topLeft();
    const QVector<Annotation> onScreen = {
        // 4 points wide across the middle of the shown picture.
        {Annotation::Stroke{{o + QPointF(50, 150), o + QPointF(350, 150)}, 4.0, Qt::red, 1.0}},
        // Pointing right along y = 250 points, its tip at x = 350.
        {Annotation::Arrow{o + QPointF(50, 250), o + QPointF(350, 250), Qt::blue}},
        {Annotation::Rectangle{QRectF(o + QPointF(20, 20), QSizeF(60, 40)), Qt::green}},
    };
    const QImage flat = flattenOntoPicture(whitePicture({800, 600}), onScreen, {}, kHalfSize);
    ASSERT_EQ(flat.size(), QSize(800, 600));
    EXPECT_EQ(flat.devicePixelRatio(), 1.0);

    // Positions double; the line is 8 pixels thick, not 4.
    EXPECT_GE(paintedInColumn(flat, 400, 280, 320), 8);
    EXPECT_LE(paintedInColumn(flat, 400, 280, 320), 9);
    EXPECT_EQ(paintedInColumn(flat, 90, 280, 320), 0);  // it starts at x = 100
    // The arrow's shaft is 2 × 2.5 thick; 20 pixels before its tip the head
    // (24 pixels long, sides at ±30°) is about 2 × 20 × tan 30° ≈ 23 tall.
    EXPECT_GE(paintedInColumn(flat, 400, 480, 520), 5);
    EXPECT_LE(paintedInColumn(flat, 400, 480, 520), 6);
    const int head = paintedInColumn(flat, 680, 470, 530);
    EXPECT_GE(head, 20);
    EXPECT_LE(head, 26);
    // The rectangle's outline is 5 pixels wide around x = 40 (20 points).
    int outline = 0;
    for (int x = 30; x < 50; ++x) {
        outline += flat.pixel(x, 100) != qRgb(255, 255, 255) ? 1 : 0;
    }
    EXPECT_GE(outline, 5);
    EXPECT_LE(outline, 6);
}

TEST(PreviewFlattening, PixelCountIsExactAtAnyScale) {
    // Widths whose size in points times the scale falls a hair short of the
    // pixel count unless the scale allows for it.
    const QSize pictures[] = {{61, 40}, {115, 77}, {1001, 333}, {1919, 1080}, {7, 3}};
    const qreal shownWidths[] = {61 / 1.75, 115 / 1.1, 333.3, 733.5, 1.0};
    for (const QSize& size : pictures) {
        for (const qreal width : shownWidths) {
            const QRectF display(QPointF(24, 24),
                                 QSizeF(width, width * size.height() / size.width()));
            EXPECT_EQ(flattenOntoPicture(whitePicture(size), {}, {}, display).size(), size)
                << size.width() << " shown " << width;
        }
    }
}

TEST(PreviewFlattening, CropIsGivenInTheAreasPointsAndNoDisplayKeepsThePicture) {
    const QImage picture = whitePicture({800, 600});
    const QRectF quarter(kHalfSize.topLeft() + QPointF(200, 150), kHalfSize.size() / 2);
    EXPECT_EQ(flattenOntoPicture(picture, {}, quarter, kHalfSize).size(), QSize(400, 300));
    const QImage untouched = flattenOntoPicture(
        picture, {{Annotation::Rectangle{QRectF(0, 0, 50, 50), Qt::red}}}, {}, QRectF());
    EXPECT_EQ(untouched, picture);
}

TEST(PreviewSidebarText, FileSizesUseKilobytesThenMegabytes) {
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    EXPECT_EQ(PreviewSidebar::fileSizeText(245'000), QStringLiteral("245 KB"));
    EXPECT_EQ(PreviewSidebar::fileSizeText(245'400), QStringLiteral("245 KB"));
    EXPECT_EQ(PreviewSidebar::fileSizeText(300), QStringLiteral("1 KB"));
    EXPECT_EQ(PreviewSidebar::fileSizeText(0), QStringLiteral("Zero KB"));
    EXPECT_EQ(PreviewSidebar::fileSizeText(1'200'000), QStringLiteral("1.2 MB"));
    EXPECT_EQ(PreviewSidebar::fileSizeText(1'249'000), QStringLiteral("1.2 MB"));
    EXPECT_EQ(PreviewSidebar::fileSizeText(25'000'000), QStringLiteral("25 MB"));
    QLocale::setDefault(QLocale::system());
}
