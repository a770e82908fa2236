#pragma once

#include <QObject>
#include <QPointer>
#include <memory>

class HotKeyManager;
class ScreenshotItem;
class PillPanel;
class PopoverWindow;
class QSystemTrayIcon;

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

private:
    void buildStatusItem();
    void buildPopover();
    void applyCustomBarIcon(const QString& imagePath);
    void showPopover();
    void showPillPanel();
    void orderOutPill();
    void popoverDidClose();
    void installClickMonitor();
    void removeClickMonitor();
    void closeOutsideClick(const QPoint& globalPosition);

    void runCleanUpAtLaunch();
    void setUpHotkeys();
    void setUpNotifications();
    void openNotifiedCapture(const QString& fileName);
    void openSelectedCapture(const ScreenshotItem& item);
    static void openPreview(const ScreenshotItem& item);

    // Hotkey actions.
    void showHUD();
    void captureArea();
    void recordWindow();
    void recordScreen();

    std::unique_ptr<QSystemTrayIcon> statusItem_;
    std::unique_ptr<PopoverWindow> popover_;
    std::unique_ptr<PillPanel> pillPanel_;
    bool clickMonitorInstalled_ = false;
    std::unique_ptr<HotKeyManager> hotKeyManager_;
};
