#include "capture/capture_registry.h"

#include <sys/stat.h>

#include <QFile>

#include "storage/json_codec.h"

namespace {

constexpr auto kFileName = "registry.bin";

}  // namespace

CaptureRegistry& CaptureRegistry::shared() {
    static CaptureRegistry* instance = new CaptureRegistry(dataDirectory(), legacyDataDirectory());
    return *instance;
}

CaptureRegistry::CaptureRegistry(const QString& directory, const QString& legacyDirectory)
    : file_(directory, QLatin1String(kFileName), legacyDirectory,
            // A legacy registry.json wins over a legacy registry.bin.
            {QStringLiteral("registry.json"), QLatin1String(kFileName)}) {
    load();
}

void CaptureRegistry::load() {
    const std::optional<QByteArray> plaintext = file_.read();
    if (!plaintext) {
        return;
    }
    const std::optional<nlohmann::ordered_json> json = decodeJson(*plaintext);
    if (!json || !json->is_array()) {
        file_.markUndecodable();
        return;
    }
    // One bad entry costs only itself; the file is still kept aside.
    for (const auto& element : *json) {
        if (element.is_number_unsigned()) {
            capturedInodes_.insert(element.get<std::uint64_t>());
        } else {
            file_.markUndecodable();
        }
    }
}

void CaptureRegistry::record(const QString& filePath) {
    struct stat status {};
    if (::stat(QFile::encodeName(filePath).constData(), &status) != 0) {
        return;
    }
    capturedInodes_.insert(static_cast<quint64>(status.st_ino));
    save();
}

void CaptureRegistry::moveRecord(quint64 previousInode, const QString& filePath) {
    struct stat status {};
    if (!capturedInodes_.contains(previousInode) ||
        ::stat(QFile::encodeName(filePath).constData(), &status) != 0) {
        return;
    }
    capturedInodes_.erase(previousInode);
    capturedInodes_.insert(static_cast<quint64>(status.st_ino));
    save();
}

void CaptureRegistry::save() {
    nlohmann::ordered_json json = nlohmann::ordered_json::array();
    for (quint64 inode : capturedInodes_) {
        json.push_back(inode);
    }
    file_.write(encodeJson(json));
}
