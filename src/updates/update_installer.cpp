// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "updates/update_installer.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QFutureWatcher>
#include <QLoggingCategory>
#include <QMessageBox>
#include <QNetworkReply>
#include <QTemporaryFile>
#include <QtConcurrent>

#include "storage/preferences.h"
#include "updates/download_progress_panel.h"
#include "updates/update_install_job.h"
#include "updates/update_network.h"

// Defined beside the install steps.
Q_DECLARE_LOGGING_CATEGORY(lcUpdateInstall)

namespace {

QString appFolderOfThisProgram() {
    // The relocatable install is Quillix.app/bin/quillix.
    const QDir folder(QCoreApplication::applicationDirPath() + QStringLiteral("/.."));
    const QString path = folder.canonicalPath();
    return QFileInfo(path).fileName() == QLatin1String("Quillix.app") ? path : QString();
}

void showFailureAlert(const QString& title, const QString& text) {
    auto* box = new QMessageBox(QMessageBox::Critical, title, text, QMessageBox::Ok);
    box->setAccessibleName(title);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

bool isUsableDownloadURL(const QUrl& url) {
    return url.isValid() && url.scheme() == QLatin1String("https") && !url.host().isEmpty();
}

}  // namespace

UpdateInstaller::Environment UpdateInstaller::Environment::program() {
    // exit(), not quit(): a window that animates its closing could veto
    // quit(), and the install script would then replace the folder under a
    // program that goes on running.
    return {appFolderOfThisProgram(), QDir::tempPath(), [] { QCoreApplication::exit(0); },
            showFailureAlert, QCoreApplication::applicationPid()};
}

UpdateInstaller& UpdateInstaller::shared() {
    // Never destroyed: it must not be torn down after the application object.
    static auto* const instance =
        new UpdateInstaller(Preferences::shared(), Environment::program());
    return *instance;
}

UpdateInstaller::UpdateInstaller(Preferences& preferences, Environment environment, QObject* parent)
    : QObject(parent), preferences_(preferences), environment_(std::move(environment)) {}

UpdateInstaller::~UpdateInstaller() {
    if (panel_) {
        panel_->close();
    }
}

DownloadProgressPanel* UpdateInstaller::progressPanel() const {
    return panel_.data();
}

void UpdateInstaller::install(const AppcastRelease& release) {
    const QUrl url(release.downloadURL, QUrl::StrictMode);
    if (!isUsableDownloadURL(url)) {
        fail(QStringLiteral("The download URL in the update is invalid."));
        return;
    }
    // Told at once rather than after a download that could not be used.
    if (environment_.runningAppFolder.isEmpty()) {
        fail(
            QStringLiteral("Install failed: Quillix was installed by your distribution's "
                           "package manager; update it there."));
        return;
    }
    showPanel(release.version);

    // The archive is written as it arrives; it stays in the temporary folder
    // after the install, next to the unpacked copy.
    auto* archive = new QTemporaryFile(
        QDir(environment_.tempFolder).filePath(QStringLiteral("Quillix-XXXXXX.zip")));
    archive->setAutoRemove(false);
    QNetworkReply* reply = network_.get(UpdateNetwork::request(url, preferences_));
    archive->setParent(reply);
    if (!archive->open()) {
        qCWarning(lcUpdateInstall)
            << "Quillix: no temporary file for the update:" << archive->errorString();
    }
    connect(reply, &QNetworkReply::readyRead, archive,
            [reply, archive] { archive->write(reply->readAll()); });
    connect(reply, &QNetworkReply::finished, this, [this, reply, archive, release, panel = panel_] {
        downloadFinished(reply, archive, release, panel);
    });
}

void UpdateInstaller::showPanel(const QString& version) {
    if (panel_) {
        panel_->close();
    }
    auto* panel = new DownloadProgressPanel(version);
    if (!panel->showCentred()) {
        delete panel;  // no screen: the download goes on without a panel
        return;
    }
    panel_ = panel;
}

void UpdateInstaller::downloadFinished(QNetworkReply* reply, QTemporaryFile* archive,
                                       const AppcastRelease& release,
                                       DownloadProgressPanel* panel) {
    reply->deleteLater();
    if (panel != nullptr && panel == panel_) {
        panel->close();
    }
    if (reply->error() != QNetworkReply::NoError) {
        qCWarning(lcUpdateInstall).noquote()
            << "Quillix: update download failed:" << UpdateNetwork::errorText(*reply);
        fail(QStringLiteral("Download failed: ") + UpdateNetwork::errorText(*reply));
        return;
    }
    const bool written =
        archive->isOpen() && archive->write(reply->readAll()) >= 0 && archive->flush();
    archive->close();
    if (!written) {
        fail(QStringLiteral("Download failed: ") + archive->errorString());
        return;
    }
    qCInfo(lcUpdateInstall).noquote()
        << "Quillix: update" << release.version << "downloaded to" << archive->fileName();
    runInstall({archive->fileName(), release.version, release.sha256, environment_.tempFolder,
                environment_.runningAppFolder, environment_.quittingProcess});
}

void UpdateInstaller::runInstall(const UpdateInstallJob& job) {
    auto* watcher = new QFutureWatcher<std::optional<QString>>(this);
    connect(watcher, &QFutureWatcherBase::finished, this, [this, watcher] {
        watcher->deleteLater();
        const std::optional<QString> error = watcher->result();
        if (error) {
            qCWarning(lcUpdateInstall).noquote() << "Quillix: update install failed:" << *error;
            fail(QStringLiteral("Install failed: ") + *error);
            return;
        }
        environment_.quit();
    });
    watcher->setFuture(QtConcurrent::run([job] { return job.run(); }));
}

void UpdateInstaller::fail(const QString& text) const {
    environment_.showFailure(QStringLiteral("Update Failed"), text);
}
