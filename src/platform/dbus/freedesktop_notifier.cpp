#include "platform/dbus/freedesktop_notifier.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QStringList>
#include <QUrl>
#include <QVariantMap>

namespace {

const QString kService = QStringLiteral("org.freedesktop.Notifications");
const QString kPath = QStringLiteral("/org/freedesktop/Notifications");
const QString kInterface = QStringLiteral("org.freedesktop.Notifications");
const QString kApplicationName = QStringLiteral("Quillix");
const QString kDefaultAction = QStringLiteral("default");

// isAuthorised() is asked once per capture; the answer may be this old.
constexpr qint64 kAuthorisationCacheMs = 2000;
// The bus daemon itself answers these; it is local and quick, and a daemon
// that does not answer within this time counts as "no service".
constexpr int kBusQueryTimeoutMs = 1000;
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

}  // namespace

FreedesktopNotifier::FreedesktopNotifier(QObject* parent)
    : FreedesktopNotifier(QDBusConnection::sessionBus(), parent) {}

FreedesktopNotifier::FreedesktopNotifier(const QDBusConnection& bus, QObject* parent)
    : Notifier(parent), bus_(bus) {
    if (!bus_.isConnected()) {
        return;
    }
    // The bus routes these to us by their sender's well-known name, also
    // when the service starts or restarts later.
    bus_.connect(kService, kPath, kInterface, QStringLiteral("ActionInvoked"), this,
                 SLOT(onActionInvoked(uint, QString)));
    bus_.connect(kService, kPath, kInterface, QStringLiteral("NotificationClosed"), this,
                 SLOT(onNotificationClosed(uint, uint)));
    serviceWatcher_ =
        new QDBusServiceWatcher(kService, bus_, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(serviceWatcher_, &QDBusServiceWatcher::serviceOwnerChanged, this,
            &FreedesktopNotifier::onServiceOwnerChanged);
}

bool FreedesktopNotifier::isAuthorised() {
    if (!bus_.isConnected()) {
        return false;
    }
    if (!authorised_ || authorisedCheckedAt_.elapsed() > kAuthorisationCacheMs) {
        authorised_ = askBusWhetherServiceIsReachable();
        authorisedCheckedAt_.start();
    }
    return *authorised_;
}

bool FreedesktopNotifier::askBusWhetherServiceIsReachable() {
    QDBusMessage hasOwner = busDaemonCall(QStringLiteral("NameHasOwner"));
    hasOwner << kService;
    const QDBusMessage ownerReply = bus_.call(hasOwner, QDBus::Block, kBusQueryTimeoutMs);
    if (ownerReply.type() == QDBusMessage::ReplyMessage && !ownerReply.arguments().isEmpty() &&
        ownerReply.arguments().constFirst().toBool()) {
        return true;
    }
    // Many desktops start their notification daemon only on the first Notify.
    const QDBusMessage activatableReply = bus_.call(
        busDaemonCall(QStringLiteral("ListActivatableNames")), QDBus::Block, kBusQueryTimeoutMs);
    return activatableReply.type() == QDBusMessage::ReplyMessage &&
           !activatableReply.arguments().isEmpty() &&
           activatableReply.arguments().constFirst().toStringList().contains(kService);
}

void FreedesktopNotifier::post(const QString& summary, const QString& body,
                               const QString& imagePath) {
    QDBusMessage notify =
        QDBusMessage::createMethodCall(kService, kPath, kInterface, QStringLiteral("Notify"));
    notify << kApplicationName << uint{0} << QString() << summary << body
           << QStringList{kDefaultAction, QStringLiteral("Open")} << notificationHints(imagePath)
           << kServerDefaultExpiry;
    // Asynchronous: a slow or missing service must never hold up the caller.
    auto* call = new QDBusPendingCallWatcher(bus_.asyncCall(notify), this);
    connect(call, &QDBusPendingCallWatcher::finished, this,
            [this, body](QDBusPendingCallWatcher* finished) { rememberPosted(finished, body); });
}

void FreedesktopNotifier::rememberPosted(QDBusPendingCallWatcher* call, const QString& body) {
    const QDBusPendingReply<uint> reply = *call;
    if (!reply.isError()) {
        bodiesById_.insert(reply.value(), body);
    }
    call->deleteLater();
}

void FreedesktopNotifier::onActionInvoked(uint id, const QString& actionKey) {
    // Servers that broadcast their signals also report other programs' ids.
    const auto posted = bodiesById_.constFind(id);
    if (actionKey == kDefaultAction && posted != bodiesById_.constEnd()) {
        Q_EMIT activated(*posted);
    }
}

void FreedesktopNotifier::onNotificationClosed(uint id, uint /*reason*/) {
    bodiesById_.remove(id);
}

void FreedesktopNotifier::onServiceOwnerChanged() {
    // A new (or no) server: the old ids mean nothing any more, and the
    // authorisation must be asked again.
    bodiesById_.clear();
    authorised_.reset();
}
