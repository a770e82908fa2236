// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "app/app_control.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <optional>

#include "app/app_delegate.h"
#include "library/capture_service.h"
#include "library/screenshot_store.h"
#include "storage/user_settings.h"

namespace {

const QString kServiceName = QStringLiteral("org.quillix.Quillix");
const QString kObjectPath = QStringLiteral("/org/quillix/Quillix");
// A copy that does not answer within this time is busy or hung; the new
// one leaves all the same.
constexpr int kRunningCopyTimeoutMs = 5000;

QRect globalRect(const QWidget* widget, const QRect& local) {
    return QRect(widget->mapToGlobal(local.topLeft()), local.size());
}

// A shown cell of an item view whose accessible text is `name`.
std::optional<QRect> locateCell(const QAbstractItemView* view, const QString& name) {
    const QAbstractItemModel* model = view->model();
    if (model == nullptr) {
        return std::nullopt;
    }
    for (int row = 0; row < model->rowCount(view->rootIndex()); ++row) {
        const QModelIndex index = model->index(row, 0, view->rootIndex());
        if (index.data(Qt::AccessibleTextRole).toString() == name) {
            const QRect cell = view->visualRect(index).intersected(view->viewport()->rect());
            if (!cell.isEmpty()) {
                return globalRect(view->viewport(), cell);
            }
        }
    }
    return std::nullopt;
}

std::optional<QRect> locateControl(const QString& name) {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (!window->isVisible()) {
            continue;
        }
        QList<QWidget*> widgets = window->findChildren<QWidget*>();
        widgets.prepend(window);
        for (const QWidget* widget : widgets) {
            if (!widget->isVisibleTo(window)) {
                continue;
            }
            if (widget->accessibleName() == name) {
                return globalRect(widget, widget->rect());
            }
            if (const auto* view = qobject_cast<const QAbstractItemView*>(widget)) {
                if (std::optional<QRect> cell = locateCell(view, name)) {
                    return cell;
                }
            }
        }
    }
    return std::nullopt;
}

}  // namespace

AppControl::AppControl(AppDelegate& delegate, QObject* parent)
    : QObject(parent), delegate_(delegate) {}

AppControl::Instance AppControl::claimName() {
    const QDBusConnection bus = QDBusConnection::sessionBus();
    QDBusConnectionInterface* daemon = bus.isConnected() ? bus.interface() : nullptr;
    if (daemon == nullptr) {
        return Instance::unknown;
    }
    // Not queued: of two copies started at once, exactly one gets the name.
    const QDBusReply<QDBusConnectionInterface::RegisterServiceReply> reply =
        daemon->registerService(kServiceName, QDBusConnectionInterface::DontQueueService,
                                QDBusConnectionInterface::DontAllowReplacement);
    if (!reply.isValid()) {
        return Instance::unknown;
    }
    return reply.value() == QDBusConnectionInterface::ServiceRegistered ? Instance::first
                                                                        : Instance::alreadyRunning;
}

bool AppControl::openGalleryOfRunningCopy() {
    const QDBusMessage call = QDBusMessage::createMethodCall(
        kServiceName, kObjectPath, kServiceName, QStringLiteral("ShowPopover"));
    const QDBusMessage reply =
        QDBusConnection::sessionBus().call(call, QDBus::Block, kRunningCopyTimeoutMs);
    return reply.type() == QDBusMessage::ReplyMessage;
}

bool AppControl::publish() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    return bus.isConnected() &&
           bus.registerObject(kObjectPath, this, QDBusConnection::ExportScriptableSlots) &&
           bus.registerService(kServiceName);
}

void AppControl::CaptureWindow(uint windowId) {
    CaptureService::shared().captureWindow(windowId);
}

void AppControl::TogglePopover() {
    delegate_.togglePopover();
}

void AppControl::ShowPopover() {
    if (!delegate_.isPopoverShown()) {
        delegate_.togglePopover();
    }
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

QString AppControl::LocateControl(const QString& accessibleName) const {
    const std::optional<QRect> rect = locateControl(accessibleName);
    if (!rect) {
        return {};
    }
    return QStringLiteral("%1,%2,%3,%4")
        .arg(rect->x())
        .arg(rect->y())
        .arg(rect->width())
        .arg(rect->height());
}
