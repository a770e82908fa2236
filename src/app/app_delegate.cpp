#include "app/app_delegate.h"

#include <QSystemTrayIcon>

#include "app/app_signals.h"
#include "app/bar_icon.h"
#include "storage/user_defaults.h"
#include "storage/user_settings.h"

AppDelegate::AppDelegate() = default;
AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationDidFinishLaunching() {
    buildStatusItem();
    connect(&AppSignals::instance(), &AppSignals::customBarIconChanged, this,
            &AppDelegate::applyCustomBarIcon);
    applyCustomBarIcon(UserDefaults::shared().customAppIconPath());

    // Loading the settings writes a fresh, sealed settings.bin on a first run.
    UserSettings::shared();
}

void AppDelegate::buildStatusItem() {
    statusItem_ = std::make_unique<QSystemTrayIcon>(BarIcon::builtIn());
    statusItem_->setToolTip(QStringLiteral("Quillix"));
    statusItem_->show();
}

void AppDelegate::applyCustomBarIcon(const QString& imagePath) {
    statusItem_->setIcon(BarIcon::fromFile(imagePath).value_or(BarIcon::builtIn()));
}
