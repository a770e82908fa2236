// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QObject>
#include <QPoint>
#include <QTimer>
#include <memory>
#include <optional>

#include "platform/window_list.h"
#include "widgets/window_outline.h"

class PointerPicker;

// One way of letting the user point at a window, shared by every picker:
// while it runs the pointer is a crosshair, the window under it (never one
// of ours) is outlined, a click on a window picks it, a click on the bare
// desktop keeps picking, and Escape cancels. When it ends, by a pick or
// Escape, nothing of it is left on screen and nothing of it keeps running.
// GUI thread only.
class WindowPickSession : public QObject {
    Q_OBJECT

public:
    // Picks with the platform's pointer picker and window list.
    explicit WindowPickSession(const OutlineStyle& style, QObject* parent = nullptr);
    // Picks with these (`windows` outlives the session). Without either the
    // session cannot pick, and start() cancels at once.
    WindowPickSession(const OutlineStyle& style, std::unique_ptr<PointerPicker> picker,
                      WindowList* windows, QObject* parent = nullptr);
    ~WindowPickSession() override;

    // Starts picking; a session already picking starts afresh.
    void start();
    // Ends picking without a signal.
    void stop();
    bool isActive() const { return active_; }
    // The window outlined right now.
    const std::optional<WindowInfo>& hoveredWindow() const { return hovered_; }

Q_SIGNALS:
    // Picking has ended on `window`; its outline is already gone.
    void picked(const WindowInfo& window);
    // Escape, or the pointer could not be taken; nothing is left on screen.
    void cancelled();

private:
    void followPointer(const QPoint& position);
    void updateHover();
    void pickAt(const QPoint& position);
    void cancel();

    OutlineStyle style_;
    std::unique_ptr<PointerPicker> picker_;
    WindowList* windows_;
    std::unique_ptr<WindowOutline> outline_;
    std::optional<WindowInfo> hovered_;
    QPoint pointer_;
    QTimer hoverFrame_;
    bool active_ = false;
};
