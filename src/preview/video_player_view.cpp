// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "preview/video_player_view.h"

#include <QAudioOutput>
#include <QEvent>
#include <QHBoxLayout>
#include <QMediaPlayer>
#include <QSlider>
#include <QToolButton>
#include <QVBoxLayout>
#include <QVideoWidget>
#include <algorithm>
#include <climits>

#include "widgets/symbol_icon.h"

VideoPlayerView::VideoPlayerView(const QUrl& url, QWidget* parent) : QWidget(parent), url_(url) {
    setAccessibleName(QStringLiteral("Recording: %1").arg(url.fileName()));

    player_ = new QMediaPlayer(this);
    audio_ = new QAudioOutput(this);
    player_->setAudioOutput(audio_);

    video_ = new QVideoWidget(this);
    video_->setAccessibleName(url.fileName());
    video_->setMinimumSize(160, 90);
    player_->setVideoOutput(video_);

    auto* bar = new QWidget(this);
    bar->setAccessibleName(QStringLiteral("Playback controls"));
    auto* barLayout = new QHBoxLayout(bar);
    barLayout->setContentsMargins(10, 4, 10, 4);
    barLayout->setSpacing(8);
    playPause_ = new QToolButton(bar);
    playPause_->setAutoRaise(true);
    playPause_->setIconSize(QSize(16, 16));
    playPause_->setFocusPolicy(Qt::NoFocus);
    slider_ = new QSlider(Qt::Horizontal, bar);
    slider_->setAccessibleName(QStringLiteral("Playback position"));
    slider_->setRange(0, 0);
    slider_->setFocusPolicy(Qt::NoFocus);
    barLayout->addWidget(playPause_);
    barLayout->addWidget(slider_, 1);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(video_, 1);
    column->addWidget(bar);

    connect(playPause_, &QToolButton::clicked, this, [this] {
        if (player_->playbackState() == QMediaPlayer::PlayingState) {
            player_->pause();
        } else {
            player_->play();
        }
    });
    connect(player_, &QMediaPlayer::playbackStateChanged, this,
            &VideoPlayerView::showPlaybackState);
    connect(player_, &QMediaPlayer::durationChanged, this, [this](qint64 duration) {
        slider_->setRange(0, static_cast<int>(std::min<qint64>(duration, INT_MAX)));
    });
    connect(player_, &QMediaPlayer::positionChanged, this, &VideoPlayerView::showPosition);
    connect(slider_, &QSlider::sliderPressed, this, [this] { scrubbing_ = true; });
    connect(slider_, &QSlider::sliderReleased, this, [this] {
        scrubbing_ = false;
        player_->setPosition(slider_->value());
    });
    connect(slider_, &QSlider::sliderMoved, this,
            [this](int position) { player_->setPosition(position); });

    showPlaybackState();
    // play() right after setSource() races the GStreamer backend of Qt 6.4,
    // which then links the video branch late and now and then never renders
    // a frame; starting once the media has loaded (prerolled) avoids that.
    connect(player_, &QMediaPlayer::mediaStatusChanged, this,
            [this](QMediaPlayer::MediaStatus status) {
                if (status == QMediaPlayer::LoadedMedia && !started_) {
                    started_ = true;
                    player_->play();
                }
            });
    player_->setSource(url_);
}

VideoPlayerView::~VideoPlayerView() {
    // Stop the pipeline before the video sink goes away.
    player_->stop();
    player_->setVideoOutput(nullptr);
}

void VideoPlayerView::showPlaybackState() {
    const bool playing = player_->playbackState() == QMediaPlayer::PlayingState;
    const QString label = playing ? QStringLiteral("Pause") : QStringLiteral("Play");
    playPause_->setIcon(
        symbolIcon(playing ? QStringLiteral("pause.fill") : QStringLiteral("play.fill"),
                   palette().color(QPalette::WindowText), QSize(16, 16)));
    playPause_->setToolTip(label);
    playPause_->setAccessibleName(label);
}

void VideoPlayerView::showPosition(qint64 position) {
    if (!scrubbing_) {
        slider_->setValue(static_cast<int>(std::min<qint64>(position, INT_MAX)));
    }
}

void VideoPlayerView::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        showPlaybackState();
    }
}
