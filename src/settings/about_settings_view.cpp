// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "settings/about_settings_view.h"

#include <QCoreApplication>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "widgets/symbol_icon.h"
#include "widgets/widget_style.h"

QString AboutSettingsView::version() {
    return QCoreApplication::applicationVersion();
}

QString AboutSettingsView::websiteURL() {
    return QStringLiteral(QUILLIX_WEBSITE_URL);
}

AboutSettingsView::AboutSettingsView(std::function<void()> checkForUpdates, QWidget* parent)
    : SettingsPage(QString(), parent), checkForUpdates_(std::move(checkForUpdates)) {
    setAccessibleName(QStringLiteral("About section"));
    auto* logo = new QLabel;
    logo->setPixmap(programLogo().pixmap(QSize(72, 72)));
    logo->setAccessibleName(QStringLiteral("Quillix logo"));
    auto* name = new QLabel(QStringLiteral("Quillix"));
    name->setFont(widget_style::font(font(), 24, QFont::Bold));
    auto* shownVersion = new QLabel(QStringLiteral("Version ") + version());
    shownVersion->setAccessibleName(shownVersion->text());
    check_ = new QPushButton;
    check_->setIcon(symbolIcon(QStringLiteral("arrow.clockwise"), widget_style::primary(palette()),
                               QSize(14, 14)));
    check_->setEnabled(static_cast<bool>(checkForUpdates_));
    if (!checkForUpdates_) {
        check_->setToolTip(QStringLiteral("This copy of Quillix cannot update itself"));
    }
    auto* credit = new QLabel(QStringLiteral("Made with care by the Quillix developers."));
    auto* link = new QLabel(QStringLiteral("<a href=\"%1\">%1</a>").arg(websiteURL()));
    link->setOpenExternalLinks(true);
    link->setTextInteractionFlags(Qt::TextBrowserInteraction);
    link->setAccessibleName(QStringLiteral("Web site ") + websiteURL());
    for (QWidget* widget :
         std::initializer_list<QWidget*>{logo, name, shownVersion, check_, credit, link}) {
        addWidget(widget);
        widget->parentWidget()->layout()->setAlignment(widget, Qt::AlignHCenter);
    }
    finish();
    checkingTimer_.setSingleShot(true);
    checkingTimer_.setInterval(kCheckingMs);
    connect(&checkingTimer_, &QTimer::timeout, this, [this] { showChecking(false); });
    connect(check_, &QPushButton::clicked, this, &AboutSettingsView::check);
    showChecking(false);
}

void AboutSettingsView::check() {
    showChecking(true);
    checkingTimer_.start();
    if (checkForUpdates_) {
        checkForUpdates_();
    }
}

void AboutSettingsView::showChecking(bool checking) {
    isChecking_ = checking;
    const QString label =
        checking ? QStringLiteral("Checking…") : QStringLiteral("Check for Updates");
    check_->setText(label);
    check_->setAccessibleName(QStringLiteral("Check for Updates"));
}
