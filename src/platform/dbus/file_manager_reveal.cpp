// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "platform/dbus/file_manager_reveal.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDesktopServices>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QUrl>

namespace {

Q_LOGGING_CATEGORY(lcFileManager, "quillix.filemanager")

const QString kService = QStringLiteral("org.freedesktop.FileManager1");

bool fileManagerServiceExists(const QDBusConnection& bus) {
    if (!bus.isConnected() || bus.interface() == nullptr) {
        return false;
    }
    if (bus.interface()->isServiceRegistered(kService).value()) {
        return true;
    }
    // A file manager that is started on demand is activatable, not running.
    return bus.interface()->activatableServiceNames().value().contains(kService);
}

}  // namespace

void revealInFileManager(const QString& filePath) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (fileManagerServiceExists(bus)) {
        QDBusMessage call = QDBusMessage::createMethodCall(
            kService, QStringLiteral("/org/freedesktop/FileManager1"), kService,
            QStringLiteral("ShowItems"));
        call << QStringList{QUrl::fromLocalFile(filePath).toString()} << QString();
        if (bus.send(call)) {
            return;
        }
    }
    qCInfo(lcFileManager) << "no file manager service; opening the folder of" << filePath;
    QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(filePath).absolutePath()));
}
