// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QObject>
#include <QString>
#include <optional>

#include "storage/envelope_file.h"
#include "storage/hotkey_config.h"

// The three preferences kept in the sealed settings.bin: the hotkey bindings,
// the gallery's own-captures filter and the last parent folder of a new shelf.
// One shared instance, confined to the GUI thread. Every assignment, even of
// the current value, is announced and then saves the whole file.
class UserSettings : public QObject {
    Q_OBJECT

public:
    static UserSettings& shared();

    // Loads from `directory`/settings.bin, moving it in from `legacyDirectory`
    // first when only an old copy exists there.
    UserSettings(const QString& directory, const QString& legacyDirectory,
                 QObject* parent = nullptr);

    const HotkeyConfig& hotkeys() const { return hotkeys_; }
    void setHotkeys(const HotkeyConfig& hotkeys);
    void setHotkey(HotkeyAction action, const HotkeyBinding& binding);

    bool showOnlyQuillixItems() const { return showOnlyQuillixItems_; }
    void setShowOnlyQuillixItems(bool showOnly);

    const std::optional<QString>& lastShelfLocation() const { return lastShelfLocation_; }
    void setLastShelfLocation(const std::optional<QString>& folder);

    QString filePath() const { return file_.path(); }

Q_SIGNALS:
    void hotkeysChanged(const HotkeyConfig& hotkeys);
    void showOnlyQuillixItemsChanged(bool showOnly);
    void lastShelfLocationChanged();

private:
    void load();
    void save();

    EnvelopeFile file_;
    HotkeyConfig hotkeys_ = HotkeyConfig::defaults();
    bool showOnlyQuillixItems_ = true;
    std::optional<QString> lastShelfLocation_;
};
