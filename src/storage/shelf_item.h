// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QDateTime>
#include <QString>
#include <QUuid>
#include <nlohmann/json.hpp>
#include <optional>

// One shelf: a named collection of captures kept in an ordinary folder.
struct ShelfItem {
    QUuid id;
    // The name as the user typed it.
    QString name;
    // The shelf's folder, "NAME:shelf" under its parent.
    QString folderPath;
    QDateTime createdAt;

    bool operator==(const ShelfItem&) const = default;
};

// {"id": "UPPER-CASE-UUID", "name": …, "folderURLPath": "/path", "createdAt":
// seconds since 2001-01-01 00:00:00 UTC}, members in that order.
nlohmann::ordered_json encodeShelfItem(const ShelfItem& shelf);
// Nothing when a member is missing or of the wrong type, the id is no UUID or
// the date lies beyond any calendar.
std::optional<ShelfItem> decodeShelfItem(const nlohmann::ordered_json& json);
