// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "storage/atomic_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstdio>

namespace {

// Writes all of `data` to `fd`, retrying on short writes and interruptions.
bool writeAll(int fd, const QByteArray& data) {
    const char* cursor = data.constData();
    qsizetype left = data.size();
    while (left > 0) {
        const ssize_t written = ::write(fd, cursor, static_cast<size_t>(left));
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            if (written == 0) {
                errno = EIO;
            }
            return false;
        }
        cursor += written;
        left -= written;
    }
    return true;
}

// Makes the rename itself durable.
void syncDirectory(const QByteArray& directory) {
    const int fd = ::open(directory.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        ::fsync(fd);
        ::close(fd);
    }
}

constexpr mode_t kNewFileMode = 0644;

// The mode the finished file gets: the one asked for, else a replaced file's
// own.
mode_t finalMode(const QByteArray& target, std::optional<unsigned> permissions) {
    if (permissions) {
        return static_cast<mode_t>(*permissions & 07777);
    }
    struct stat existing {};
    if (::stat(target.constData(), &existing) == 0) {
        return existing.st_mode & 07777;
    }
    return kNewFileMode;
}

// Puts the finished temporary file at `target` without ever replacing a file
// there. File systems without RENAME_NOREPLACE (NFS, some FUSE ones) get a
// hard link, which refuses an existing name just as atomically; where even
// links are missing, a check right before the rename is the best left.
bool moveIntoFreePlace(const QByteArray& temporary, const QByteArray& target) {
    if (::renameat2(AT_FDCWD, temporary.constData(), AT_FDCWD, target.constData(),
                    RENAME_NOREPLACE) == 0) {
        return true;
    }
    if (errno != EINVAL && errno != ENOSYS) {
        return false;
    }
    if (::link(temporary.constData(), target.constData()) == 0) {
        ::unlink(temporary.constData());
        return true;
    }
    if (errno == EEXIST) {
        return false;
    }
    struct stat existing {};
    if (::lstat(target.constData(), &existing) == 0) {
        errno = EEXIST;
        return false;
    }
    return ::rename(temporary.constData(), target.constData()) == 0;
}

bool moveIntoPlace(const QByteArray& temporary, const QByteArray& target, AtomicWriteMode mode) {
    if (mode == AtomicWriteMode::replace) {
        return ::rename(temporary.constData(), target.constData()) == 0;
    }
    return moveIntoFreePlace(temporary, target);
}

// The temporary file is hidden ("." + name), so that what a crash leaves
// behind is never listed as a capture or mistaken for one; mkostemp puts
// six characters in place of the X's.
constexpr qsizetype kUniqueSuffixSize = 6;

QString temporaryPrefix(const QString& path) {
    return QLatin1Char('.') + QFileInfo(path).fileName() + QLatin1Char('.');
}

QByteArray temporaryTemplate(const QString& path) {
    return QFile::encodeName(QDir(QFileInfo(path).path()).filePath(temporaryPrefix(path))) +
           QByteArray(kUniqueSuffixSize, 'X');
}

}  // namespace

bool writeFileAtomically(const QString& path, const QByteArray& data, AtomicWriteMode mode,
                         std::optional<unsigned> permissions) {
    const QByteArray target = QFile::encodeName(path);
    QByteArray temporary = temporaryTemplate(path);
    const int fd = ::mkostemp(temporary.data(), O_CLOEXEC);  // created 0600
    if (fd < 0) {
        return false;
    }
    const bool written =
        writeAll(fd, data) && ::fchmod(fd, finalMode(target, permissions)) == 0 && ::fsync(fd) == 0;
    const int savedErrno = errno;
    const bool closed = ::close(fd) == 0;
    if (!written || !closed || !moveIntoPlace(temporary, target, mode)) {
        const int failure = !written ? savedErrno : errno;
        ::unlink(temporary.constData());
        errno = failure;
        return false;
    }
    syncDirectory(QFile::encodeName(QFileInfo(path).absolutePath()));
    return true;
}

int removeLeftoverTemporaryFiles(const QString& path) {
    const QDir folder = QFileInfo(path).dir();
    const QString prefix = temporaryPrefix(path);
    int removed = 0;
    const QStringList names = folder.entryList(QDir::Files | QDir::Hidden | QDir::System);
    for (const QString& name : names) {
        if (name.size() == prefix.size() + kUniqueSuffixSize && name.startsWith(prefix) &&
            QFile::remove(folder.filePath(name))) {
            ++removed;
        }
    }
    return removed;
}
