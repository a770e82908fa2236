// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <functional>
#include <memory>

class ClearScreenStarter;
class HotKeyManager;
class HUDWindowController;
class MenuBarView;
class OnboardingWindowController;
class ScreenshotItem;
class PillPanel;
class PopoverWindow;
class AutostartEntry;
class QSystemTrayIcon;
class SettingsWindowController;
class ShelfWindow;

// The process's one long-lived controller: it runs the launch sequence, owns
// the tray icon, the gallery popover and the pill under it, and wires every
// hotkey to its action. GUI thread only.
class AppDelegate : public QObject {
    Q_OBJECT

public:
    AppDelegate();
    ~AppDelegate() override;

    void applicationDidFinishLaunching();

    // Opens the popover with its pill, or closes both.
    void togglePopover();
    bool isPopoverShown() const;

    // Closes the popover and the pill and stops watching for outside clicks.
    void handleClosePopover();

    // Hotkey actions. While an area editor is open, or a capture waits for
    // our panels to leave the screen, the hotkeys do nothing; the recording
    // hotkeys also while a recording is being picked or runs.
    void showHUD();
    void captureArea();
    // Lets the user point at a window to capture (from the HUD).
    void pickWindowToCapture();
    void recordWindow();
    void recordScreen();
    bool isCaptureUnderWay() const;
    static bool isRecordingUnderWay();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildTrayIcon();
    void buildPopover();
    void applyCustomBarIcon(const QString& imagePath);
    void showPopover();
    void showPillPanel();
    void hidePill();
    void popoverDidClose();
    void installClickMonitor();
    void removeClickMonitor();
    void closeOutsideClick(const QPoint& globalPosition, bool onOwnWindow);
    // Hides our panels, then runs `action` once they have left the screen,
    // at the latest after `latestMs`.
    void startOnClearScreen(int latestMs, std::function<void()> action);
    // Closes the HUD at once, if one is shown.
    void closeHUD();

    void runCleanUpAtLaunch();
    void setUpHotkeys();
    void setUpNotifications();
    void setUpUpdates();
    void openNotifiedCapture(const QString& path);
    static void openPreview(const ScreenshotItem& item);
    void showShelves();
    void showSettings();
    void showOnboardingAtFirstRun();
    void pauseHotkeys();
    void resumeHotkeys();

    std::unique_ptr<QSystemTrayIcon> trayIcon_;
    QString customIconPath_;
    std::unique_ptr<PopoverWindow> popover_;
    QPointer<MenuBarView> gallery_;  // the popover's content
    std::unique_ptr<PillPanel> pillPanel_;
    // Made on first use and kept: closing it only hides it.
    std::unique_ptr<ShelfWindow> shelfWindow_;
    std::unique_ptr<AutostartEntry> autostart_;
    std::unique_ptr<SettingsWindowController> settingsWindow_;
    bool clickMonitorInstalled_ = false;
    std::unique_ptr<HotKeyManager> hotKeyManager_;
    bool hotkeysPaused_ = false;
    quint64 hotkeyPauses_ = 0;  // counts pauseHotkeys() calls
    QPointer<ClearScreenStarter> pendingStart_;
    QPointer<HUDWindowController> hud_;
    // Kept while the welcome slides are shown.
    QPointer<OnboardingWindowController> onboarding_;
};
