// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QString>

#include "platform/sound_player.h"

class QThread;
class CanberraPlaybackWorker;

// Event sounds through libcanberra and the freedesktop sound theme. Sound
// servers and ALSA devices can take their time (or hang), so every call into
// libcanberra, from the creation of its context on, runs in order on one
// worker thread of this player.
class CanberraSoundPlayer : public SoundPlayer {
    Q_OBJECT
public:
    explicit CanberraSoundPlayer(QObject* parent = nullptr);
    ~CanberraSoundPlayer() override;

    void play(const QString& eventId) override;

Q_SIGNALS:
    // After each attempt, on this object's thread: 0 when the sound started,
    // otherwise libcanberra's (negative) error code, e.g. -9 for an id the
    // sound theme does not have.
    void played(const QString& eventId, int result);

private:
    QThread* thread_ = nullptr;
    CanberraPlaybackWorker* worker_ = nullptr;  // lives on thread_
};
