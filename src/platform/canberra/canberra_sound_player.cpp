// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "platform/canberra/canberra_sound_player.h"

#include <canberra.h>

#include <QMutex>
#include <QThread>
#include <vector>

namespace {

// Every sound of a player carries this id, so that they can be cancelled.
constexpr uint32_t kPlaybackId = 1;

// How long the player's destructor waits for a sound call that is stuck in a
// sound server before it gives up on the worker thread.
constexpr int kShutdownWaitMs = 2000;

// libcanberra's ALSA driver plays each sound on a detached thread of its own,
// and ca_context_destroy unloads the driver without waiting for that thread to
// leave the driver's code: destroying a context while a sound plays crashes
// the process. So a context is never destroyed; a player that goes away parks
// its context here (still reachable, so leak checkers stay quiet) for the rest
// of the process.
void retireContext(ca_context* context) {
    static QMutex mutex;
    static auto* const retired = new std::vector<ca_context*>;
    const QMutexLocker lock(&mutex);
    retired->push_back(context);
}

}  // namespace

// Owns the libcanberra context; created on first use on the player's worker
// thread, the only thread that touches it.
class CanberraPlaybackWorker : public QObject {
    Q_OBJECT
public:
    ~CanberraPlaybackWorker() override {
        if (context_ != nullptr) {
            ca_context_cancel(context_, kPlaybackId);
            retireContext(context_);
        }
    }

    void play(const QString& eventId) {
        int result = ensureContext();
        if (result == CA_SUCCESS) {
            const QByteArray id = eventId.toUtf8();
            result = ca_context_play(context_, kPlaybackId, CA_PROP_EVENT_ID, id.constData(),
                                     CA_PROP_CANBERRA_CACHE_CONTROL, "volatile", nullptr);
        }
        Q_EMIT attempted(eventId, result);
    }

Q_SIGNALS:
    void attempted(const QString& eventId, int result);

private:
    int ensureContext() {
        if (context_ != nullptr) {
            return CA_SUCCESS;
        }
        const int result = ca_context_create(&context_);
        if (result != CA_SUCCESS) {
            context_ = nullptr;
            return result;
        }
        // Sound servers show this name in their per-application volume list.
        ca_context_change_props(context_, CA_PROP_APPLICATION_NAME, "Quillix",
                                CA_PROP_APPLICATION_ID, "com.quillix.Quillix", nullptr);
        return CA_SUCCESS;
    }

    ca_context* context_ = nullptr;
};

CanberraSoundPlayer::CanberraSoundPlayer(QObject* parent)
    : SoundPlayer(parent), thread_(new QThread), worker_(new CanberraPlaybackWorker) {
    thread_->setObjectName(QStringLiteral("quillix-sound"));
    worker_->moveToThread(thread_);
    // The worker (and with it the context) is deleted on its own thread when
    // that thread's event loop ends.
    connect(thread_, &QThread::finished, worker_, &QObject::deleteLater);
    // Queued, so that `played` always arrives after play() has returned; the
    // connection ends with this object, so a late attempt reaches nobody.
    connect(worker_, &CanberraPlaybackWorker::attempted, this, &CanberraSoundPlayer::played,
            Qt::QueuedConnection);
    thread_->start(QThread::LowPriority);
}

CanberraSoundPlayer::~CanberraSoundPlayer() {
    thread_->quit();
    if (thread_->wait(kShutdownWaitMs)) {
        delete thread_;
    }
    // Otherwise a sound call hangs in libcanberra: the thread and worker are
    // left to the process's end rather than destroyed under it.
}

void CanberraSoundPlayer::play(const QString& eventId) {
    CanberraPlaybackWorker* worker = worker_;
    QMetaObject::invokeMethod(
        worker, [worker, eventId] { worker->play(eventId); }, Qt::QueuedConnection);
}

#include "canberra_sound_player.moc"
