// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "storage/envelope_file.h"

#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <cerrno>

#include "storage/app_crypto.h"
#include "storage/atomic_file.h"
#include "storage/json_codec.h"

namespace {

constexpr auto kFolderName = "Quillix";

// The data folder holds the user's private state: create it 0700.
void createPrivateDirectory(const QString& directory) {
    if (QFileInfo::exists(directory)) {
        return;
    }
    QDir().mkpath(directory);
    ::chmod(QFile::encodeName(directory).constData(), 0700);
}

void moveLegacyFileIn(const QString& target, const QString& legacyDirectory,
                      const QStringList& legacyNames) {
    if (legacyDirectory.isEmpty()) {
        return;
    }
    for (const QString& name : legacyNames) {
        if (QFileInfo::exists(target)) {
            return;
        }
        const QString legacy = QDir(legacyDirectory).filePath(name);
        if (QFileInfo::exists(legacy)) {
            QFile::rename(legacy, target);
        }
    }
}

// `base`, or `base`-2, -3, … whichever does not exist yet.
QString numberedName(const QString& base, int number) {
    return number <= 1 ? base : base + QLatin1Char('-') + QString::number(number);
}

QString firstFreeName(const QString& base) {
    QString candidate = base;
    for (int number = 2; QFileInfo::exists(candidate); ++number) {
        candidate = numberedName(base, number);
    }
    return candidate;
}

// Copies the file through the atomic write, never over an earlier copy.
bool copyUnderFreeName(const QString& source, const QString& base) {
    QFile file(source);
    if (!file.open(QIODevice::ReadOnly)) {
        return false;
    }
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        return false;
    }
    for (int number = 1;; ++number) {
        if (writeFileAtomically(numberedName(base, number), bytes, AtomicWriteMode::neverReplace,
                                0600)) {
            return true;
        }
        if (errno != EEXIST) {
            return false;
        }
    }
}

}  // namespace

QString dataDirectory() {
    return QDir(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation))
        .filePath(QLatin1String(kFolderName));
}

QString legacyDataDirectory() {
    return QDir(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation))
        .filePath(QLatin1String(kFolderName));
}

std::optional<QByteArray> readEnvelopeFile(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    const QByteArray raw = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        return std::nullopt;
    }
    if (std::optional<QByteArray> plaintext = AppCrypto::decrypt(raw)) {
        return plaintext;
    }
    return raw;
}

bool writeEnvelopeFile(const QString& path, const QByteArray& json) {
    const std::optional<QByteArray> envelope = AppCrypto::encrypt(json);
    return envelope && writeFileAtomically(path, *envelope, AtomicWriteMode::replace, 0600);
}

EnvelopeFile::EnvelopeFile(const QString& directory, const QString& fileName,
                           const QString& legacyDirectory, const QStringList& legacyNames)
    : path_(QDir(directory).filePath(fileName)) {
    createPrivateDirectory(directory);
    // What a save cut short by a crash or a kill left behind; the file itself
    // is whole, the old document or the new one.
    removeLeftoverTemporaryFiles(path_);
    moveLegacyFileIn(path_, legacyDirectory, legacyNames);
}

std::optional<QByteArray> EnvelopeFile::read() {
    std::optional<QByteArray> plaintext = readEnvelopeFile(path_);
    if (!plaintext && QFileInfo::exists(path_)) {
        keepAsideBeforeWrite_ = true;
    }
    return plaintext;
}

std::optional<nlohmann::ordered_json> EnvelopeFile::readJson() {
    const std::optional<QByteArray> plaintext = read();
    if (!plaintext) {
        return std::nullopt;
    }
    std::optional<nlohmann::ordered_json> json = decodeJson(*plaintext);
    if (!json) {
        markUndecodable();
    }
    return json;
}

void EnvelopeFile::readEntries(
    EntryList shape,
    const std::function<bool(const std::string& name, const nlohmann::ordered_json& entry)>&
        takeEntry) {
    const std::optional<nlohmann::ordered_json> json = readJson();
    if (!json) {
        return;
    }
    const bool expectedShape = shape == EntryList::array ? json->is_array() : json->is_object();
    if (!expectedShape) {
        markUndecodable();
        return;
    }
    for (const auto& entry : json->items()) {
        if (!takeEntry(entry.key(), entry.value())) {
            markUndecodable();
        }
    }
}

bool EnvelopeFile::write(const QByteArray& json) {
    if (keepAsideBeforeWrite_) {
        keepDamagedFileAside();
    }
    return writeEnvelopeFile(path_, json);
}

void EnvelopeFile::keepDamagedFileAside() {
    // A copy keeps the damaged file in place until the new one replaces it.
    // A file that cannot be copied (unreadable, or not a file at all) is
    // moved aside instead; one that cannot even be moved is overwritten, as
    // the write rule does with any damaged file: a store that could never
    // save again would lose far more.
    const QString aside = path_ + QStringLiteral(".unreadable");
    if (QFileInfo::exists(path_) && !copyUnderFreeName(path_, aside)) {
        QFile::rename(path_, firstFreeName(aside));
    }
    keepAsideBeforeWrite_ = false;
}
