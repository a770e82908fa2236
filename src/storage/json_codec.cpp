// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "storage/json_codec.h"

QByteArray encodeJson(const nlohmann::ordered_json& document) {
    // Replace rather than throw on invalid UTF-8: a save must never abort.
    const std::string text =
        document.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
    return QByteArray(text.data(), static_cast<qsizetype>(text.size()));
}

std::optional<nlohmann::ordered_json> decodeJson(const QByteArray& bytes) {
    nlohmann::ordered_json document = nlohmann::ordered_json::parse(
        bytes.cbegin(), bytes.cend(), /*callback=*/nullptr, /*allow_exceptions=*/false);
    if (document.is_discarded()) {
        return std::nullopt;
    }
    return document;
}
