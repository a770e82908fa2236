// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QDBusConnection>
#include <QHash>

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
    // demand (an activatable service). The bus is asked in the background,
    // at start and whenever the service comes or goes; this answers what it
    // said last (false until it has answered), so it never waits for the bus.
    bool isAuthorised() override;
    // An attachment written by NotificationAttachments is removed when its
    // notification closes, or at once when the service refuses it.
    void post(const QString& summary, const QString& body, const QString& imagePath,
              const QString& subject = {}) override;

private Q_SLOTS:
    void onActionInvoked(uint id, const QString& actionKey);
    void onNotificationClosed(uint id, uint reason);

private:
    struct Posted {
        QString subject;
        QString attachment;
    };

    void onServiceOwnerChanged();
    void rememberPosted(QDBusPendingCallWatcher* call, const Posted& posted);
    void askWhetherServiceIsReachable();
    void askWhetherServiceIsActivatable(quint64 question);
    void answer(quint64 question, bool reachable);
    void forgetAllPosted();

    QDBusConnection bus_;
    QDBusServiceWatcher* serviceWatcher_ = nullptr;
    // Each notification of ours that the service still shows, by the id the
    // service gave it; a click hands its subject on, its closing removes its
    // attachment.
    QHash<uint, Posted> postedById_;
    bool authorised_ = false;
    // Answers to an older question (from before the service last came or
    // went) are dropped.
    quint64 latestQuestion_ = 0;
};
