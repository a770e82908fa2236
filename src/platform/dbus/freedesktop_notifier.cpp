// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "platform/dbus/freedesktop_notifier.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QStringList>
#include <QThreadPool>
#include <QUrl>
#include <QVariantMap>

#include "platform/notification_attachment.h"

namespace {

const QString kService = QStringLiteral("org.freedesktop.Notifications");
const QString kPath = QStringLiteral("/org/freedesktop/Notifications");
const QString kInterface = QStringLiteral("org.freedesktop.Notifications");
const QString kApplicationName = QStringLiteral("Quillix");
const QString kDefaultAction = QStringLiteral("default");

// The server's own choice of how long a popup stays.
constexpr int kServerDefaultExpiry = -1;

QDBusMessage busDaemonCall(const QString& method) {
    return QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
                                          QStringLiteral("/org/freedesktop/DBus"),
                                          QStringLiteral("org.freedesktop.DBus"), method);
}

QVariantMap notificationHints(const QString& imagePath) {
    QVariantMap hints;
    // The capture sound has already played.
    hints.insert(QStringLiteral("suppress-sound"), true);
    if (!imagePath.isEmpty()) {
        // The protocol takes a file:// URI here (or an icon name); a
        // percent-encoded URI keeps spaces and '#' in folder names intact.
        hints.insert(QStringLiteral("image-path"),
                     QString::fromUtf8(QUrl::fromLocalFile(imagePath).toEncoded()));
    }
    return hints;
}

// Off the GUI thread: the temporary folder may sit on a slow disk.
void removeAttachment(const QString& path) {
    if (!path.isEmpty()) {
        QThreadPool::globalInstance()->start(
            [path] { NotificationAttachments::shared().remove(path); });
    }
}

}  // namespace

FreedesktopNotifier::FreedesktopNotifier(QObject* parent)
    : FreedesktopNotifier(QDBusConnection::sessionBus(), parent) {}

FreedesktopNotifier::FreedesktopNotifier(const QDBusConnection& bus, QObject* parent)
    : Notifier(parent), bus_(bus) {
    if (!bus_.isConnected()) {
        return;
    }
    // From any sender: naming the service here would make Qt look up its
    // owner there and then, blocking on a slow bus. Only the notification
    // server sends these, and only ids it gave us count.
    bus_.connect(QString(), kPath, kInterface, QStringLiteral("ActionInvoked"), this,
                 SLOT(onActionInvoked(uint, QString)));
    bus_.connect(QString(), kPath, kInterface, QStringLiteral("NotificationClosed"), this,
                 SLOT(onNotificationClosed(uint, uint)));
    serviceWatcher_ =
        new QDBusServiceWatcher(kService, bus_, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(serviceWatcher_, &QDBusServiceWatcher::serviceOwnerChanged, this,
            &FreedesktopNotifier::onServiceOwnerChanged);
    askWhetherServiceIsReachable();
}

bool FreedesktopNotifier::isAuthorised() {
    return authorised_;
}

void FreedesktopNotifier::askWhetherServiceIsReachable() {
    const quint64 question = ++latestQuestion_;
    QDBusMessage hasOwner = busDaemonCall(QStringLiteral("NameHasOwner"));
    hasOwner << kService;
    auto* call = new QDBusPendingCallWatcher(bus_.asyncCall(hasOwner), this);
    connect(call, &QDBusPendingCallWatcher::finished, this,
            [this, question](QDBusPendingCallWatcher* finished) {
                finished->deleteLater();
                const QDBusPendingReply<bool> reply = *finished;
                if (!reply.isError() && reply.value()) {
                    answer(question, true);
                } else {
                    // Many desktops start their notification daemon only on
                    // the first Notify.
                    askWhetherServiceIsActivatable(question);
                }
            });
}

void FreedesktopNotifier::askWhetherServiceIsActivatable(quint64 question) {
    auto* call = new QDBusPendingCallWatcher(
        bus_.asyncCall(busDaemonCall(QStringLiteral("ListActivatableNames"))), this);
    connect(call, &QDBusPendingCallWatcher::finished, this,
            [this, question](QDBusPendingCallWatcher* finished) {
                finished->deleteLater();
                const QDBusPendingReply<QStringList> reply = *finished;
                answer(question, !reply.isError() && reply.value().contains(kService));
            });
}

void FreedesktopNotifier::answer(quint64 question, bool reachable) {
    if (question == latestQuestion_ && authorised_ != reachable) {
        authorised_ = reachable;
        Q_EMIT authorisationChanged(reachable);
    }
}

void FreedesktopNotifier::post(const QString& summary, const QString& body,
                               const QString& imagePath, const QString& subject) {
    QDBusMessage notify =
        QDBusMessage::createMethodCall(kService, kPath, kInterface, QStringLiteral("Notify"));
    notify << kApplicationName << uint{0} << QString() << summary << body
           << QStringList{kDefaultAction, QStringLiteral("Open")} << notificationHints(imagePath)
           << kServerDefaultExpiry;
    // Asynchronous: a slow or missing service must never hold up the caller.
    auto* call = new QDBusPendingCallWatcher(bus_.asyncCall(notify), this);
    const Posted posted{subject.isEmpty() ? body : subject, imagePath};
    connect(
        call, &QDBusPendingCallWatcher::finished, this,
        [this, posted](QDBusPendingCallWatcher* finished) { rememberPosted(finished, posted); });
}

void FreedesktopNotifier::rememberPosted(QDBusPendingCallWatcher* call, const Posted& posted) {
    const QDBusPendingReply<uint> reply = *call;
    if (reply.isError()) {
        removeAttachment(posted.attachment);  // nothing will show it
    } else {
        postedById_.insert(reply.value(), posted);
    }
    call->deleteLater();
}

void FreedesktopNotifier::onActionInvoked(uint id, const QString& actionKey) {
    // Servers that broadcast their signals also report other programs' ids.
    const auto posted = postedById_.constFind(id);
    if (actionKey == kDefaultAction && posted != postedById_.constEnd()) {
        Q_EMIT activated(posted->subject);
    }
}

void FreedesktopNotifier::onNotificationClosed(uint id, uint /*reason*/) {
    const auto posted = postedById_.constFind(id);
    if (posted != postedById_.constEnd()) {
        removeAttachment(posted->attachment);
        postedById_.erase(posted);
    }
}

void FreedesktopNotifier::onServiceOwnerChanged() {
    // A new (or no) server: the old ids mean nothing any more, nothing will
    // close their popups, and the authorisation must be asked again.
    forgetAllPosted();
    askWhetherServiceIsReachable();
}

void FreedesktopNotifier::forgetAllPosted() {
    for (const Posted& posted : std::as_const(postedById_)) {
        removeAttachment(posted.attachment);
    }
    postedById_.clear();
}
