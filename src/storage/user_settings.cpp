// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "storage/user_settings.h"

#include "storage/json_codec.h"

namespace {

constexpr auto kFileName = "settings.bin";

struct SettingsData {
    HotkeyConfig hotkeys;
    std::optional<QString> lastShelfLocation;
    bool showOnlyQuillixItems = true;
};

// "hotkeys" is required; the other two members are optional, but a member of
// the wrong type fails the whole document.
std::optional<SettingsData> decodeSettingsData(const nlohmann::ordered_json& json) {
    if (!json.is_object()) {
        return std::nullopt;
    }
    const auto hotkeys = json.find("hotkeys");
    if (hotkeys == json.end()) {
        return std::nullopt;
    }
    std::optional<HotkeyConfig> config = HotkeyConfig::fromJson(*hotkeys);
    if (!config) {
        return std::nullopt;
    }
    SettingsData data{*config, std::nullopt, true};
    if (const auto location = json.find("lastShelfLocation");
        location != json.end() && !location->is_null()) {
        if (!location->is_string()) {
            return std::nullopt;
        }
        data.lastShelfLocation = QString::fromStdString(location->get<std::string>());
    }
    if (const auto showOnly = json.find("showOnlyQuillixItems");
        showOnly != json.end() && !showOnly->is_null()) {
        if (!showOnly->is_boolean()) {
            return std::nullopt;
        }
        data.showOnlyQuillixItems = showOnly->get<bool>();
    }
    return data;
}

}  // namespace

UserSettings& UserSettings::shared() {
    static auto* instance = new UserSettings(dataDirectory(), legacyDataDirectory());
    return *instance;
}

UserSettings::UserSettings(const QString& directory, const QString& legacyDirectory,
                           QObject* parent)
    : QObject(parent),
      file_(directory, QLatin1String(kFileName), legacyDirectory, {QLatin1String(kFileName)}) {
    load();
}

// Every path through the load ends with the two setters, so the file on disk
// is sealed and in the current format after the first start.
void UserSettings::load() {
    SettingsData data{HotkeyConfig::defaults(), std::nullopt, true};
    if (const std::optional<nlohmann::ordered_json> json = file_.readJson()) {
        if (std::optional<SettingsData> decoded = decodeSettingsData(*json)) {
            data = *decoded;
        } else if (std::optional<HotkeyConfig> legacy = HotkeyConfig::fromJson(*json)) {
            // Older versions stored only the bindings, at the top level.
            data.hotkeys = *legacy;
        } else {
            file_.markUndecodable();
        }
    }
    hotkeys_ = data.hotkeys;
    setLastShelfLocation(data.lastShelfLocation);
    setShowOnlyQuillixItems(data.showOnlyQuillixItems);
}

void UserSettings::setHotkeys(const HotkeyConfig& hotkeys) {
    hotkeys_ = hotkeys;
    Q_EMIT hotkeysChanged(hotkeys_);
    save();
}

void UserSettings::setHotkey(HotkeyAction action, const HotkeyBinding& binding) {
    HotkeyConfig changed = hotkeys_;
    changed.setBinding(action, binding);
    setHotkeys(changed);
}

void UserSettings::setShowOnlyQuillixItems(bool showOnly) {
    showOnlyQuillixItems_ = showOnly;
    Q_EMIT showOnlyQuillixItemsChanged(showOnly);
    save();
}

void UserSettings::setLastShelfLocation(const std::optional<QString>& folder) {
    lastShelfLocation_ = folder;
    Q_EMIT lastShelfLocationChanged();
    save();
}

void UserSettings::save() {
    nlohmann::ordered_json json = nlohmann::ordered_json::object();
    json["hotkeys"] = hotkeys_.toJson();
    if (lastShelfLocation_) {
        json["lastShelfLocation"] = lastShelfLocation_->toStdString();
    }
    json["showOnlyQuillixItems"] = showOnlyQuillixItems_;
    file_.write(encodeJson(json));
}
