#include "platform/notification_attachment.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageWriter>
#include <QUuid>

QString writeNotificationAttachment(const QImage& image) {
    if (image.isNull()) {
        return {};
    }
    const QString name =
        QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper() + QStringLiteral(".png");
    // With TMPDIR naming a missing folder Qt answers an empty path, which
    // would put the file into the working folder.
    const QString folder = QDir::tempPath();
    if (folder.isEmpty() || !QFileInfo(folder).isDir()) {
        return {};
    }
    const QString path = QDir(folder).filePath(name);
    QImageWriter writer(path, "png");
    if (!writer.write(image)) {
        // A half-written file would only show a broken image.
        QFile::remove(path);
        return {};
    }
    return path;
}
