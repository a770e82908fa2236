// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "storage/shelf_item.h"

#include <cmath>

namespace {

// 2001-01-01 00:00:00 UTC, the epoch of the stored dates, in Unix milliseconds.
constexpr qint64 kReferenceDateMs = 978307200000;
// About 3000 years either way: anything further is damage, not a date.
constexpr double kLatestSeconds = 1e11;

QString qtText(const nlohmann::ordered_json& value) {
    return QString::fromStdString(value.get<std::string>());
}

const nlohmann::ordered_json* member(const nlohmann::ordered_json& json, const char* key) {
    const auto found = json.find(key);
    return found == json.end() ? nullptr : &*found;
}

}  // namespace

nlohmann::ordered_json encodeShelfItem(const ShelfItem& shelf) {
    const double seconds =
        static_cast<double>(shelf.createdAt.toMSecsSinceEpoch() - kReferenceDateMs) / 1000.0;
    nlohmann::ordered_json json = nlohmann::ordered_json::object();
    json["id"] = shelf.id.toString(QUuid::WithoutBraces).toUpper().toStdString();
    json["name"] = shelf.name.toStdString();
    json["folderURLPath"] = shelf.folderPath.toStdString();
    json["createdAt"] = seconds;
    return json;
}

std::optional<ShelfItem> decodeShelfItem(const nlohmann::ordered_json& json) {
    if (!json.is_object()) {
        return std::nullopt;
    }
    const auto* id = member(json, "id");
    const auto* name = member(json, "name");
    const auto* folder = member(json, "folderURLPath");
    const auto* created = member(json, "createdAt");
    if (id == nullptr || name == nullptr || folder == nullptr || created == nullptr ||
        !id->is_string() || !name->is_string() || !folder->is_string() || !created->is_number()) {
        return std::nullopt;
    }
    const QUuid uuid = QUuid::fromString(qtText(*id));
    const double seconds = created->get<double>();
    if (uuid.isNull() || !(std::abs(seconds) < kLatestSeconds)) {
        return std::nullopt;
    }
    const qint64 ms = std::llround(seconds * 1000.0) + kReferenceDateMs;
    return ShelfItem{uuid, qtText(*name), qtText(*folder),
                     QDateTime::fromMSecsSinceEpoch(ms, Qt::UTC)};
}
