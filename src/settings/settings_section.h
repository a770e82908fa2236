// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QString>
#include <array>

// The sections of the settings window, in the order the sidebar lists them.
enum class SettingsSection {
    general,
    hotkeys,
    storage,
    shelves,
    help,
    about,
};

inline constexpr std::array<SettingsSection, 6> kAllSettingsSections{
    SettingsSection::general, SettingsSection::hotkeys, SettingsSection::storage,
    SettingsSection::shelves, SettingsSection::help,    SettingsSection::about,
};

// The stored name of a section ("general", "hotkeys", …).
QString rawValue(SettingsSection section);
// What the sidebar shows: "General", "Hotkeys", …
QString sidebarTitle(SettingsSection section);
// The sidebar's symbol name: "gearshape", "keyboard", …
QString sidebarSymbol(SettingsSection section);
