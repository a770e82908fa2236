// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "storage/screenshot_metadata_store.h"

#include <QFileInfo>

#include "storage/json_codec.h"

ScreenshotMetadataStore& ScreenshotMetadataStore::shared() {
    static auto* instance = new ScreenshotMetadataStore(dataDirectory());
    return *instance;
}

ScreenshotMetadataStore::ScreenshotMetadataStore(const QString& directory, QObject* parent)
    : QObject(parent), file_(directory, QStringLiteral("metadata.bin")) {
    load();
}

QString ScreenshotMetadataStore::keyFor(const QString& filePath) {
    return QFileInfo(filePath).fileName();
}

ScreenshotMetadata ScreenshotMetadataStore::recordFor(const QString& filePath) const {
    return metadata_.value(keyFor(filePath));
}

void ScreenshotMetadataStore::load() {
    file_.readEntries(EnvelopeFile::EntryList::object,
                      [this](const std::string& key, const nlohmann::ordered_json& value) {
                          const std::optional<ScreenshotMetadata> record = decodeMetadata(value);
                          if (!record) {
                              return false;
                          }
                          metadata_.insert(QString::fromStdString(key), *record);
                          return true;
                      });
}

void ScreenshotMetadataStore::setColorLabel(std::optional<ColorLabel> label,
                                            const QString& filePath) {
    const QString key = keyFor(filePath);
    store(key, {label, metadata_.value(key).event});
}

void ScreenshotMetadataStore::setEvent(const std::optional<ScreenshotEvent>& event,
                                       const QString& filePath) {
    const QString key = keyFor(filePath);
    store(key, {metadata_.value(key).colorLabel, event});
}

void ScreenshotMetadataStore::store(const QString& key, const ScreenshotMetadata& record) {
    if (record.isEmpty()) {
        metadata_.remove(key);
    } else {
        metadata_.insert(key, record);
    }
    save();
    Q_EMIT metadataChanged();
}

void ScreenshotMetadataStore::save() {
    // Keys are written in a stable order so equal dictionaries give equal files.
    QStringList keys = metadata_.keys();
    keys.sort();
    nlohmann::ordered_json json = nlohmann::ordered_json::object();
    for (const QString& key : keys) {
        json[key.toStdString()] = encodeMetadata(metadata_.value(key));
    }
    file_.write(encodeJson(json));
}
