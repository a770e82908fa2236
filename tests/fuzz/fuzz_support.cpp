// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "fuzz_support.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <QTemporaryDir>

namespace {

QTemporaryDir* scratch() {
    static auto* folder = new QTemporaryDir;
    return folder;
}

}  // namespace

namespace fuzz_support {

void initialise(int* argc, char*** argv) {
    static QCoreApplication application(*argc, *argv);
    // Every rejected input would log; the fuzzer's own output is what counts.
    QLoggingCategory::setFilterRules(QStringLiteral("*=false"));
    qputenv("XDG_DATA_HOME", scratch()->filePath(QStringLiteral("data")).toUtf8());
}

QByteArray bytes(const uint8_t* data, size_t size) {
    return QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
}

QString freshFolder() {
    QDir folder(scratch()->filePath(QStringLiteral("input")));
    folder.removeRecursively();
    folder.mkpath(QStringLiteral("."));
    return folder.path();
}

QString writeFile(const QString& folder, const QString& name, const QByteArray& content) {
    const QString path = QDir(folder).filePath(name);
    QFile file(path);
    if (file.open(QIODevice::WriteOnly)) {
        file.write(content);
    }
    return path;
}

}  // namespace fuzz_support
