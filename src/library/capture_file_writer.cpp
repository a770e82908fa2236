// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "library/capture_file_writer.h"

#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QObject>
#include <QtConcurrent>
#include <cerrno>
#include <cstring>
#include <optional>

#include "library/capture_registry.h"
#include "library/captures_in_flight.h"
#include "storage/atomic_file.h"

namespace {

// Past this many numbered names something else is wrong with the folder.
constexpr int kMaxNumberedNames = 9999;

QString systemMessage(int error) {
    return QString::fromLocal8Bit(std::strerror(error));
}

// Writes under the first free numbered name in `folder`; the path, or empty
// with `problem` set.
QString writeUnderFreeName(const QByteArray& bytes, const QString& folder, const QString& fileName,
                           QString* problem) {
    for (int number = 1; number <= kMaxNumberedNames; ++number) {
        QString path = QDir(folder).filePath(numberedCaptureName(fileName, number));
        if (writeFileAtomically(path, bytes, AtomicWriteMode::neverReplace)) {
            return path;
        }
        if (errno != EEXIST) {
            *problem = systemMessage(errno);
            return {};
        }
    }
    *problem = systemMessage(EEXIST);
    return {};
}

struct RewriteOutcome {
    bool written = false;
    std::optional<quint64> previousInode;
};

}  // namespace

QString numberedCaptureName(const QString& fileName, int number) {
    if (number <= 1) {
        return fileName;
    }
    const QString suffix = QStringLiteral(" (%1)").arg(number);
    const qsizetype dot = fileName.lastIndexOf(QLatin1Char('.'));
    if (dot <= 0) {  // no extension, or a name that is all extension
        return fileName + suffix;
    }
    return fileName.left(dot) + suffix + fileName.mid(dot);
}

QString createCaptureFolder(const QString& folder) {
    // Step by step rather than QDir::mkpath, to learn why a step failed.
    const QString absolute = QDir::cleanPath(QDir(folder).absolutePath());
    QString path;
    for (const QString& part : absolute.split(QLatin1Char('/'), Qt::SkipEmptyParts)) {
        path += QLatin1Char('/') + part;
        const QByteArray native = QFile::encodeName(path);
        struct stat status {};
        if (::stat(native.constData(), &status) == 0) {
            if (!S_ISDIR(status.st_mode)) {
                return systemMessage(ENOTDIR);
            }
            continue;
        }
        if (errno != ENOENT) {
            return systemMessage(errno);
        }
        if (::mkdir(native.constData(), 0755) != 0 && errno != EEXIST) {
            return systemMessage(errno);
        }
    }
    return {};
}

NewCaptureFile writeNewCaptureFile(const QByteArray& bytes, const CaptureDestination& destination) {
    NewCaptureFile result;
    result.saveFolder = destination.saveFolder;
    QStringList folders{destination.saveFolder};
    folders.append(destination.fallbackFolders);
    for (qsizetype index = 0; index < folders.size(); ++index) {
        QString problem = createCaptureFolder(folders[index]);
        if (problem.isEmpty()) {
            result.path = writeUnderFreeName(bytes, folders[index], destination.fileName, &problem);
        }
        if (index == 0) {
            result.saveFolderProblem = problem;
        }
        if (result.written()) {
            return result;
        }
    }
    return result;
}

QFuture<bool> rewriteCapture(const QString& path, std::function<QByteArray()> produceBytes,
                             QObject* context, CaptureRegistry& registry) {
    const CaptureInFlightToken inFlight = startCaptureInFlight();
    return QtConcurrent::run([path, produce = std::move(produceBytes)] {
               RewriteOutcome outcome;
               // The inode before the rewrite decides the status.
               outcome.previousInode = CaptureRegistry::inodeOf(path);
               const QByteArray bytes = produce();
               outcome.written =
                   !bytes.isEmpty() && writeFileAtomically(path, bytes, AtomicWriteMode::replace);
               return outcome;
           })
        .then(context, [path, &registry, inFlight](const RewriteOutcome& outcome) {
            if (outcome.written && outcome.previousInode) {
                registry.moveRecord(*outcome.previousInode, path);
            }
            return outcome.written;
        });
}
