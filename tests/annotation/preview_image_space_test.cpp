// Where the preview shows a picture, how shapes drawn over it map onto the
// picture's pixels, and how file sizes read.

#include "annotation/preview_image_space.h"

#include <gtest/gtest.h>

#include <QLocale>

#include "annotation/preview_sidebar.h"

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

TEST(PreviewImageSpace, GeometryIsScaledButStrokeWidthsAndFontsAreKept) {
    QFont font;
    font.setPixelSize(18);
    const QVector<Annotation> onScreen = {
        {Annotation::Stroke{{{24, 24}, {124, 74}}, 4.0, Qt::red, 0.5}},
        {Annotation::Arrow{{74, 124}, {224, 174}, Qt::blue}},
        {Annotation::Rectangle{QRectF(34, 44, 100, 50), Qt::green}},
        {Annotation::Text{QStringLiteral("Hi"), {124, 24}, font, Qt::black}},
        {Annotation::Blur{QRectF(24, 24, 10, 10)}},
        {Annotation::Pixelate{QRectF(0, 0, 24, 24)}},
    };
    const QVector<Annotation> inImage = annotationsInImageSpace(onScreen, kHalfSize, kPicture);
    ASSERT_EQ(inImage.size(), onScreen.size());

    const auto& stroke = std::get<Annotation::Stroke>(inImage[0].kind);
    EXPECT_EQ(stroke.points, (QVector<QPointF>{{0, 0}, {200, 100}}));
    EXPECT_EQ(stroke.width, 4.0);
    EXPECT_EQ(stroke.opacity, 0.5);
    const auto& arrow = std::get<Annotation::Arrow>(inImage[1].kind);
    EXPECT_EQ(arrow.from, QPointF(100, 200));
    EXPECT_EQ(arrow.to, QPointF(400, 300));
    EXPECT_EQ(std::get<Annotation::Rectangle>(inImage[2].kind).rect, QRectF(20, 40, 200, 100));
    const auto& text = std::get<Annotation::Text>(inImage[3].kind);
    EXPECT_EQ(text.origin, QPointF(200, 0));
    EXPECT_EQ(text.font, font);
    EXPECT_EQ(std::get<Annotation::Blur>(inImage[4].kind).rect, QRectF(0, 0, 20, 20));
    // Shapes in the margin land outside the picture (the renderer cuts them).
    EXPECT_EQ(std::get<Annotation::Pixelate>(inImage[5].kind).rect, QRectF(-48, -48, 48, 48));
}

TEST(PreviewImageSpace, AxesScaleSeparatelyAndCropFollows) {
    const QRectF display(10, 20, 100, 50);
    const QSizeF picture(300, 100);  // kx = 3, ky = 2
    EXPECT_EQ(cropInImageSpace(QRectF(10, 20, 50, 25), display, picture), QRectF(0, 0, 150, 50));
    EXPECT_EQ(cropInImageSpace(std::nullopt, display, picture), std::nullopt);
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
