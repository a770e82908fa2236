// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <functional>

#include "updates/appcast_release.h"

class Preferences;
class QNetworkAccessManager;
class QNetworkReply;
class QTimer;

// Asks the update feed whether a newer Quillix exists: automatically (5 s
// after start(), then every two hours, when "checkForUpdatesAutomatically"
// is on at launch) and on request. A newer release is offered in the update
// toast; a user's request also hears about failures and being up to date.
class UpdateChecker : public QObject {
    Q_OBJECT

public:
    // Where the outcomes of a check go: the toast and alerts for the shared
    // checker, recorders in tests.
    struct Presenter {
        std::function<void(const AppcastRelease&)> offerUpdate;
        std::function<void()> showUpToDate;
        std::function<void()> showCheckFailed;
    };

    static constexpr int kFirstCheckDelayMs = 5000;
    static constexpr int kCheckIntervalMs = 7200 * 1000;

    // The checker of the running program, with the version it was built as.
    static UpdateChecker& shared();

    // What "Update & Restart" in the shared checker's toast runs; the
    // installer sets it.
    static void setInstallAction(std::function<void(const AppcastRelease&)> install);

    // Tests pass their own preferences, version and presenter; without a
    // `network` the checker makes its own.
    UpdateChecker(Preferences& preferences, QString runningVersion, Presenter presenter,
                  QNetworkAccessManager* network = nullptr, QObject* parent = nullptr);

    // Sets up the automatic schedule, unless automatic checks are off right
    // now (then none runs in this process, whatever happens later). Only
    // the first call counts.
    void start();
    // Fetches the feed once. Only a check the user asked for reports
    // failures and "up to date".
    void check(bool userInitiated);

    const QString& runningVersion() const { return runningVersion_; }
    bool scheduled() const { return timer_ != nullptr; }
    // Tests shorten the wait before the first automatic check.
    void setFirstCheckDelayMs(int milliseconds) { firstCheckDelayMs_ = milliseconds; }

private:
    void finish(QNetworkReply* reply, bool userInitiated);
    void present(const std::optional<AppcastRelease>& release, bool userInitiated);

    Preferences& preferences_;
    QString runningVersion_;
    Presenter presenter_;
    QNetworkAccessManager* network_;
    QTimer* timer_ = nullptr;
    bool started_ = false;
    int firstCheckDelayMs_ = kFirstCheckDelayMs;
};
