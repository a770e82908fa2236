// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "storage/file_move.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUuid>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <vector>

namespace {

constexpr size_t kCopyBufferSize = 1 << 16;

bool pathExists(const QByteArray& path) {
    struct stat status {};
    return ::lstat(path.constData(), &status) == 0;
}

// rename(2) that refuses an existing target in one step. File systems without
// RENAME_NOREPLACE get a check right before the rename, the best left there.
int renamePath(const QByteArray& from, const QByteArray& to) {
    if (::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0) {
        return 0;
    }
    const int error = errno;
    if (error != EINVAL && error != ENOSYS) {
        return error;
    }
    if (pathExists(to)) {
        return EEXIST;
    }
    return ::rename(from.constData(), to.constData()) == 0 ? 0 : errno;
}

// Makes a folder's entries durable.
void syncFolder(const QByteArray& folder) {
    const int fd = ::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        ::fsync(fd);
        ::close(fd);
    }
}

int writeAll(int fd, const char* data, size_t size) {
    while (size > 0) {
        const ssize_t written = ::write(fd, data, size);
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return written == 0 ? EIO : errno;
        }
        data += written;
        size -= static_cast<size_t>(written);
    }
    return 0;
}

// Copies all bytes and flushes them; a file that changed size meanwhile
// fails rather than being taken half-copied.
int copyContents(int in, int out, off_t expectedSize) {
    std::vector<char> buffer(kCopyBufferSize);
    off_t copied = 0;
    for (;;) {
        const ssize_t count = ::read(in, buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            return errno;
        }
        if (count == 0) {
            break;
        }
        if (const int error = writeAll(out, buffer.data(), static_cast<size_t>(count))) {
            return error;
        }
        copied += count;
    }
    if (copied != expectedSize) {
        return EIO;
    }
    return ::fsync(out) == 0 ? 0 : errno;
}

int copyFile(const QByteArray& from, const QByteArray& to, const struct stat& status) {
    const int in = ::open(from.constData(), O_RDONLY | O_CLOEXEC);
    if (in < 0) {
        return errno;
    }
    const int out = ::open(to.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    int error = out < 0 ? errno : copyContents(in, out, status.st_size);
    if (out >= 0) {
        const std::array<timespec, 2> times = {status.st_atim, status.st_mtim};
        if (error == 0 && ::fchmod(out, status.st_mode & 07777) != 0) {
            error = errno;
        }
        ::futimens(out, times.data());
        if (::close(out) != 0 && error == 0) {
            error = errno;
        }
    }
    ::close(in);
    return error;
}

int copyLink(const QByteArray& from, const QByteArray& to) {
    std::array<char, PATH_MAX> target{};
    const ssize_t length = ::readlink(from.constData(), target.data(), target.size());
    if (length < 0) {
        return errno;
    }
    if (static_cast<size_t>(length) >= target.size()) {
        return ENAMETOOLONG;
    }
    return ::symlink(target.data(), to.constData()) == 0 ? 0 : errno;
}

int copyEntry(const QByteArray& from, const QByteArray& to);

int copyFolderEntries(DIR* folder, const QByteArray& from, const QByteArray& to) {
    for (;;) {
        errno = 0;
        const dirent* entry = ::readdir(folder);
        if (entry == nullptr) {
            return errno;
        }
        const QByteArray name(entry->d_name);
        if (name == "." || name == "..") {
            continue;
        }
        if (const int error = copyEntry(from + '/' + name, to + '/' + name)) {
            return error;
        }
    }
}

// The folder is made private while it fills and takes the source's mode and
// times at the end.
int copyFolder(const QByteArray& from, const QByteArray& to, const struct stat& status) {
    if (::mkdir(to.constData(), 0700) != 0) {
        return errno;
    }
    DIR* folder = ::opendir(from.constData());
    if (folder == nullptr) {
        return errno;
    }
    int error = copyFolderEntries(folder, from, to);
    ::closedir(folder);
    if (error == 0 && ::chmod(to.constData(), status.st_mode & 07777) != 0) {
        error = errno;
    }
    const std::array<timespec, 2> times = {status.st_atim, status.st_mtim};
    ::utimensat(AT_FDCWD, to.constData(), times.data(), 0);
    syncFolder(to);
    return error;
}

// Files, folders and symbolic links are copied; sockets, pipes and devices
// fail the copy rather than being dropped on the way.
int copyEntry(const QByteArray& from, const QByteArray& to) {
    struct stat status {};
    if (::lstat(from.constData(), &status) != 0) {
        return errno;
    }
    if (S_ISDIR(status.st_mode)) {
        return copyFolder(from, to, status);
    }
    if (S_ISREG(status.st_mode)) {
        return copyFile(from, to, status);
    }
    if (S_ISLNK(status.st_mode)) {
        return copyLink(from, to);
    }
    return EOPNOTSUPP;
}

void removeTree(const QByteArray& path) {
    std::error_code ignored;
    std::filesystem::remove_all(std::filesystem::path(path.toStdString()), ignored);
}

QByteArray parentOf(const QByteArray& path) {
    const qsizetype slash = path.lastIndexOf('/');
    return slash <= 0 ? QByteArray("/") : path.left(slash);
}

int moveAcrossFileSystems(const QByteArray& from, const QByteArray& to) {
    // Deleting the source needs a writable parent: find out before copying.
    if (::access(parentOf(from).constData(), W_OK) != 0) {
        return errno;
    }
    const QByteArray name = to.mid(parentOf(to).size() + 1);
    const QByteArray temporary = parentOf(to) + "/." + name + ".moving-" +
                                 QUuid::createUuid().toByteArray(QUuid::WithoutBraces);
    int error = copyEntry(from, temporary);
    if (error == 0) {
        error = renamePath(temporary, to);
    }
    if (error != 0) {
        removeTree(temporary);
        return error;
    }
    syncFolder(parentOf(to));
    removeTree(from);
    return 0;
}

}  // namespace

int moveWithoutReplacing(const QString& from, const QString& to) {
    const QByteArray source =
        QFile::encodeName(QDir::cleanPath(QFileInfo(from).absoluteFilePath()));
    const QByteArray target = QFile::encodeName(QDir::cleanPath(QFileInfo(to).absoluteFilePath()));
    if (pathExists(target)) {
        return EEXIST;
    }
    const int error = renamePath(source, target);
    return error == EXDEV ? moveAcrossFileSystems(source, target) : error;
}

int renameWithoutReplacing(const QString& from, const QString& to) {
    return renamePath(QFile::encodeName(from), QFile::encodeName(to));
}

QString systemErrorDescription(int error) {
    return QString::fromLocal8Bit(std::strerror(error));
}
