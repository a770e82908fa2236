#include "capture/capture_service.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImageReader>
#include <QPointer>
#include <QProcess>
#include <QStandardPaths>
#include <QtConcurrent>

#include "app/diagnostics.h"
#include "capture/capture_registry.h"
#include "capture/image_clipboard.h"
#include "capture/screenshot_store.h"
#include "platform/notification_attachment.h"
#include "platform/notifier.h"
#include "platform/platform_services.h"
#include "platform/sound_player.h"
#include "storage/user_defaults.h"

namespace {

struct LoadedCapture {
    QImage image;
    QByteArray pngData;
};

// Reads a capture file back; runs on a worker thread.
LoadedCapture loadCapture(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    LoadedCapture loaded;
    loaded.pngData = file.readAll();
    loaded.image = QImage::fromData(loaded.pngData, "PNG");
    return loaded;
}

}  // namespace

CaptureService& CaptureService::shared() {
    static CaptureService* service = new CaptureService(Dependencies{
        CaptureRegistry::shared(),
        ScreenshotStore::shared(),
        UserDefaults::shared(),
        PlatformServices::instance().notifier(),
        PlatformServices::instance().soundPlayer(),
        QStandardPaths::writableLocation(QStandardPaths::DesktopLocation),
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
    if (const std::optional<QString> custom = dependencies_.defaults.customSaveFolder()) {
        QDir().mkpath(*custom);  // a failure shows up as a failed write
        return *custom;
    }
    return dependencies_.desktopFolder;
}

QString CaptureService::newCapturePath() const {
    return QDir(saveFolder()).filePath(screenshotFileName(QDateTime::currentDateTimeUtc()));
}

void CaptureService::captureWindow(quint32 windowId) {
    const QString destination = newCapturePath();
    auto* tool = new QProcess(this);
    connect(tool, &QProcess::errorOccurred, this, [tool](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) {
            printDiagnostic(QStringLiteral("⚠️ Quillix: captureWindow failed: ") +
                            tool->errorString());
            tool->deleteLater();
        }
    });
    connect(tool, &QProcess::finished, this,
            [this, tool, destination](int exitCode, QProcess::ExitStatus status) {
                tool->deleteLater();
                if (status != QProcess::NormalExit || exitCode != 0) {
                    return;
                }
                QPointer<CaptureService> self(this);
                auto loading = QtConcurrent::run(loadCapture, destination);
                loading.then(this, [self, destination](const LoadedCapture& loaded) {
                    if (self && !loaded.image.isNull()) {
                        self->finishCapture(destination, loaded.image, loaded.pngData);
                    }
                });
            });
    tool->start(dependencies_.captureToolPath, {QStringLiteral("-l"), QString::number(windowId),
                                                QStringLiteral("-x"), destination});
}

void CaptureService::finishCapture(const QString& path, const QImage& image,
                                   const QByteArray& pngData) {
    dependencies_.registry.record(path);
    putImageOnClipboard(image, pngData);
    dependencies_.library.refresh();
    dependencies_.sounds.play(QStringLiteral("camera-shutter"));
    postSavedNotification(path, image);
    Q_EMIT captureFinished(path);
}

void CaptureService::postSavedNotification(const QString& path, const QImage& image) {
    if (!dependencies_.notifier.isAuthorised()) {
        return;
    }
    const QString body = QFileInfo(path).fileName();
    QPointer<Notifier> notifier(&dependencies_.notifier);
    // The attachment is a PNG encoding of the image: do it off the GUI thread.
    QtConcurrent::run(writeNotificationAttachment, image)
        .then(this, [notifier, body](const QString& attachment) {
            if (notifier) {
                notifier->post(QStringLiteral("Screenshot saved"), body, attachment);
            }
        });
}
