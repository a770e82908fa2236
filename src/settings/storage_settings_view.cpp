// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "settings/storage_settings_view.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

#include "settings/settings_group.h"
#include "storage/preferences.h"

StorageSettingsView::StorageSettingsView(const SettingsServices& services, QWidget* parent)
    : SettingsPage(QStringLiteral("Storage"), parent), services_(services) {
    Preferences& preferences = services_.preferences;
    SettingsGroup* limits = addGroup(QStringLiteral("Limits"));
    maxScreenshots_ = new SettingsStepper(
        kMaxScreenshotsRange, QStringLiteral("screenshots"),
        [](int count) { return QStringLiteral("Keep up to %1 screenshots").arg(count); });
    autoClearDays_ = new SettingsStepper(kAutoClearDaysRange, QStringLiteral("days"), [](int days) {
        return QStringLiteral("Auto-clear after %1 days").arg(days);
    });
    limits->addRow(maxScreenshots_);
    limits->addRow(autoClearDays_);
    connect(maxScreenshots_, &SettingsStepper::stepped, &preferences,
            &Preferences::setMaxScreenshots);
    connect(autoClearDays_, &SettingsStepper::stepped, &preferences,
            &Preferences::setAutoClearDays);

    SettingsGroup* location = addGroup(QStringLiteral("Save Location"));
    auto* trailing = new QWidget;
    auto* layout = new QHBoxLayout(trailing);
    layout->setContentsMargins(0, 0, 0, 0);
    saveFolder_ = new QLabel(trailing);
    saveFolder_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* select = new QPushButton(QStringLiteral("Select"), trailing);
    select->setAccessibleName(QStringLiteral("Select save folder"));
    layout->addWidget(saveFolder_);
    layout->addWidget(select);
    location->addLabelledRow(QStringLiteral("Save to"), trailing);
    connect(select, &QPushButton::clicked, this, [this] {
        chooseFolder(QStringLiteral("Select Save Folder"),
                     [this](const QString& folder) { chooseSaveFolder(folder); });
    });
    finish();

    showValues();
    connect(&preferences, &Preferences::valueChanged, this, &StorageSettingsView::showValues);
}

void StorageSettingsView::showValues() {
    const Preferences& preferences = services_.preferences;
    maxScreenshots_->setValue(preferences.maxScreenshots());
    autoClearDays_->setValue(preferences.autoClearDays());
    const QString folder = preferences.customSaveFolder().value_or(QStringLiteral("~/Desktop"));
    saveFolder_->setText(folder);
    saveFolder_->setAccessibleName(QStringLiteral("Save to ") + folder);
}

void StorageSettingsView::chooseSaveFolder(const QString& folder) {
    services_.preferences.setCustomSaveFolder(folder);
}
