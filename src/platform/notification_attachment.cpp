// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "platform/notification_attachment.h"

#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageWriter>
#include <QRegularExpression>
#include <QUuid>
#include <QtEndian>
#include <cerrno>
#include <csignal>

namespace {

// A PNG text entry naming the process that wrote the file. Without spaces:
// Qt writes a key with spaces as part of a "Description" entry.
const QString kWriterKey = QStringLiteral("QuillixProcess");

// With TMPDIR naming a missing folder Qt answers an empty path, which
// would put files into the working folder.
QString temporaryFolder() {
    const QString folder = QDir::tempPath();
    return !folder.isEmpty() && QFileInfo(folder).isDir() ? folder : QString();
}

bool isAttachmentName(const QString& name) {
    static const QRegularExpression pattern(
        QStringLiteral("^[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12}\\.png$"));
    return pattern.match(name).hasMatch();
}

bool processRuns(pid_t pid) {
    return ::kill(pid, 0) == 0 || errno == EPERM;
}

// The process that wrote `path` as one of our attachments; 0 for any other
// file. Walks the PNG's chunks up to the image data, reading a few hundred
// bytes; another program's file, however damaged, is only ever read.
pid_t writerOf(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.read(8) != QByteArray("\x89PNG\r\n\x1a\n", 8)) {
        return 0;
    }
    const QByteArray wanted = kWriterKey.toLatin1() + '\0';
    constexpr qint64 kLargestTextChunk = 4096;
    for (;;) {
        const QByteArray header = file.read(8);
        if (header.size() != 8) {
            return 0;
        }
        const qint64 length = qFromBigEndian<quint32>(header.constData());
        const QByteArray type = header.mid(4);
        if (type == "IDAT" || type == "IEND") {
            return 0;  // text entries that matter come before the image
        }
        if (type == "tEXt" && length <= kLargestTextChunk) {
            const QByteArray text = file.read(length);
            if (text.startsWith(wanted)) {
                bool isNumber = false;
                const qint64 pid = text.mid(wanted.size()).toLongLong(&isNumber);
                return isNumber && pid > 0 ? static_cast<pid_t>(pid) : 0;
            }
            file.skip(4);  // the chunk's checksum
        } else if (file.skip(length + 4) != length + 4) {
            return 0;
        }
    }
}

}  // namespace

NotificationAttachments& NotificationAttachments::shared() {
    static auto* attachments = new NotificationAttachments();
    return *attachments;
}

QString NotificationAttachments::write(const QImage& image) {
    const QString folder = temporaryFolder();
    if (image.isNull() || folder.isEmpty()) {
        return {};
    }
    QString path = QDir(folder).filePath(
        QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper() + QStringLiteral(".png"));
    {
        // Known before it exists, so that removeAll() during the write
        // removes it too.
        const QMutexLocker lock(&mutex_);
        if (closed_) {
            return {};
        }
        paths_.insert(path);
    }
    QImageWriter writer(path, "png");
    writer.setText(kWriterKey, QString::number(::getpid()));
    const bool written = writer.write(image);
    const QMutexLocker lock(&mutex_);
    if (!written || closed_) {
        // A half-written file would only show a broken image.
        paths_.remove(path);
        QFile::remove(path);
        return {};
    }
    return path;
}

void NotificationAttachments::remove(const QString& path) {
    const QMutexLocker lock(&mutex_);
    if (paths_.remove(path)) {
        QFile::remove(path);
    }
}

void NotificationAttachments::removeAll() {
    const QMutexLocker lock(&mutex_);
    closed_ = true;
    for (const QString& path : std::as_const(paths_)) {
        QFile::remove(path);
    }
    paths_.clear();
}

QSet<QString> NotificationAttachments::paths() const {
    const QMutexLocker lock(&mutex_);
    return paths_;
}

void NotificationAttachments::removeLeftoversOfEndedRuns() {
    const QString folder = temporaryFolder();
    if (folder.isEmpty()) {
        return;
    }
    const QDir directory(folder);
    for (const QString& name : directory.entryList(QDir::Files)) {
        if (!isAttachmentName(name)) {
            continue;
        }
        const QString path = directory.filePath(name);
        const pid_t writer = writerOf(path);
        if (writer != 0 && !processRuns(writer)) {
            QFile::remove(path);
        }
    }
}

QString writeNotificationAttachment(const QImage& image) {
    return NotificationAttachments::shared().write(image);
}
