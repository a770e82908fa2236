// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QWidget>

#include "settings/settings_section.h"
#include "settings/settings_services.h"

class AboutSettingsView;
class GeneralSettingsView;
class HelpSettingsView;
class HotkeysSettingsView;
class QListWidget;
class QStackedWidget;
class ShelvesSettingsView;
class StorageSettingsView;

// The settings window's content: the sidebar of sections and, beside it,
// the selected section. General is selected first.
class SettingsView : public QWidget {
    Q_OBJECT

public:
    static constexpr int kSidebarWidth = 180;

    explicit SettingsView(const SettingsServices& services, QWidget* parent = nullptr);

    SettingsSection selected() const { return selected_; }
    void select(SettingsSection section);

    QListWidget* sidebar() const { return sidebar_; }
    GeneralSettingsView* general() const { return general_; }
    HotkeysSettingsView* hotkeys() const { return hotkeys_; }
    StorageSettingsView* storage() const { return storage_; }
    ShelvesSettingsView* shelves() const { return shelves_; }
    HelpSettingsView* help() const { return help_; }
    AboutSettingsView* about() const { return about_; }

Q_SIGNALS:
    void customBarIconChanged(const QString& path);

protected:
    void hideEvent(QHideEvent* event) override;

private:
    void buildSidebar();
    void buildSections(const SettingsServices& services);

    SettingsSection selected_ = SettingsSection::general;
    QListWidget* sidebar_ = nullptr;
    QStackedWidget* stack_ = nullptr;
    GeneralSettingsView* general_ = nullptr;
    HotkeysSettingsView* hotkeys_ = nullptr;
    StorageSettingsView* storage_ = nullptr;
    ShelvesSettingsView* shelves_ = nullptr;
    HelpSettingsView* help_ = nullptr;
    AboutSettingsView* about_ = nullptr;
};
