#pragma once

#include <QDBusConnection>
#include <QElapsedTimer>
#include <QHash>
#include <optional>

#include "platform/notifier.h"

class QDBusPendingCallWatcher;
class QDBusServiceWatcher;

// Notifications through the desktop's notification service
// (org.freedesktop.Notifications on the session bus), which every Linux
// desktop runs: GNOME Shell, Plasma, dunst, mako, xfce4-notifyd, …
class FreedesktopNotifier : public Notifier {
    Q_OBJECT
public:
    // On the session bus.
    explicit FreedesktopNotifier(QObject* parent = nullptr);
    // On `bus`, so tests can use a private bus.
    explicit FreedesktopNotifier(const QDBusConnection& bus, QObject* parent = nullptr);

    // True when the service name has an owner, or the bus can start one on
    // demand (an activatable service). Asks the bus at most every few seconds.
    bool isAuthorised() override;
    void post(const QString& summary, const QString& body, const QString& imagePath) override;

private Q_SLOTS:
    void onActionInvoked(uint id, const QString& actionKey);
    void onNotificationClosed(uint id, uint reason);

private:
    void onServiceOwnerChanged();
    void rememberPosted(QDBusPendingCallWatcher* call, const QString& body);
    bool askBusWhetherServiceIsReachable();

    QDBusConnection bus_;
    QDBusServiceWatcher* serviceWatcher_ = nullptr;
    // Body of each notification of ours that the service still shows, by the
    // id the service gave it; a click hands the body on.
    QHash<uint, QString> bodiesById_;
    std::optional<bool> authorised_;
    QElapsedTimer authorisedCheckedAt_;
};
