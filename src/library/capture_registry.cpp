// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "library/capture_registry.h"

#include <sys/stat.h>

#include <QFile>

#include "storage/json_codec.h"

namespace {

constexpr auto kFileName = "registry.bin";

}  // namespace

CaptureRegistry& CaptureRegistry::shared() {
    static auto* instance = new CaptureRegistry(dataDirectory(), legacyDataDirectory());
    return *instance;
}

CaptureRegistry::CaptureRegistry(const QString& directory, const QString& legacyDirectory)
    : file_(directory, QLatin1String(kFileName), legacyDirectory,
            // A legacy registry.json wins over a legacy registry.bin.
            {QStringLiteral("registry.json"), QLatin1String(kFileName)}) {
    load();
}

void CaptureRegistry::load() {
    file_.readEntries(EnvelopeFile::EntryList::array,
                      [this](const std::string& /*index*/, const nlohmann::ordered_json& entry) {
                          if (!entry.is_number_unsigned()) {
                              return false;
                          }
                          capturedInodes_.insert(entry.get<std::uint64_t>());
                          return true;
                      });
}

std::optional<quint64> CaptureRegistry::inodeOf(const QString& filePath) {
    struct stat status {};
    if (::stat(QFile::encodeName(filePath).constData(), &status) != 0) {
        return std::nullopt;
    }
    return static_cast<quint64>(status.st_ino);
}

void CaptureRegistry::record(const QString& filePath) {
    const std::optional<quint64> inode = inodeOf(filePath);
    if (!inode) {
        return;
    }
    capturedInodes_.insert(*inode);
    save();
}

void CaptureRegistry::moveRecord(quint64 previousInode, const QString& filePath) {
    const std::optional<quint64> inode = inodeOf(filePath);
    if (!capturedInodes_.contains(previousInode) || !inode) {
        return;
    }
    capturedInodes_.erase(previousInode);
    capturedInodes_.insert(*inode);
    save();
}

void CaptureRegistry::save() {
    nlohmann::ordered_json json = nlohmann::ordered_json::array();
    for (quint64 inode : capturedInodes_) {
        json.push_back(inode);
    }
    file_.write(encodeJson(json));
}
