// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QUrl>
#include <QWidget>

class QAudioOutput;
class QMediaPlayer;
class QSlider;
class QToolButton;
class QVideoWidget;

// Plays one recording: the video fills the view, a small control bar below
// it holds play/pause and the position slider. Playback starts at once.
class VideoPlayerView : public QWidget {
    Q_OBJECT

public:
    explicit VideoPlayerView(const QUrl& url, QWidget* parent = nullptr);
    ~VideoPlayerView() override;

    QUrl url() const { return url_; }
    QMediaPlayer* player() const { return player_; }
    QVideoWidget* videoWidget() const { return video_; }
    QToolButton* playPauseButton() const { return playPause_; }
    QSlider* positionSlider() const { return slider_; }

protected:
    void changeEvent(QEvent* event) override;

private:
    void showPlaybackState();
    void showPosition(qint64 position);

    QUrl url_;
    QMediaPlayer* player_ = nullptr;
    QAudioOutput* audio_ = nullptr;
    QVideoWidget* video_ = nullptr;
    QToolButton* playPause_ = nullptr;
    QSlider* slider_ = nullptr;
    bool scrubbing_ = false;
    bool started_ = false;
};
