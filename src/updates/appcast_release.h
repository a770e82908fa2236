// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

// The latest release as the update feed (appcast.json) describes it.
struct AppcastRelease {
    QString version;
    QString downloadURL;  // the zip archive of the new Quillix.app
    std::optional<QString> releaseNotes;
    // Hex SHA-256 of the archive, checked before it is unpacked when present.
    std::optional<QString> sha256;

    // Nothing when the body is not a JSON object with text members "version"
    // and "downloadURL"; unknown members are ignored.
    static std::optional<AppcastRelease> fromJson(const QByteArray& body);
};
