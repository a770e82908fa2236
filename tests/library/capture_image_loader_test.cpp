// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "library/capture_image_loader.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QImage>
#include <QImageReader>
#include <QImageWriter>

#include "library/image_allocation_limit.h"
#include "library/png_encoding.h"
#include "support/test_support.h"

namespace {

// Left half one colour, right half another, so a turn or a mirror shows.
QImage twoToned(const QSize& size) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(QColor(200, 30, 40));
    for (int y = 0; y < size.height(); ++y) {
        for (int x = size.width() / 2; x < size.width(); ++x) {
            image.setPixel(x, y, qRgb(20, 40, 220));
        }
    }
    return image;
}

QByteArray encoded(const QImage& image, const char* format,
                   QImageIOHandler::Transformations turn = QImageIOHandler::TransformationNone) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, format);
    writer.setTransformation(turn);
    EXPECT_TRUE(writer.write(image)) << writer.errorString().toStdString();
    return bytes;
}

QImage rgb(const QImage& image) {
    return image.convertToFormat(QImage::Format_RGB32);
}

// Restores Qt's process-wide allocation limit after a test lowers it.
class AllocationLimitGuard {
public:
    AllocationLimitGuard() : saved_(QImageReader::allocationLimit()) {}
    ~AllocationLimitGuard() { QImageReader::setAllocationLimit(saved_); }

private:
    int saved_;
};

TEST(CaptureImageLoader, PngKeepsTheFilesOwnBytes) {
    TestFolder folder;
    const QString path = folder.path(QStringLiteral("Shot.png"));
    const QByteArray file = encoded(twoToned({37, 23}), "png");
    writeFileBytes(path, file);

    const LoadedCaptureImage loaded = loadCaptureImage(path, PngBytes::wanted);
    ASSERT_TRUE(loaded.loaded());
    EXPECT_EQ(rgb(loaded.image), twoToned({37, 23}));
    EXPECT_EQ(loaded.pngData, file);
    EXPECT_EQ(loaded.statedSize, QSize(37, 23));
}

TEST(CaptureImageLoader, BytesAreLeftOutUnlessWanted) {
    TestFolder folder;
    const QString path = folder.path(QStringLiteral("Shot.png"));
    writeFileBytes(path, encoded(twoToned({8, 8}), "png"));

    const LoadedCaptureImage loaded = loadCaptureImage(path);
    ASSERT_TRUE(loaded.loaded());
    EXPECT_TRUE(loaded.pngData.isEmpty());
}

// A rewritten file keeps its name whatever it holds: the content decides.
TEST(CaptureImageLoader, OtherFormatUnderAPngNameIsReadAndEncodedAsPng) {
    TestFolder folder;
    const QString path = folder.path(QStringLiteral("Really a bitmap.png"));
    const QByteArray file = encoded(twoToned({16, 10}), "bmp");
    writeFileBytes(path, file);

    const LoadedCaptureImage loaded = loadCaptureImage(path, PngBytes::wanted);
    ASSERT_TRUE(loaded.loaded());
    EXPECT_EQ(rgb(loaded.image), twoToned({16, 10}));
    EXPECT_NE(loaded.pngData, file);
    EXPECT_EQ(loaded.pngData.left(8), QByteArray("\x89PNG\r\n\x1a\n", 8));
    EXPECT_EQ(rgb(QImage::fromData(loaded.pngData, "PNG")), twoToned({16, 10}));
}

// A picture stored sideways with an orientation tag comes out upright, and
// its PNG bytes hold the upright picture too.
TEST(CaptureImageLoader, OrientationTagTurnsThePictureAndItsBytes) {
    TestFolder folder;
    const QString path = folder.path(QStringLiteral("Sideways.jpg"));
    writeFileBytes(path,
                   encoded(twoToned({40, 20}), "jpeg", QImageIOHandler::TransformationRotate90));

    const LoadedCaptureImage loaded = loadCaptureImage(path, PngBytes::wanted);
    ASSERT_TRUE(loaded.loaded());
    EXPECT_EQ(loaded.image.size(), QSize(20, 40));
    EXPECT_EQ(QImage::fromData(loaded.pngData, "PNG").size(), QSize(20, 40));
}

TEST(CaptureImageLoader, MissingEmptyAndBrokenFilesAreUnreadable) {
    TestFolder folder;
    const QString empty = folder.path(QStringLiteral("Empty.png"));
    const QString broken = folder.path(QStringLiteral("Broken.png"));
    writeFileBytes(empty, {});
    writeFileBytes(broken, encoded(twoToned({64, 64}), "png").left(60));

    for (const QString& path :
         {folder.path(QStringLiteral("Missing.png")), empty, broken, folder.path()}) {
        const LoadedCaptureImage loaded = loadCaptureImage(path, PngBytes::wanted);
        EXPECT_EQ(loaded.status, CaptureImageStatus::unreadable) << path.toStdString();
        EXPECT_TRUE(loaded.image.isNull());
        EXPECT_TRUE(loaded.pngData.isEmpty());
    }
}

TEST(CaptureImageLoader, PictureBeyondTheAllocationLimitIsTooLarge) {
    TestFolder folder;
    const QString path = folder.path(QStringLiteral("Big.png"));
    writeFileBytes(path, encoded(twoToned({1024, 1024}), "png"));
    raiseImageAllocationLimit();  // the program's own, set before lowering it
    {
        const AllocationLimitGuard restore;
        QImageReader::setAllocationLimit(1);  // MB; the picture needs 4
        const LoadedCaptureImage loaded = loadCaptureImage(path, PngBytes::wanted);
        EXPECT_EQ(loaded.status, CaptureImageStatus::tooLarge);
        EXPECT_EQ(loaded.statedSize, QSize(1024, 1024));
        EXPECT_TRUE(loaded.image.isNull());
        EXPECT_TRUE(loaded.pngData.isEmpty());
    }
    EXPECT_TRUE(loadCaptureImage(path).loaded());
}

TEST(PngEncoding, EncodesEveryPixelAndRefusesANullImage) {
    QImage translucent(5, 3, QImage::Format_ARGB32);
    translucent.fill(QColor(10, 20, 30, 128));
    const QByteArray bytes = encodePng(translucent);
    EXPECT_EQ(QImage::fromData(bytes, "PNG").convertToFormat(QImage::Format_ARGB32), translucent);

    QString problem;
    EXPECT_TRUE(encodePng(QImage(), &problem).isEmpty());
    EXPECT_FALSE(problem.isEmpty());
}

}  // namespace
