// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QScrollArea>
#include <QString>
#include <functional>

class QVBoxLayout;
class SettingsGroup;

// The frame of one settings section: its title over a scrolling column of
// groups and other content.
class SettingsPage : public QScrollArea {
    Q_OBJECT

public:
    explicit SettingsPage(const QString& title, QWidget* parent = nullptr);

    SettingsGroup* addGroup(const QString& title);
    void addWidget(QWidget* widget);
    // Ends the column: what follows the last group stays at the top.
    void finish();

    // Asks for one folder in a dialog over the window, whose accept button
    // reads "Select"; `chosen` gets the folder's path.
    void chooseFolder(const QString& title, std::function<void(const QString&)> chosen);

private:
    QWidget* column_ = nullptr;
    QVBoxLayout* layout_ = nullptr;
};
