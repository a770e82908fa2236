// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "updates/update_install_job.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <QProcess>
#include <QSaveFile>

Q_LOGGING_CATEGORY(lcUpdateInstall, "quillix.updates")

namespace {

constexpr int kUnzipTimeoutMs = 5 * 60 * 1000;

QString unzipFailed() {
    return QStringLiteral("Failed to unzip the downloaded update.");
}

QString appNotFound() {
    return QStringLiteral("Could not find Quillix.app inside the downloaded archive.");
}

// The first top-level entry named *.app, in the order the folder lists them.
std::optional<QString> findNewApp(const QString& folder) {
    const QDir dir(folder);
    const QStringList entries =
        dir.entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Unsorted);
    for (const QString& name : entries) {
        if (name.endsWith(QLatin1String(".app"), Qt::CaseSensitive)) {
            return dir.filePath(name);
        }
    }
    return std::nullopt;
}

}  // namespace

QString UpdateInstallJob::shellQuoted(QString text) {
    // Inside single quotes bash takes every character literally except the
    // closing quote, so each ' ends the word, adds an escaped ', reopens.
    text.replace(QLatin1Char('\''), QLatin1String("'\\''"));
    return QLatin1Char('\'') + text + QLatin1Char('\'');
}

QString UpdateInstallJob::scriptText(const QString& appFolder, const QString& newAppFolder,
                                     qint64 quittingProcess) {
    const QString app = shellQuoted(appFolder);
    const QString program = shellQuoted(appFolder + QStringLiteral("/bin/quillix"));
    const QString waitForQuit =
        quittingProcess > 0 ? QStringLiteral(
                                  "for attempt in $(seq 100); do kill -0 %1 2>/dev/null || break; "
                                  "sleep 0.1; done\n")
                                  .arg(quittingProcess)
                            : QString();
    return QStringLiteral(
               "#!/bin/bash\n"
               "sleep 1\n"
               "%4"
               "rm -rf -- %1\n"
               "cp -R -- %2 %1\n"
               "setsid %3 >/dev/null 2>&1 < /dev/null &\n"
               "rm -- \"$0\"")
        .arg(app, shellQuoted(newAppFolder), program, waitForQuit);
}

std::optional<QString> UpdateInstallJob::run() const {
    if (auto error = checkChecksum()) {
        return error;
    }
    const QString root = QDir::cleanPath(tempFolder);
    const QString folder = QDir::cleanPath(root + QStringLiteral("/Quillix-update-") + version);
    // A version with ".." in it must not make the removal below reach out of
    // the temporary folder.
    if (!folder.startsWith(root + QStringLiteral("/Quillix-update-"))) {
        return QStringLiteral("The update's version is not a usable folder name.");
    }
    if (auto error = unpack(folder)) {
        return error;
    }
    const std::optional<QString> newApp = findNewApp(folder);
    if (!newApp) {
        return appNotFound();
    }
    return startScript(*newApp);
}

std::optional<QString> UpdateInstallJob::checkChecksum() const {
    if (!sha256) {
        return std::nullopt;
    }
    QFile file(archivePath);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    if (!file.open(QIODevice::ReadOnly) || !hash.addData(&file)) {
        return file.errorString();
    }
    if (QString::fromLatin1(hash.result().toHex())
            .compare(sha256->trimmed(), Qt::CaseInsensitive) != 0) {
        return QStringLiteral("The downloaded update does not match its checksum.");
    }
    return std::nullopt;
}

std::optional<QString> UpdateInstallJob::unpack(const QString& folder) const {
    QDir(folder).removeRecursively();  // a leftover from an earlier try
    if (!QDir().mkpath(folder)) {
        return QStringLiteral("Could not create the folder %1.").arg(folder);
    }
    QProcess unzip;
    unzip.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    unzip.setStandardOutputFile(QProcess::nullDevice());
    unzip.start(QStringLiteral("/usr/bin/unzip"),
                {QStringLiteral("-q"), archivePath, QStringLiteral("-d"), folder});
    if (!unzip.waitForStarted()) {
        return unzip.errorString();
    }
    if (!unzip.waitForFinished(kUnzipTimeoutMs)) {
        unzip.kill();
        unzip.waitForFinished();
        return unzipFailed();
    }
    if (unzip.exitStatus() != QProcess::NormalExit || unzip.exitCode() != 0) {
        return unzipFailed();
    }
    qCInfo(lcUpdateInstall).noquote() << "Quillix: update" << version << "unpacked to" << folder;
    return std::nullopt;
}

std::optional<QString> UpdateInstallJob::startScript(const QString& newAppFolder) const {
    const QString scriptPath = QDir(tempFolder).filePath(QStringLiteral("quillix-update.sh"));
    QSaveFile script(scriptPath);
    if (!script.open(QIODevice::WriteOnly) ||
        script.write(scriptText(runningAppFolder, newAppFolder, quittingProcess).toUtf8()) < 0 ||
        !script.commit()) {
        return script.errorString();
    }
    QFile permissions(scriptPath);
    if (!permissions.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner |
                                    QFile::ReadGroup | QFile::ExeGroup | QFile::ReadOther |
                                    QFile::ExeOther)) {
        return permissions.errorString();
    }
    qCInfo(lcUpdateInstall).noquote()
        << "Quillix: installing update" << version << "over" << runningAppFolder;
    QProcess bash;
    bash.setProgram(QStringLiteral("/bin/bash"));
    bash.setArguments({scriptPath});
    if (!bash.startDetached()) {
        return bash.errorString();
    }
    return std::nullopt;
}
