// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QObject>
#include <QPointer>
#include <QSet>
#include <QTimer>
#include <chrono>
#include <functional>
#include <optional>

#include "app/capture_start_gate.h"

class QWidget;
class WindowUnmapWatcher;

// Runs a capture action as soon as the panels of ours that were on screen
// have left it (see CaptureStartGate), and never later than a deadline
// counted from its creation. Usage: noteLeaving() each panel while it is
// still shown, hide the panels, then begin(). Deletes itself once the action
// has run. GUI thread only.
class ClearScreenStarter : public QObject {
    Q_OBJECT

public:
    // Without a `watcher` nothing can tell when a panel has gone, so a
    // start that had panels on screen waits for the deadline.
    ClearScreenStarter(WindowUnmapWatcher* watcher, std::chrono::milliseconds latest,
                       std::function<void()> action, QObject* parent = nullptr);
    ~ClearScreenStarter() override;

    void noteLeaving(QWidget& panel);
    void begin(bool compositorRunning);

private:
    void follow(CaptureStartGate::Step step);

    QPointer<WindowUnmapWatcher> watcher_;
    std::function<void()> action_;
    QSet<quint32> leaving_;
    std::optional<CaptureStartGate> gate_;
    QTimer deadline_;
    QTimer compositorFrame_;
    bool done_ = false;
};
