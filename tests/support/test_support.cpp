// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "support/test_support.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

TestFolder::TestFolder() {
    QDir(dir_.path()).mkpath(QStringLiteral("Documents/Quillix"));
}

QString TestFolder::path(const QString& relative) const {
    return relative.isEmpty() ? dir_.path() : QDir(dir_.path()).filePath(relative);
}

QByteArray readFileBytes(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeFileBytes(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        file.write(bytes);
    }
}

quint64 inodeOf(const QString& path) {
    struct stat status {};
    EXPECT_EQ(::stat(QFile::encodeName(path).constData(), &status), 0) << path.toStdString();
    return status.st_ino;
}

unsigned permissionBits(const QString& path) {
    struct stat status {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0) {
        return 0;
    }
    return status.st_mode & 0777;
}

int runCryptoPeer(const QStringList& arguments) {
    QProcess peer;
    peer.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    peer.start(
        QStringLiteral("/usr/bin/python3"),
        QStringList{QStringLiteral(QUILLIX_TESTS_DIR "/storage/aesgcm_peer.py")} + arguments);
    if (!peer.waitForFinished(30000) || peer.exitStatus() != QProcess::NormalExit) {
        return -1;
    }
    return peer.exitCode();
}
