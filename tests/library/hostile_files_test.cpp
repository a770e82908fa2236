// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

// Files in the watched folders that no capture tool would write: pictures
// whose header claims no pixels or 900 million of them, a video of garbage,
// symbolic links that loop or lead nowhere, a name that is not UTF-8. The
// library lists what it can, thumbnails what decodes, and never hangs,
// crashes or allocates the claimed size.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <QFile>
#include <QStringList>
#include <QtEndian>

#include "support/temporary_library.h"

namespace {

quint32 crc32(const QByteArray& bytes) {
    quint32 crc = 0xffffffffU;
    for (const char byte : bytes) {
        crc ^= static_cast<quint8>(byte);
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc >> 1) ^ (0xedb88320U & (0U - (crc & 1U)));
        }
    }
    return ~crc;
}

QByteArray bigEndian(quint32 value) {
    QByteArray bytes(4, '\0');
    qToBigEndian(value, bytes.data());
    return bytes;
}

QByteArray chunk(const QByteArray& type, const QByteArray& data) {
    return bigEndian(static_cast<quint32>(data.size())) + type + data +
           bigEndian(crc32(type + data));
}

// A well-formed PNG header and checksums around the claimed size, with a
// few rows of real (grey) image data after it.
QByteArray pngClaiming(quint32 width, quint32 height) {
    const QByteArray header =
        bigEndian(width) + bigEndian(height) + QByteArray::fromHex("0800000000");  // 8-bit grey
    QByteArray rows;
    for (int row = 0; row < 4; ++row) {
        rows += QByteArray(1, '\0') + QByteArray(static_cast<int>(qMin(width, 64U)), '\x80');
    }
    const QByteArray zlib = qCompress(rows).mid(4);  // qCompress puts the size first
    return QByteArray::fromHex("89504e470d0a1a0a") + chunk("IHDR", header) + chunk("IDAT", zlib) +
           chunk("IEND", {});
}

// The name's bytes as they are, not as UTF-8 of a QString.
void writeRawName(const QByteArray& path) {
    const int fd = ::open(path.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    ASSERT_GE(fd, 0);
    ::close(fd);
}

}  // namespace

TEST(HostileFiles, TheLibraryListsWhatItCanAndThumbnailsOnlyWhatDecodes) {
    TemporaryLibrary library;
    library.writePng(QStringLiteral("Desktop/good.png"), {64, 40}, Qt::red, Qt::blue);
    library.writeFile(QStringLiteral("Desktop/empty claim.png"), pngClaiming(0, 0));
    library.writeFile(QStringLiteral("Desktop/giant.png"), pngClaiming(30000, 30000));
    library.writeFile(QStringLiteral("Desktop/noise.mp4"), QByteArray(4096, '\x5a'));
    library.writeFile(QStringLiteral("Desktop/empty.mov"), {});
    const QByteArray desktop = QFile::encodeName(library.desktop());
    ASSERT_EQ(::symlink("loop.png", (desktop + "/loop.png").constData()), 0);
    ASSERT_EQ(::symlink("gone.png", (desktop + "/dangling.png").constData()), 0);
    ASSERT_EQ(::symlink(".", (desktop + "/folder loop.png").constData()), 0);
    const QByteArray rawName = desktop + "/Aufnahme \xff\xfe.png";
    writeRawName(rawName);

    ASSERT_TRUE(library.openUntilIdle());

    const auto good = library.item(QStringLiteral("good.png"));
    ASSERT_TRUE(good);
    EXPECT_EQ(good->thumbnail().size(), QSize(64, 40));
    EXPECT_EQ(good->thumbnail().pixelColor(4, 20), QColor(Qt::red));
    for (const char* name : {"empty claim.png", "giant.png", "noise.mp4", "empty.mov"}) {
        const auto item = library.item(QString::fromLatin1(name));
        ASSERT_TRUE(item) << name << " is a file of a listed kind and is listed";
        EXPECT_TRUE(item->thumbnail().isNull()) << name;
    }
    // Links that lead to no file are no captures, and a name that Qt cannot
    // give back to the file system is left alone, untouched on disk.
    EXPECT_EQ(library.names(),
              QStringList({"empty claim.png", "empty.mov", "giant.png", "good.png", "noise.mp4"}));
    EXPECT_EQ(::unlink(rawName.constData()), 0);
}
