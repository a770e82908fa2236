// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QString>
#include <nlohmann/json.hpp>
#include <optional>

#include "storage/color_label.h"

// A short title a user gives a capture, with a note that may be empty.
struct ScreenshotEvent {
    QString title;
    QString note;

    bool operator==(const ScreenshotEvent&) const = default;
};

// The tags of one capture file. A stored record never has both fields empty.
struct ScreenshotMetadata {
    std::optional<ColorLabel> colorLabel;
    std::optional<ScreenshotEvent> event;

    bool isEmpty() const { return !colorLabel && !event; }
    bool operator==(const ScreenshotMetadata&) const = default;
};

// {"colorLabel": "blue", "event": {"title": …, "note": …}}, absent fields
// omitted.
nlohmann::ordered_json encodeMetadata(const ScreenshotMetadata& metadata);
// Nothing when the object has an unknown label, an event without its title or
// note, or a member of the wrong type.
std::optional<ScreenshotMetadata> decodeMetadata(const nlohmann::ordered_json& json);
