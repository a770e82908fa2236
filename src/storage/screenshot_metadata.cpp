// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "storage/screenshot_metadata.h"

namespace {

QString qtText(const nlohmann::ordered_json& value) {
    return QString::fromStdString(value.get<std::string>());
}

std::optional<ScreenshotEvent> decodeEvent(const nlohmann::ordered_json& json) {
    if (!json.is_object()) {
        return std::nullopt;
    }
    const auto title = json.find("title");
    const auto note = json.find("note");
    if (title == json.end() || note == json.end() || !title->is_string() || !note->is_string()) {
        return std::nullopt;
    }
    return ScreenshotEvent{qtText(*title), qtText(*note)};
}

}  // namespace

nlohmann::ordered_json encodeMetadata(const ScreenshotMetadata& metadata) {
    nlohmann::ordered_json json = nlohmann::ordered_json::object();
    if (metadata.colorLabel) {
        json["colorLabel"] = colorLabelRawValue(*metadata.colorLabel).toStdString();
    }
    if (metadata.event) {
        json["event"] = {{"title", metadata.event->title.toStdString()},
                         {"note", metadata.event->note.toStdString()}};
    }
    return json;
}

std::optional<ScreenshotMetadata> decodeMetadata(const nlohmann::ordered_json& json) {
    if (!json.is_object()) {
        return std::nullopt;
    }
    ScreenshotMetadata metadata;
    // A null member reads as an absent one, as an optional field does.
    if (const auto label = json.find("colorLabel"); label != json.end() && !label->is_null()) {
        if (!label->is_string()) {
            return std::nullopt;
        }
        metadata.colorLabel = colorLabelFromRawValue(qtText(*label));
        if (!metadata.colorLabel) {
            return std::nullopt;
        }
    }
    if (const auto event = json.find("event"); event != json.end() && !event->is_null()) {
        metadata.event = decodeEvent(*event);
        if (!metadata.event) {
            return std::nullopt;
        }
    }
    return metadata;
}
