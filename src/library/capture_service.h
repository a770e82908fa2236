// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QImage>
#include <QObject>
#include <QString>
#include <QStringList>
#include <functional>

#include "library/capture_file_writer.h"

class CaptureRegistry;
class Notifier;
class ScreenshotStore;
class SoundPlayer;
class Preferences;

// Turns capture requests into PNG files in the save folder, and runs the one
// follow-up sequence after every saved screenshot: record it as our own, put
// it on the clipboard, refresh the library, play the shutter sound, and post
// the "Screenshot saved" notification. A capture never vanishes: when the
// save folder cannot take it, it goes to the first fallback folder that can
// (Pictures, then the data folder) and the notification says where and why;
// when no folder can, it stays on the clipboard and the notification
// ("Screenshot not saved") says why. GUI thread only.
class CaptureService : public QObject {
    Q_OBJECT

public:
    struct Dependencies {
        CaptureRegistry& registry;
        ScreenshotStore& library;
        Preferences& preferences;
        Notifier& notifier;
        SoundPlayer& sounds;
        QString desktopFolder;
        QStringList fallbackFolders;  // in order, for when the save folder fails
        QString captureToolPath;      // quillix-capture
    };

    static CaptureService& shared();

    explicit CaptureService(const Dependencies& dependencies, QObject* parent = nullptr);

    // "2026-11-16T09-45-11Z": ISO 8601 in UTC with whole seconds, ':' and '.' as '-'.
    static QString timestampText(const QDateTime& instant);
    // "Screenshot_2026-11-16T09-45-11Z.png".
    static QString screenshotFileName(const QDateTime& instant);

    // "customSaveFolder" or the Desktop (created when the capture is written).
    QString saveFolder() const;
    // Where a capture taken now goes: the file name for this instant, the
    // save folder and the fallback folders. Write it with writeNewCaptureFile.
    CaptureDestination newCaptureDestination() const;

    // Captures one window, by its X window id, through the capture tool; the
    // follow-up runs when the tool succeeded and its file loads.
    void captureWindow(quint32 windowId);

    // The follow-up sequence for a file just written in the save folder.
    // `pngData` is the file's PNG bytes when the caller has them at hand
    // (they go on the clipboard as they are, sparing a second encoding).
    void finishCapture(const QString& path, const QImage& image, const QByteArray& pngData = {});

    // The follow-up for a new capture wherever writeNewCaptureFile put it:
    // in the save folder, in a fallback folder (with a warning line and a
    // notification saying where and why), or nowhere (the image stays on the
    // clipboard, with a warning line and a "Screenshot not saved"
    // notification).
    void finishNewCapture(const NewCaptureFile& file, const QImage& image,
                          const QByteArray& pngData = {});

Q_SIGNALS:
    // After each finished capture (for the shell and for tests).
    void captureFinished(const QString& path);

private:
    void followUp(const QString& path, const QImage& image, const QByteArray& pngData,
                  const QString& notificationBody, bool inFallbackFolder);
    // `subject` is what a click on the notification reports: the capture's path.
    void postNotification(const QString& summary, const QString& body, const QImage& image,
                          const QString& subject = {});

    Dependencies dependencies_;
};
