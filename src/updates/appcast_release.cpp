// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "updates/appcast_release.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace {

std::optional<QString> optionalText(const QJsonObject& object, const char* key) {
    const QJsonValue value = object.value(QLatin1String(key));
    return value.isString() ? std::optional<QString>(value.toString()) : std::nullopt;
}

}  // namespace

std::optional<AppcastRelease> AppcastRelease::fromJson(const QByteArray& body) {
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(body, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject()) {
        return std::nullopt;
    }
    const QJsonObject object = document.object();
    const std::optional<QString> version = optionalText(object, "version");
    const std::optional<QString> downloadURL = optionalText(object, "downloadURL");
    if (!version || !downloadURL) {
        return std::nullopt;
    }
    return AppcastRelease{*version, *downloadURL, optionalText(object, "releaseNotes"),
                          optionalText(object, "sha256")};
}
