// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QTimer>
#include <functional>

#include "widgets/floating_panel.h"

class QLabel;
class QPushButton;

// The small panel floating at the top of the screen being recorded: a
// pulsing red dot, "Recording", the time recorded so far and a "Stop"
// button. It never takes the keyboard focus from the window the user works
// in. Its clock ticks once a second while shown and stops for good once the
// recorder no longer records. GUI thread only.
class RecordingStatusPanel : public FloatingPanel {
    Q_OBJECT

public:
    static constexpr int kWidth = 220;
    static constexpr int kHeight = 44;

    // `isRecording` is asked on every tick; `onStop` runs when "Stop" is
    // clicked.
    RecordingStatusPanel(std::function<bool()> isRecording, std::function<void()> onStop,
                         QWidget* parent = nullptr);

    // Where the panel sits on a screen of `screenGeometry`: centred, 60
    // points below its top edge.
    static QRect placement(const QRect& screenGeometry);
    // Minutes and seconds as the panel shows them: "1:05", "10:00".
    static QString formatElapsed(int seconds);

    // Places the panel on the screen of `screenGeometry` and shows it.
    void showOn(const QRect& screenGeometry);

    int elapsedSeconds() const { return elapsed_; }
    QString elapsedText() const;
    bool clockRunning() const { return clock_.isActive(); }

    // One second has passed: counts it while the recorder records, else
    // stops the clock.
    void tick();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    std::function<bool()> isRecording_;
    std::function<void()> onStop_;
    QWidget* dot_;
    QLabel* elapsedLabel_;
    QPushButton* stopButton_;
    QTimer clock_;
    bool clockStarted_ = false;
    int elapsed_ = 0;
};
