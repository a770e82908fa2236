// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QObject>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <QTimer>
#include <functional>
#include <memory>

#include "gallery/hud_view.h"

class FloatingPanel;
class HotkeyBackend;
class QPropertyAnimation;

// The capture HUD: a small floating panel of capture actions next to the
// pointer. It closes by itself after a few seconds, at any click or key
// press in the program (the click still reaches the row under it), at
// Escape anywhere, or when a row is chosen; a chosen row's action follows
// once the HUD has left the screen. It never takes the keyboard focus from
// the window the user works in. GUI thread only.
class HUDWindowController : public QObject {
    Q_OBJECT

public:
    static constexpr QSize kSize{260, 210};
    // The panel's top left lies this far right of and below the pointer.
    static constexpr QPoint kPointerOffset{12, 8};
    // The least distance kept from the edges of the screen's available area.
    static constexpr int kScreenMargin = 8;
    static constexpr int kFadeInMs = 180;
    static constexpr int kFadeOutMs = 150;
    static constexpr int kActionDelayMs = 150;
    static constexpr double kDefaultDismissSeconds = 7;
    // The id under which Escape is grabbed while the HUD is shown.
    static constexpr quint32 kEscapeHotkeyId = 100;

    // What the rows start; each runs after the HUD has closed.
    struct Actions {
        std::function<void()> captureArea;
        std::function<void()> captureWindow;
        std::function<void()> recordWindow;
    };

    struct Options {
        // Seconds before the HUD closes by itself; 0 or less means 7.
        double autoDismissSeconds = 0;
        // Where Escape is grabbed while the HUD is shown; nothing without.
        HotkeyBackend* keys = nullptr;
    };

    // A hidden HUD placed next to `pointer` (logical desktop coordinates)
    // on the screen under it.
    HUDWindowController(const QPoint& pointer, Actions actions, Options options,
                        QObject* parent = nullptr);
    // Closes the window at once.
    ~HUDWindowController() override;

    // Where the panel goes for `pointer` on a screen whose available area is
    // `available`: right of and below the pointer, moved inside the area
    // with the margin; the top and left edges win on a screen too small.
    static QRect frameAt(const QPoint& pointer, const QRect& available);
    // How long the HUD stays up for the stored setting.
    static int autoDismissMs(double seconds);

    // Shows the HUD fading in, and starts the timer and the watch on clicks
    // and keys.
    void showWindow();
    // Fades the HUD out and closes it; closed() follows.
    void dismiss();

    QWidget* window() const;
    HUDView* view() const { return view_; }
    bool isDismissing() const { return dismissing_; }

Q_SIGNALS:
    // The window has left the screen for good.
    void closed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void choose(HUDView::Row row);
    void runLater(const std::function<void()>& action) const;
    void stopWatching();
    void closeWindow();

    Actions actions_;
    Options options_;
    std::unique_ptr<FloatingPanel> panel_;
    HUDView* view_ = nullptr;
    QTimer autoDismissTimer_;
    QPropertyAnimation* fade_ = nullptr;
    bool watching_ = false;
    bool dismissing_ = false;
};
