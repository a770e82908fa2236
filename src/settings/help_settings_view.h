// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include "settings/settings_page.h"

class HelpContactRow;

// The "Help" section: how to reach us, each address ready to copy.
class HelpSettingsView : public SettingsPage {
    Q_OBJECT

public:
    // The addresses this build was made with.
    static QString supportEmail();
    static QString communityURL();

    explicit HelpSettingsView(QWidget* parent = nullptr);

    HelpContactRow* emailRow() const { return email_; }
    HelpContactRow* communityRow() const { return community_; }

private:
    HelpContactRow* email_ = nullptr;
    HelpContactRow* community_ = nullptr;
};
