// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "library/capture_service.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLoggingCategory>
#include <QPointer>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtConcurrent>
#include <algorithm>
#include <utility>

#include "library/capture_image_loader.h"
#include "library/capture_registry.h"
#include "library/captures_in_flight.h"
#include "library/image_clipboard.h"
#include "library/screenshot_store.h"
#include "platform/notification_attachment.h"
#include "platform/notifier.h"
#include "platform/platform_services.h"
#include "platform/sound_player.h"
#include "storage/envelope_file.h"
#include "storage/preferences.h"

Q_LOGGING_CATEGORY(lcCapture, "quillix.capture")

namespace {

// A window capture as the tool took it, and where it was saved.
struct SavedWindowCapture {
    QImage image;
    QByteArray pngData;
    NewCaptureFile file;
};

// Reads the tool's file back and writes it as a new capture; runs on a
// worker thread. A file that does not load ends the capture silently.
SavedWindowCapture saveToolOutput(const QString& toolOutput,
                                  const CaptureDestination& destination) {
    SavedWindowCapture capture;
    LoadedCaptureImage loaded = loadCaptureImage(toolOutput, PngBytes::wanted);
    if (!loaded.loaded() || loaded.pngData.isEmpty()) {
        return capture;
    }
    capture.image = std::move(loaded.image);
    capture.pngData = std::move(loaded.pngData);
    capture.file = writeNewCaptureFile(capture.pngData, destination);
    return capture;
}

// "/home/u/Desktop can't be used (Not a directory)", or the bare problem when
// no folder was tried.
QString whyNotInSaveFolder(const NewCaptureFile& file) {
    if (file.saveFolder.isEmpty()) {
        return file.saveFolderProblem;
    }
    return QStringLiteral("%1 can't be used (%2)").arg(file.saveFolder, file.saveFolderProblem);
}

}  // namespace

CaptureService& CaptureService::shared() {
    static auto* service = new CaptureService(Dependencies{
        CaptureRegistry::shared(),
        ScreenshotStore::shared(),
        Preferences::shared(),
        PlatformServices::instance().notifier(),
        PlatformServices::instance().soundPlayer(),
        QStandardPaths::writableLocation(QStandardPaths::DesktopLocation),
        {QStandardPaths::writableLocation(QStandardPaths::PicturesLocation), dataDirectory()},
        QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("quillix-capture")),
    });
    return *service;
}

CaptureService::CaptureService(const Dependencies& dependencies, QObject* parent)
    : QObject(parent), dependencies_(dependencies) {}

QString CaptureService::timestampText(const QDateTime& instant) {
    QString text =
        instant.toUTC().toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss")) + QLatin1Char('Z');
    text.replace(QLatin1Char(':'), QLatin1Char('-'));
    text.replace(QLatin1Char('.'), QLatin1Char('-'));
    return text;
}

QString CaptureService::screenshotFileName(const QDateTime& instant) {
    return QStringLiteral("Screenshot_") + timestampText(instant) + QStringLiteral(".png");
}

QString CaptureService::saveFolder() const {
    return dependencies_.preferences.customSaveFolder().value_or(dependencies_.desktopFolder);
}

CaptureDestination CaptureService::newCaptureDestination() const {
    return {screenshotFileName(QDateTime::currentDateTimeUtc()), saveFolder(),
            dependencies_.fallbackFolders};
}

void CaptureService::captureWindow(quint32 windowId) {
    // The tool writes into a private scratch folder; from there the file is
    // saved like every capture: numbered when its name is taken, and in a
    // fallback folder when the save folder cannot take it.
    auto scratch = std::make_shared<QTemporaryDir>(
        QDir(QDir::tempPath()).filePath(QStringLiteral("quillix-capture-XXXXXX")));
    if (!scratch->isValid()) {
        qCWarning(lcCapture).noquote()
            << QStringLiteral("⚠️ Quillix: captureWindow failed: ") + scratch->errorString();
        return;
    }
    const CaptureDestination destination = newCaptureDestination();
    const QString toolOutput = scratch->filePath(destination.fileName);
    const CaptureInFlightToken inFlight = startCaptureInFlight();
    auto* tool = new QProcess(this);
    connect(tool, &QProcess::errorOccurred, this, [tool](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) {
            qCWarning(lcCapture).noquote()
                << QStringLiteral("⚠️ Quillix: captureWindow failed: ") + tool->errorString();
            tool->deleteLater();
        }
    });
    connect(tool, &QProcess::finished, this,
            [this, tool, destination, toolOutput, scratch, inFlight](int exitCode,
                                                                     QProcess::ExitStatus status) {
                tool->deleteLater();
                if (status != QProcess::NormalExit || exitCode != 0) {
                    return;
                }
                QPointer<CaptureService> self(this);
                QtConcurrent::run([toolOutput, destination, scratch] {
                    SavedWindowCapture capture = saveToolOutput(toolOutput, destination);
                    scratch->remove();
                    return capture;
                }).then(this, [self, inFlight](const SavedWindowCapture& capture) {
                    if (self && !capture.image.isNull()) {
                        self->finishNewCapture(capture.file, capture.image, capture.pngData);
                    }
                });
            });
    tool->start(dependencies_.captureToolPath, {QStringLiteral("-l"), QString::number(windowId),
                                                QStringLiteral("-x"), toolOutput});
}

void CaptureService::finishCapture(const QString& path, const QImage& image,
                                   const QByteArray& pngData) {
    followUp(path, image, pngData, QFileInfo(path).fileName(), false);
}

void CaptureService::finishNewCapture(const NewCaptureFile& file, const QImage& image,
                                      const QByteArray& pngData) {
    if (file.inSaveFolder()) {
        finishCapture(file.path, image, pngData);
        return;
    }
    const QString why = whyNotInSaveFolder(file);
    if (file.written()) {
        const QString where = QStringLiteral("Saved as %1 because %2.").arg(file.path, why);
        qCWarning(lcCapture).noquote()
            << QStringLiteral("⚠️ Quillix: screenshot saved as %1 because %2")
                   .arg(file.path, why);
        followUp(file.path, image, pngData, where, true);
        return;
    }
    qCWarning(lcCapture).noquote()
        << QStringLiteral("⚠️ Quillix: screenshot not saved: %1; it is on the clipboard")
               .arg(why);
    putImageOnClipboard(image, pngData);
    const QString elsewhere =
        file.saveFolder.isEmpty() ? QString() : QStringLiteral(", nor could any other folder");
    postNotification(
        QStringLiteral("Screenshot not saved"),
        QStringLiteral("%1%2. The screenshot is on the clipboard.").arg(why, elsewhere), image);
}

void CaptureService::followUp(const QString& path, const QImage& image, const QByteArray& pngData,
                              const QString& notificationBody, bool inFallbackFolder) {
    const QString folder = QDir::cleanPath(QFileInfo(path).absolutePath());
    const bool scanned = std::any_of(
        dependencies_.library.scanFolders().cbegin(), dependencies_.library.scanFolders().cend(),
        [&folder](const QString& listed) { return QDir::cleanPath(listed) == folder; });
    if (inFallbackFolder && !scanned) {
        // The library does not look there: it lists the file at once (and
        // records it first, so the registry still comes first).
        dependencies_.library.insertNewCapture(path);
    } else {
        dependencies_.registry.record(path);
    }
    putImageOnClipboard(image, pngData);
    if (!inFallbackFolder || scanned) {
        dependencies_.library.refresh();
    }
    dependencies_.sounds.play(QStringLiteral("camera-shutter"));
    postNotification(QStringLiteral("Screenshot saved"), notificationBody, image, path);
    Q_EMIT captureFinished(path);
}

void CaptureService::postNotification(const QString& summary, const QString& body,
                                      const QImage& image, const QString& subject) {
    if (!dependencies_.notifier.isAuthorised()) {
        return;
    }
    QPointer<Notifier> notifier(&dependencies_.notifier);
    // The attachment is a PNG encoding of the image: do it off the GUI thread.
    QtConcurrent::run(writeNotificationAttachment, image)
        .then(this, [notifier, summary, body, subject](const QString& attachment) {
            if (notifier) {
                notifier->post(summary, body, attachment, subject);
            }
        });
}
