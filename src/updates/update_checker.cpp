// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "updates/update_checker.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QLoggingCategory>
#include <QMessageBox>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTimer>
#include <utility>

#include "storage/preferences.h"
#include "updates/update_network.h"
#include "updates/update_toast_controller.h"
#include "updates/version_compare.h"

Q_LOGGING_CATEGORY(lcUpdates, "quillix.updates")

namespace {

std::function<void(const AppcastRelease&)>& installAction() {
    static std::function<void(const AppcastRelease&)> action;
    return action;
}

// An alert that does not block in a nested event loop: the tray, timers
// and other checks go on while it is up.
void showAlert(QMessageBox::Icon icon, const QString& title, const QString& message) {
    auto* box = new QMessageBox(icon, title, message, QMessageBox::Ok);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setAccessibleName(title);
    box->button(QMessageBox::Ok)->setAccessibleName(QStringLiteral("OK"));
    box->show();
    box->raise();
    box->activateWindow();
}

QString builtVersion() {
    const QString version = QCoreApplication::applicationVersion();
    return version.isEmpty() ? QStringLiteral("0") : version;
}

UpdateChecker::Presenter alertPresenter(const QString& runningVersion) {
    return {
        [](const AppcastRelease& release) {
            UpdateToastController::show(release, [](const AppcastRelease& offered) {
                if (installAction()) {
                    installAction()(offered);
                }
            });
        },
        [runningVersion] {
            showAlert(QMessageBox::Information, QStringLiteral("You're up to date!"),
                      QStringLiteral("Quillix ") + runningVersion +
                          QStringLiteral(" is the latest version."));
        },
        [] {
            showAlert(QMessageBox::Warning, QStringLiteral("Update Check Failed"),
                      QStringLiteral("Could not reach the update server. Please check your "
                                     "internet connection."));
        },
    };
}

}  // namespace

UpdateChecker& UpdateChecker::shared() {
    static auto* instance =
        new UpdateChecker(Preferences::shared(), builtVersion(), alertPresenter(builtVersion()));
    return *instance;
}

void UpdateChecker::setInstallAction(std::function<void(const AppcastRelease&)> install) {
    installAction() = std::move(install);
}

UpdateChecker::UpdateChecker(Preferences& preferences, QString runningVersion, Presenter presenter,
                             QNetworkAccessManager* network, QObject* parent)
    : QObject(parent),
      preferences_(preferences),
      runningVersion_(runningVersion.isEmpty() ? QStringLiteral("0") : std::move(runningVersion)),
      presenter_(std::move(presenter)),
      network_(network != nullptr ? network : new QNetworkAccessManager(this)) {}

void UpdateChecker::start() {
    // Only the setting at launch counts: turning automatic checks on later
    // takes effect at the next launch.
    if (started_) {
        return;
    }
    started_ = true;
    if (!preferences_.checkForUpdatesAutomatically()) {
        return;
    }
    // Both are bound to the checker and end with it.
    QTimer::singleShot(firstCheckDelayMs_, this, [this] { check(false); });
    timer_ = new QTimer(this);
    timer_->setInterval(kCheckIntervalMs);
    connect(timer_, &QTimer::timeout, this, [this] { check(false); });
    timer_->start();
}

void UpdateChecker::check(bool userInitiated) {
    const QUrl url = UpdateNetwork::appcastURL(preferences_);
    QNetworkReply* reply = network_->get(UpdateNetwork::request(url, preferences_));
    connect(reply, &QNetworkReply::finished, this,
            [this, reply, userInitiated] { finish(reply, userInitiated); });
}

void UpdateChecker::finish(QNetworkReply* reply, bool userInitiated) {
    reply->deleteLater();
    // The status code is not looked at: an error page that holds a valid
    // feed document still counts.
    const bool answered = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).isValid();
    if (reply->error() != QNetworkReply::NoError && !answered) {
        qCInfo(lcUpdates).noquote()
            << "Quillix: update check failed:" << UpdateNetwork::errorText(*reply);
        present(std::nullopt, userInitiated);
        return;
    }
    std::optional<AppcastRelease> release = AppcastRelease::fromJson(reply->readAll());
    if (!release) {
        qCInfo(lcUpdates) << "Quillix: update check failed: the feed could not be read";
    }
    present(release, userInitiated);
}

void UpdateChecker::present(const std::optional<AppcastRelease>& release, bool userInitiated) {
    if (!release) {
        if (userInitiated && presenter_.showCheckFailed) {
            presenter_.showCheckFailed();
        }
        return;
    }
    if (isNewerVersion(release->version, runningVersion_)) {
        qCInfo(lcUpdates).noquote() << "Quillix: update check found" << release->version;
        if (presenter_.offerUpdate) {
            presenter_.offerUpdate(*release);
        }
        return;
    }
    qCInfo(lcUpdates).noquote() << "Quillix: up to date at" << runningVersion_;
    if (userInitiated && presenter_.showUpToDate) {
        presenter_.showUpToDate();
    }
}
