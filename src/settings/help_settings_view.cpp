// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "settings/help_settings_view.h"

#include <QLabel>

#include "settings/help_contact_row.h"

QString HelpSettingsView::supportEmail() {
    return QStringLiteral(QUILLIX_SUPPORT_EMAIL);
}

QString HelpSettingsView::communityURL() {
    return QStringLiteral(QUILLIX_COMMUNITY_URL);
}

HelpSettingsView::HelpSettingsView(QWidget* parent)
    : SettingsPage(QStringLiteral("Help & Feedback"), parent) {
    auto* text = new QLabel(QStringLiteral(
        "We'd love to hear from you! Feel free to reach out with any questions or feedback."));
    text->setWordWrap(true);
    text->setAccessibleName(text->text());
    addWidget(text);
    email_ = new HelpContactRow(QStringLiteral("Support email"), supportEmail());
    community_ = new HelpContactRow(QStringLiteral("Discord server"), communityURL());
    addWidget(email_);
    addWidget(community_);
    finish();
}
