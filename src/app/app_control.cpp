#include "app/app_control.h"

#include <QDBusConnection>

#include "app/app_delegate.h"
#include "capture/capture_service.h"
#include "capture/screenshot_store.h"
#include "storage/user_settings.h"

AppControl::AppControl(AppDelegate& delegate, QObject* parent)
    : QObject(parent), delegate_(delegate) {}

bool AppControl::publish() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    return bus.isConnected() &&
           bus.registerObject(QStringLiteral("/org/quillix/Quillix"), this,
                              QDBusConnection::ExportScriptableSlots) &&
           bus.registerService(QStringLiteral("org.quillix.Quillix"));
}

void AppControl::CaptureWindow(uint windowId) {
    CaptureService::shared().captureWindow(windowId);
}

void AppControl::TogglePopover() {
    delegate_.togglePopover();
}

bool AppControl::IsPopoverShown() const {
    return delegate_.isPopoverShown();
}

QStringList AppControl::ListedFiles() const {
    QStringList names;
    for (const ScreenshotItem& item : ScreenshotStore::shared().screenshots()) {
        names.append(item.fileName());
    }
    return names;
}

void AppControl::SetShowOnlyQuillixItems(bool showOnly) {
    UserSettings::shared().setShowOnlyQuillixItems(showOnly);
}
