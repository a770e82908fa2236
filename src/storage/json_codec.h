// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QByteArray>
#include <nlohmann/json.hpp>
#include <optional>

// JSON as the data files hold it: compact, members in the order they were
// inserted, UTF-8 as it is.
QByteArray encodeJson(const nlohmann::ordered_json& document);

// Nothing when the bytes are not one well-formed JSON document.
std::optional<nlohmann::ordered_json> decodeJson(const QByteArray& bytes);
