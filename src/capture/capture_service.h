#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QImage>
#include <QObject>
#include <QString>
#include <functional>

class CaptureRegistry;
class Notifier;
class ScreenshotStore;
class SoundPlayer;
class UserDefaults;

// Turns capture requests into PNG files in the save folder, and runs the one
// follow-up sequence after every saved screenshot: record it as our own, put
// it on the clipboard, refresh the library, play the shutter sound, and post
// the "Screenshot saved" notification. GUI thread only.
class CaptureService : public QObject {
    Q_OBJECT

public:
    struct Dependencies {
        CaptureRegistry& registry;
        ScreenshotStore& library;
        UserDefaults& defaults;
        Notifier& notifier;
        SoundPlayer& sounds;
        QString desktopFolder;
        QString captureToolPath;  // quillix-capture
    };

    static CaptureService& shared();

    explicit CaptureService(const Dependencies& dependencies, QObject* parent = nullptr);

    // "2026-11-16T09-45-11Z": ISO 8601 in UTC with whole seconds, ':' and '.' as '-'.
    static QString timestampText(const QDateTime& instant);
    // "Screenshot_2026-11-16T09-45-11Z.png".
    static QString screenshotFileName(const QDateTime& instant);

    // "customSaveFolder" (created when missing) or the Desktop.
    QString saveFolder() const;
    // The save folder + the file name for this instant.
    QString newCapturePath() const;

    // Captures one window, by its X window id, through the capture tool; the
    // follow-up runs when the tool succeeded and its file loads.
    void captureWindow(quint32 windowId);

    // The follow-up sequence for a file just written. `pngData` is the file's
    // PNG bytes when the caller has them at hand (they go on the clipboard as
    // they are, sparing a second encoding).
    void finishCapture(const QString& path, const QImage& image, const QByteArray& pngData = {});

Q_SIGNALS:
    // After each finished capture (for the shell and for tests).
    void captureFinished(const QString& path);

private:
    void postSavedNotification(const QString& path, const QImage& image);

    Dependencies dependencies_;
};
