// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "settings/settings_view.h"

#include <QHBoxLayout>
#include <QListWidget>
#include <QStackedWidget>

#include "settings/about_settings_view.h"
#include "settings/general_settings_view.h"
#include "settings/help_settings_view.h"
#include "settings/hotkeys_settings_view.h"
#include "settings/shelves_settings_view.h"
#include "settings/storage_settings_view.h"
#include "widgets/symbol_icon.h"
#include "widgets/widget_style.h"

namespace {

// In the accent colour, and in the highlighted text's colour on the
// selected row, whose background is the accent.
QIcon sidebarIcon(const QString& symbol, const QPalette& palette) {
    constexpr QSize kSize(16, 16);
    QIcon icon = symbolIcon(symbol, widget_style::accent(palette), kSize);
    for (const qreal ratio : {1.0, 2.0}) {
        icon.addPixmap(symbolPixmap(symbol, palette.color(QPalette::HighlightedText), kSize, ratio),
                       QIcon::Selected);
    }
    return icon;
}

}  // namespace

SettingsView::SettingsView(const SettingsServices& services, QWidget* parent) : QWidget(parent) {
    setAccessibleName(QStringLiteral("Settings"));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    buildSidebar();
    stack_ = new QStackedWidget(this);
    stack_->setAccessibleName(QStringLiteral("Settings section"));
    layout->addWidget(sidebar_);
    layout->addWidget(stack_, 1);
    buildSections(services);
    select(SettingsSection::general);
}

void SettingsView::buildSidebar() {
    sidebar_ = new QListWidget(this);
    sidebar_->setAccessibleName(QStringLiteral("Sections"));
    sidebar_->setFixedWidth(kSidebarWidth);
    sidebar_->setIconSize(QSize(16, 16));
    sidebar_->setFrameShape(QFrame::NoFrame);
    sidebar_->setSpacing(2);
    QPalette palette = sidebar_->palette();
    palette.setColor(QPalette::Base, widget_style::withAlpha(widget_style::primary(palette), 0.05));
    sidebar_->setPalette(palette);
    for (const SettingsSection section : kAllSettingsSections) {
        auto* item = new QListWidgetItem(sidebarIcon(sidebarSymbol(section), palette),
                                         sidebarTitle(section), sidebar_);
        item->setData(Qt::AccessibleTextRole, sidebarTitle(section));
        item->setSizeHint(QSize(kSidebarWidth - 8, 30));
    }
    connect(sidebar_, &QListWidget::currentRowChanged, this, [this](int row) {
        if (row >= 0 && row < static_cast<int>(kAllSettingsSections.size())) {
            select(kAllSettingsSections.at(static_cast<std::size_t>(row)));
        }
    });
}

void SettingsView::buildSections(const SettingsServices& services) {
    general_ = new GeneralSettingsView(services, stack_);
    hotkeys_ = new HotkeysSettingsView(
        services.settings, services.keyboardLayout,
        HotkeyGrabPause{services.pauseHotkeys, services.resumeHotkeys}, stack_);
    storage_ = new StorageSettingsView(services, stack_);
    shelves_ = new ShelvesSettingsView(services, stack_);
    help_ = new HelpSettingsView(stack_);
    about_ = new AboutSettingsView(services.checkForUpdates, stack_);
    // In the sidebar's order.
    for (QWidget* section :
         std::initializer_list<QWidget*>{general_, hotkeys_, storage_, shelves_, help_, about_}) {
        stack_->addWidget(section);
    }
    connect(general_, &GeneralSettingsView::customBarIconChanged, this,
            &SettingsView::customBarIconChanged);
}

void SettingsView::select(SettingsSection section) {
    // A shortcut being recorded ends, unchanged, when its section is left.
    if (section != SettingsSection::hotkeys) {
        hotkeys_->stopRecording();
    }
    selected_ = section;
    const int row = static_cast<int>(section);
    if (sidebar_->currentRow() != row) {
        const QSignalBlocker quiet(sidebar_);
        sidebar_->setCurrentRow(row);
    }
    stack_->setCurrentIndex(row);
}

void SettingsView::hideEvent(QHideEvent* event) {
    hotkeys_->stopRecording();
    QWidget::hideEvent(event);
}
