// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QNetworkAccessManager>
#include <QObject>
#include <QPointer>
#include <QString>
#include <functional>
#include <optional>

#include "updates/appcast_release.h"

class DownloadProgressPanel;
class Preferences;
class QNetworkReply;
class QTemporaryFile;
struct UpdateInstallJob;

// Downloads a release's zip archive, unpacks it and hands over to a script
// that replaces the running Quillix.app and starts the new one after the
// program has quit. A progress panel shows while the download runs; any
// failure ends in one "Update Failed" alert and leaves the program as it is.
class UpdateInstaller : public QObject {
    Q_OBJECT

public:
    // What the installer does to the world outside its temporary folder; the
    // program's comes from program(), tests pass their own.
    struct Environment {
        // The Quillix.app folder the program runs from; empty when it was
        // installed elsewhere (e.g. by the distribution's package manager).
        QString runningAppFolder;
        QString tempFolder;
        std::function<void()> quit;
        std::function<void(const QString& title, const QString& text)> showFailure;
        // The process the install script waits for; 0 for none.
        qint64 quittingProcess = 0;

        static Environment program();
    };

    static UpdateInstaller& shared();

    UpdateInstaller(Preferences& preferences, Environment environment, QObject* parent = nullptr);
    ~UpdateInstaller() override;

    // Runs to the end once started; a second call starts a second download
    // and its panel replaces the first.
    void install(const AppcastRelease& release);

    // The panel of the download running now, if any.
    [[nodiscard]] DownloadProgressPanel* progressPanel() const;

private:
    void downloadFinished(QNetworkReply* reply, QTemporaryFile* archive,
                          const AppcastRelease& release, DownloadProgressPanel* panel);
    void runInstall(const UpdateInstallJob& job);
    void showPanel(const QString& version);
    void fail(const QString& text) const;

    Preferences& preferences_;
    Environment environment_;
    QNetworkAccessManager network_;
    QPointer<DownloadProgressPanel> panel_;
};
