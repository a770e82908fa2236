// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "platform/dbus/file_manager_reveal.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QUrl>

namespace {

Q_LOGGING_CATEGORY(lcFileManager, "quillix.filemanager")

const QString kService = QStringLiteral("org.freedesktop.FileManager1");

void openFolderOf(const QString& filePath) {
    qCInfo(lcFileManager) << "no file manager service; opening the folder of" << filePath;
    QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(filePath).absolutePath()));
}

}  // namespace

void revealInFileManager(const QString& filePath) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        openFolderOf(filePath);
        return;
    }
    // Asked without waiting: the bus starts a file manager that is only
    // activatable, and answers ServiceUnknown when there is none at all.
    QDBusMessage call =
        QDBusMessage::createMethodCall(kService, QStringLiteral("/org/freedesktop/FileManager1"),
                                       kService, QStringLiteral("ShowItems"));
    call << QStringList{QUrl::fromLocalFile(filePath).toString()} << QString();
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call), QCoreApplication::instance());
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher,
                     [filePath](QDBusPendingCallWatcher* answered) {
                         answered->deleteLater();
                         if (answered->isError()) {
                             openFolderOf(filePath);
                         }
                     });
}
