// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

// Recordings in the preview: a real QuickTime clip made with the ffmpeg
// command-line tool plays through Qt Multimedia on the virtual desktop, and
// the preview treats it as a recording (player, no canvas, no save).

#include "preview/video_player_view.h"

#include <QDir>
#include <QMediaPlayer>
#include <QProcess>
#include <QSignalSpy>
#include <QSlider>
#include <QTemporaryDir>
#include <QToolButton>
#include <QtTest>

#include "annotation/annotation_sidebar.h"
#include "library/capture_registry.h"
#include "library/screenshot_store.h"
#include "preview/screenshot_preview_view.h"
#include "storage/preferences.h"
#include "storage/screenshot_metadata_store.h"
#include "storage/user_settings.h"

class VideoPlayerViewTest : public QObject {
    Q_OBJECT

private:
    QTemporaryDir folder;
    QString clipPath;

private Q_SLOTS:
    void initTestCase() {
        QVERIFY(folder.isValid());
        clipPath = QDir(folder.path()).filePath(QStringLiteral("clip.MOV"));
        QProcess ffmpeg;
        ffmpeg.start(QStringLiteral("ffmpeg"),
                     {"-v", "error", "-y", "-f", "lavfi", "-i", "testsrc=size=320x240:rate=10",
                      "-t", "1", "-pix_fmt", "yuv420p", clipPath});
        QVERIFY2(ffmpeg.waitForFinished(60000), "ffmpeg did not finish");
        QVERIFY2(ffmpeg.exitCode() == 0, ffmpeg.readAllStandardError().constData());
        QVERIFY(QFileInfo(clipPath).size() > 0);
    }

    void capitalMovClipPlays() {
        VideoPlayerView player(QUrl::fromLocalFile(clipPath));
        player.resize(480, 360);
        player.show();
        QVERIFY(QTest::qWaitForWindowExposed(&player));
        QMediaPlayer* media = player.player();
        QCOMPARE(media->source(), QUrl::fromLocalFile(clipPath));
        QTRY_VERIFY2_WITH_TIMEOUT(
            media->mediaStatus() == QMediaPlayer::InvalidMedia || media->duration() > 0,
            qPrintable(media->errorString()), 15000);
        QVERIFY2(media->error() == QMediaPlayer::NoError, qPrintable(media->errorString()));
        QVERIFY(media->duration() >= 900);
        QTRY_VERIFY2_WITH_TIMEOUT(
            media->position() > 0 || media->mediaStatus() == QMediaPlayer::EndOfMedia,
            qPrintable(QStringLiteral("state %1, status %2, error \"%3\"")
                           .arg(media->playbackState())
                           .arg(media->mediaStatus())
                           .arg(media->errorString())),
            15000);
        QCOMPARE(player.positionSlider()->maximum(), static_cast<int>(media->duration()));
        QCOMPARE(player.positionSlider()->accessibleName(), QStringLiteral("Playback position"));

        // The button pauses and resumes.
        if (media->playbackState() == QMediaPlayer::PlayingState) {
            QCOMPARE(player.playPauseButton()->accessibleName(), QStringLiteral("Pause"));
            QTest::mouseClick(player.playPauseButton(), Qt::LeftButton);
            QTRY_COMPARE_WITH_TIMEOUT(media->playbackState(), QMediaPlayer::PausedState, 5000);
            QCOMPARE(player.playPauseButton()->accessibleName(), QStringLiteral("Play"));
        }
    }

    void previewTreatsTheClipAsARecording() {
        QTemporaryDir data;
        ScreenshotMetadataStore store(data.path());
        // A library of its own over empty folders: any scan was asked for.
        CaptureRegistry registry(data.filePath("library"), data.filePath("legacy"));
        UserSettings settings(data.filePath("library"), data.filePath("legacy"));
        Preferences preferences(data.filePath("config/Quillix.conf"));
        ScreenshotStore library(data.filePath("desktop"), data.filePath("screenshots"), registry,
                                settings, preferences);
        ScreenshotPreviewView view(
            ScreenshotItem(clipPath, QDateTime::currentDateTime(), QDateTime::currentDateTime()),
            store, library);
        view.resize(900, 500);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QVERIFY(view.videoPlayer());
        QVERIFY(!view.canvas());
        QVERIFY(view.annotationSidebar()->isVisible());
        QVERIFY(!view.loadedImage());
        const QByteArray before = [this] {
            QFile file(clipPath);
            return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        }();
        QSignalSpy saved(&view, &ScreenshotPreviewView::saved);
        QTest::keyClick(&view, Qt::Key_S, Qt::ControlModifier);
        QVERIFY(!saved.wait(300));
        QFile file(clipPath);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), before);
        QVERIFY(library.waitForIdle(10000));
        QCOMPARE(library.publishedScanCount(), 1);  // its first scan only
    }
};

QTEST_MAIN(VideoPlayerViewTest)
#include "video_player_view_test.moc"
