// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "support/temporary_library.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QTest>
#include <QThread>

namespace {

constexpr auto kDataHome = "XDG_DATA_HOME";

// The time the store orders files by.
QDateTime creationTime(const QString& path) {
    const QFileInfo info(path);
    const QDateTime birth = info.birthTime();
    return birth.isValid() ? birth : info.lastModified();
}

}  // namespace

TemporaryLibrary::TemporaryLibrary()
    : previousDataHome_(qgetenv(kDataHome)),
      hadDataHome_(qEnvironmentVariableIsSet(kDataHome)),
      registry(path(QStringLiteral("data/Quillix")), path(QStringLiteral("Documents/Quillix"))),
      settings(path(QStringLiteral("data/Quillix")), path(QStringLiteral("Documents/Quillix"))),
      preferences(path(QStringLiteral("config/Quillix/Quillix.conf"))),
      metadata(path(QStringLiteral("data/Quillix"))) {
    QDir().mkpath(desktop());
    QDir().mkpath(path(QStringLiteral("data")));
    qputenv(kDataHome, QFile::encodeName(path(QStringLiteral("data"))));
    settings.setShowOnlyQuillixItems(false);
}

TemporaryLibrary::~TemporaryLibrary() {
    // The store's background work ends before the trash moves elsewhere.
    store_.reset();
    if (hadDataHome_) {
        qputenv(kDataHome, previousDataHome_);
    } else {
        qunsetenv(kDataHome);
    }
}

QString TemporaryLibrary::path(const QString& relative) const {
    return relative.isEmpty() ? root_.path() : QDir(root_.path()).filePath(relative);
}

QString TemporaryLibrary::desktop(const QString& name) const {
    return path(name.isEmpty() ? QStringLiteral("Desktop") : QStringLiteral("Desktop/") + name);
}

QString TemporaryLibrary::trashed(const QString& name) const {
    return path(QStringLiteral("data/Trash/files/") + name);
}

QString TemporaryLibrary::writeFile(const QString& relative, const QByteArray& bytes) {
    const QString file = path(relative);
    QDir().mkpath(QFileInfo(file).absolutePath());
    // File times come from a coarse clock: a file created within the same
    // tick as the one before is created again.
    for (int attempt = 0; attempt < 500; ++attempt) {
        QFile::remove(file);
        QFile out(file);
        const bool written = out.open(QIODevice::WriteOnly) && out.write(bytes) == bytes.size();
        out.close();
        [&] { QVERIFY2(written, qPrintable(file)); }();
        if (!written) {
            return file;
        }
        const QDateTime created = creationTime(file);
        if (!lastCreated_.isValid() || created > lastCreated_) {
            lastCreated_ = created;
            return file;
        }
        QThread::msleep(2);
    }
    [&] { QFAIL(qPrintable(QStringLiteral("no later creation time for ") + file)); }();
    return file;
}

QString TemporaryLibrary::writePng(const QString& relative, QSize size, const QColor& left,
                                   const QColor& right) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(left);
    QPainter painter(&image);
    painter.fillRect(size.width() / 2, 0, size.width() - size.width() / 2, size.height(), right);
    painter.end();
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    [&] { QVERIFY(image.save(&buffer, "PNG")); }();
    return writeFile(relative, bytes);
}

ScreenshotStore& TemporaryLibrary::open() {
    store_ = std::make_unique<ScreenshotStore>(
        desktop(), path(QStringLiteral("Pictures/Screenshots")), registry, settings, preferences);
    return *store_;
}

bool TemporaryLibrary::openUntilIdle(int timeoutMs) {
    open();
    return waitUntilIdle(timeoutMs);
}

bool TemporaryLibrary::waitUntilListed(qsizetype count, int timeoutMs) {
    return QTest::qWaitFor(
        [&] { return store_->publishedScanCount() > 0 && store_->screenshots().size() == count; },
        timeoutMs);
}

bool TemporaryLibrary::waitUntilIdle(int timeoutMs) {
    return QTest::qWaitFor([&] { return store_->isIdle(); }, timeoutMs);
}

std::optional<ScreenshotItem> TemporaryLibrary::item(const QString& fileName) const {
    for (const ScreenshotItem& listed : store_->screenshots()) {
        if (listed.fileName() == fileName) {
            return listed;
        }
    }
    return std::nullopt;
}

QStringList TemporaryLibrary::names() const {
    QStringList listed;
    for (const ScreenshotItem& each : store_->screenshots()) {
        listed << each.fileName();
    }
    listed.sort();
    return listed;
}
