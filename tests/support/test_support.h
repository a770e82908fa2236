// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <ostream>

// Readable Qt values in GoogleTest failure messages.
inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}
inline void PrintTo(const QByteArray& bytes, std::ostream* out) {
    *out << '"' << bytes.toStdString() << '"';
}
inline void PrintTo(const QStringList& list, std::ostream* out) {
    *out << list.join(QStringLiteral(", ")).toStdString();
}

// A fresh folder per test with the usual data and legacy sub-folders.
class TestFolder {
public:
    TestFolder();

    QString path(const QString& relative = {}) const;
    QString dataDir() const { return path(QStringLiteral("data/Quillix")); }
    QString legacyDir() const { return path(QStringLiteral("Documents/Quillix")); }

private:
    QTemporaryDir dir_;
};

QByteArray readFileBytes(const QString& path);
void writeFileBytes(const QString& path, const QByteArray& bytes);
// The inode number of a file (a failed look-up fails the test).
quint64 inodeOf(const QString& path);
// Permission bits (0777 mask) of a file or folder.
unsigned permissionBits(const QString& path);

// Runs the independent AES-GCM peer (Python's "cryptography" package) with
// `arguments`; returns its exit code.
int runCryptoPeer(const QStringList& arguments);
