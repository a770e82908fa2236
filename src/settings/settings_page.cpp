// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "settings/settings_page.h"

#include <QFileDialog>
#include <QLabel>
#include <QVBoxLayout>

#include "settings/settings_group.h"
#include "widgets/widget_style.h"

SettingsPage::SettingsPage(const QString& title, QWidget* parent) : QScrollArea(parent) {
    setAccessibleName(title + QStringLiteral(" section"));
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    column_ = new QWidget(this);
    column_->setAccessibleName(title + QStringLiteral(" settings"));
    layout_ = new QVBoxLayout(column_);
    layout_->setContentsMargins(24, 20, 24, 20);
    layout_->setSpacing(18);
    if (!title.isEmpty()) {
        auto* heading = new QLabel(title, column_);
        heading->setFont(widget_style::font(font(), 20, QFont::Bold));
        layout_->addWidget(heading);
    }
    setWidget(column_);
}

SettingsGroup* SettingsPage::addGroup(const QString& title) {
    auto* group = new SettingsGroup(title, column_);
    layout_->addWidget(group);
    return group;
}

void SettingsPage::addWidget(QWidget* widget) {
    widget->setParent(column_);
    layout_->addWidget(widget);
}

void SettingsPage::finish() {
    layout_->addStretch(1);
}

void SettingsPage::chooseFolder(const QString& title, std::function<void(const QString&)> chosen) {
    auto* dialog = new QFileDialog(window(), title);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly);
    dialog->setLabelText(QFileDialog::Accept, QStringLiteral("Select"));
    dialog->setAccessibleName(title);
    connect(dialog, &QFileDialog::fileSelected, this, std::move(chosen));
    dialog->open();
}
