// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QObject>
#include <QPointer>
#include <QRect>
#include <QString>
#include <functional>
#include <memory>
#include <optional>

class QScreen;
class RecordingStatusPanel;
class WindowPickSession;
struct WindowInfo;

// What the user goes through to record: pointing at a window (or taking the
// screen under the pointer), the recording with its status panel, and the
// finished file handed to the gallery. One recording at a time: a request
// while picking or recording is ignored. GUI thread only.
class RecordingPicker : public QObject {
    Q_OBJECT

public:
    enum class State { idle, picking, recording };

    // What the picker drives; the program's VideoRecorder in the shared
    // picker.
    class Recorder {
    public:
        virtual ~Recorder() = default;
        virtual void setOnFinished(std::function<void(const QString& path)> callback) = 0;
        virtual void start(QScreen& display, const std::optional<QRect>& area) = 0;
        virtual void stop() = 0;
        virtual bool isRecording() const = 0;
        virtual bool isFinishing() const = 0;
    };

    struct Dependencies {
        std::unique_ptr<Recorder> recorder;
        // Lists a finished recording first in the gallery.
        std::function<void(const QString& path)> insertFinished;
        // The screen recorded by recordFullScreen().
        std::function<QScreen*()> screenForFullScreen;
        // A new session for pointing at a window.
        std::function<std::unique_ptr<WindowPickSession>()> createPickSession;
    };

    // The program's picker: its recorder, the screenshot store and the
    // screen under the pointer.
    static RecordingPicker& shared();

    explicit RecordingPicker(Dependencies dependencies, QObject* parent = nullptr);
    ~RecordingPicker() override;

    RecordingPicker(const RecordingPicker&) = delete;
    RecordingPicker& operator=(const RecordingPicker&) = delete;

    // Lets the user point at a window with a blue outline; a click records
    // it, Escape gives up. Ignored unless idle.
    void pickWindowToRecord();
    // Records the whole screen under the pointer. Ignored unless idle.
    void recordFullScreen();
    // What "Stop" does: ends the recording; the file is finished meanwhile.
    void stopRecording();
    // At a quit: ends a pick or a recording and returns once every file is
    // finished and listed, so none is left half-written.
    void finishBeforeQuit();

    State state() const { return state_; }
    // The panel shown while recording, if any.
    RecordingStatusPanel* statusPanel() const { return panel_.get(); }

private:
    void windowPicked(const WindowInfo& window);
    void pickCancelled();
    // Starts recording `area` of `display` (all of it without one) once the
    // outline has surely left the screen.
    void startAfterDelay(QScreen& display, const std::optional<QRect>& area);
    void startNow(QScreen& display, const std::optional<QRect>& area);
    void recordingFinished(const QString& path);
    void dropPanel();
    void endPickSession();

    Dependencies dependencies_;
    State state_ = State::idle;
    // Counts the recordings asked for, so a start still waiting for its
    // pause belongs to the one that is still wanted.
    int attempt_ = 0;
    std::unique_ptr<WindowPickSession> session_;
    std::unique_ptr<RecordingStatusPanel> panel_;
};
