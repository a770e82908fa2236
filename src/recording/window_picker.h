// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QObject>
#include <QtGlobal>
#include <functional>
#include <memory>
#include <optional>

class WindowPickSession;
struct WindowInfo;

// Window screenshots by pointing: the window under the pointer is outlined
// in purple, a click captures it through the capture tool once the outline
// has left the screen, a click on the bare desktop keeps picking, and Escape
// gives up with nothing captured. Everything the pick took (the pointer, the
// outline, the look-ups) is given back when it ends. GUI thread only.
class WindowPicker : public QObject {
    Q_OBJECT

public:
    struct Dependencies {
        // A new session for pointing at a window.
        std::function<std::unique_ptr<WindowPickSession>()> createPickSession;
        // Captures the window with this display-server id into a new file.
        std::function<void(quint32 windowId)> captureWindow;
    };

    // Long enough for the outline to have left the screen before the window
    // is captured.
    static constexpr int kCaptureDelayMs = 150;

    // The program's picker: the platform's pointer and window list, and the
    // capture service.
    static WindowPicker& shared();

    explicit WindowPicker(Dependencies dependencies, QObject* parent = nullptr);
    ~WindowPicker() override;

    WindowPicker(const WindowPicker&) = delete;
    WindowPicker& operator=(const WindowPicker&) = delete;

    // Starts picking; a pick already running starts afresh.
    void startPicking();
    // Ends picking without capturing.
    void stopPicking();
    // Captures the window outlined now, if any, and ends picking.
    void capturePick();

    bool isActive() const { return session_ != nullptr; }
    // The display-server id of the window outlined now.
    std::optional<quint32> hoveredWindowID() const;

private:
    void capture(quint32 windowId);
    void endSession();

    Dependencies dependencies_;
    std::unique_ptr<WindowPickSession> session_;
};
