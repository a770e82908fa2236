// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "library/capture_file_rename.h"

#include <fcntl.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstdio>
#include <cstring>

std::optional<QString> renamedCapturePath(const QString& path, const QString& typedName) {
    const QString name = typedName.trimmed();
    if (name.isEmpty()) {
        return std::nullopt;
    }
    const QFileInfo info(path);
    // completeSuffix would take "tar.gz"-style double extensions; the
    // extension is only what follows the last dot.
    const QString suffix = info.suffix();
    const QString fileName = suffix.isEmpty() ? name : name + QLatin1Char('.') + suffix;
    return QDir(info.absolutePath()).filePath(fileName);
}

QString captureNameProblem(const QString& from, const QString& to) {
    QString folder = QFileInfo(from).absolutePath();
    if (!folder.endsWith(QLatin1Char('/'))) {
        folder += QLatin1Char('/');
    }
    const QString target = QFileInfo(to).absoluteFilePath();
    // A separator in the typed name would move the file to another folder.
    if (!target.startsWith(folder) || target.mid(folder.size()).contains(QLatin1Char('/'))) {
        return QStringLiteral("A name can't contain “/”.");
    }
    // A leading dot hides the file: from the gallery and from file managers.
    if (target.mid(folder.size()).startsWith(QLatin1Char('.'))) {
        return QStringLiteral("A name can't start with “.”.");
    }
    return {};
}

CaptureRenameResult moveCaptureFile(const QString& from, const QString& to) {
    if (const QString problem = captureNameProblem(from, to); !problem.isEmpty()) {
        return {{}, problem};
    }
    const QByteArray source = QFile::encodeName(from);
    const QByteArray destination = QFile::encodeName(to);
    // renameat2 with RENAME_NOREPLACE refuses an existing destination in one
    // step, so no check-then-move race can overwrite another file.
    if (::renameat2(AT_FDCWD, source.constData(), AT_FDCWD, destination.constData(),
                    RENAME_NOREPLACE) == 0) {
        return {to, {}};
    }
    const int error = errno;
    if (error == EINVAL || error == ENOSYS) {
        // File systems without the flag: Qt's rename also refuses to replace.
        QFile file(from);
        if (file.rename(to)) {
            return {to, {}};
        }
        return {{}, file.errorString()};
    }
    return {{}, QString::fromLocal8Bit(std::strerror(error))};
}
