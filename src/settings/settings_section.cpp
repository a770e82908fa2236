// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "settings/settings_section.h"

namespace {

struct SectionText {
    const char* raw;
    const char* title;
    const char* symbol;
};

constexpr std::array<SectionText, kAllSettingsSections.size()> kTexts{{
    {"general", "General", "gearshape"},
    {"hotkeys", "Hotkeys", "keyboard"},
    {"storage", "Storage", "internaldrive"},
    {"shelves", "Shelves", "tray.2.fill"},
    {"help", "Help", "questionmark.circle"},
    {"about", "About", "info.circle"},
}};

const SectionText& textOf(SettingsSection section) {
    return kTexts.at(static_cast<std::size_t>(section));
}

}  // namespace

QString rawValue(SettingsSection section) {
    return QString::fromLatin1(textOf(section).raw);
}

QString sidebarTitle(SettingsSection section) {
    return QString::fromLatin1(textOf(section).title);
}

QString sidebarSymbol(SettingsSection section) {
    return QString::fromLatin1(textOf(section).symbol);
}
