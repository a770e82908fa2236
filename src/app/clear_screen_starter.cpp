// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "app/clear_screen_starter.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <QtMath>
#include <algorithm>
#include <utility>

#include "platform/window_unmap_watcher.h"

namespace {

// One refresh of the screen, which a compositor needs to draw the desktop
// without the windows that left it.
int compositorFrameMs() {
    const QScreen* screen = QGuiApplication::primaryScreen();
    const qreal rate = screen != nullptr ? screen->refreshRate() : 0;
    return rate >= 20 ? std::clamp(qCeil(1000 / rate), 4, 50) : 17;
}

}  // namespace

ClearScreenStarter::ClearScreenStarter(WindowUnmapWatcher* watcher,
                                       std::chrono::milliseconds latest,
                                       std::function<void()> action, QObject* parent)
    : QObject(parent), watcher_(watcher), action_(std::move(action)) {
    deadline_.setSingleShot(true);
    deadline_.setTimerType(Qt::PreciseTimer);
    connect(&deadline_, &QTimer::timeout, this,
            [this] { follow(gate_ ? gate_->deadlinePassed() : CaptureStartGate::Step::startNow); });
    deadline_.start(latest);
    compositorFrame_.setSingleShot(true);
    compositorFrame_.setTimerType(Qt::PreciseTimer);
    connect(&compositorFrame_, &QTimer::timeout, this,
            [this] { follow(gate_->compositorFramePassed()); });
    if (watcher_) {
        connect(watcher_, &WindowUnmapWatcher::unmapped, this,
                [this](WindowUnmapWatcher::ScreenWindow window) {
                    if (gate_) {
                        follow(gate_->windowUnmapped(window));
                    } else {
                        leaving_.remove(window);  // gone before begin()
                    }
                });
    }
}

ClearScreenStarter::~ClearScreenStarter() {
    if (watcher_) {
        watcher_->stopWatching();
    }
}

void ClearScreenStarter::noteLeaving(QWidget& panel) {
    if (!panel.isVisible() || panel.windowHandle() == nullptr) {
        return;
    }
    if (!watcher_) {
        leaving_.insert(quint32(panel.winId()));  // never reported: the deadline decides
        return;
    }
    if (const auto screenWindow = watcher_->watch(panel.winId())) {
        leaving_.insert(*screenWindow);
    }
}

void ClearScreenStarter::begin(bool compositorRunning) {
    gate_.emplace(leaving_, compositorRunning);
    follow(gate_->step());
}

void ClearScreenStarter::follow(CaptureStartGate::Step step) {
    if (done_) {
        return;
    }
    switch (step) {
        case CaptureStartGate::Step::waitForUnmaps:
            return;
        case CaptureStartGate::Step::waitForCompositorFrame:
            if (!compositorFrame_.isActive()) {
                compositorFrame_.start(compositorFrameMs());
            }
            return;
        case CaptureStartGate::Step::startNow:
            break;
    }
    done_ = true;
    deadline_.stop();
    compositorFrame_.stop();
    if (watcher_) {
        watcher_->stopWatching();
    }
    action_();
    deleteLater();
}
