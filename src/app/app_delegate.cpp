// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "app/app_delegate.h"

#include <QApplication>
#include <QCursor>
#include <QEvent>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QScreen>
#include <QSystemTrayIcon>
#include <QTimer>

#include "app/bar_icon.h"
#include "app/clear_screen_starter.h"
#include "app/hot_key_manager.h"
#include "app/popover_window.h"
#include "area_capture/annotation_overlay_controller.h"
#include "gallery/hud_window_controller.h"
#include "gallery/menu_bar_view.h"
#include "gallery/pill_panel.h"
#include "library/screenshot_store.h"
#include "onboarding/onboarding_window_controller.h"
#include "platform/autostart_entry.h"
#include "platform/click_monitor.h"
#include "platform/notifier.h"
#include "platform/platform_services.h"
#include "platform/sound_player.h"
#include "platform/window_unmap_watcher.h"
#include "preview/screenshot_preview_window_controller.h"
#include "recording/recording_picker.h"
#include "recording/window_picker.h"
#include "settings/settings_window_controller.h"
#include "shelves/shelf_window.h"
#include "storage/envelope_file.h"
#include "storage/preferences.h"
#include "storage/screenshot_metadata_store.h"
#include "storage/shelf_store.h"
#include "storage/user_settings.h"
#include "updates/update_checker.h"
#include "updates/update_installer.h"
#include "widgets/popover_placement.h"

Q_LOGGING_CATEGORY(lcApp, "quillix.app")

namespace {

// A capture starts once our panels have left the screen, and no later than
// these pauses (which once were always waited in full): 0.4 s and 0.15 s for
// the area editor, 0.15 s for the recordings.
constexpr int kAreaCaptureLatestStartMs = 400 + 150;
constexpr int kRecordingLatestStartMs = 150;

QScreen* screenAt(const QPoint& point) {
    QScreen* screen = QGuiApplication::screenAt(point);
    return screen != nullptr ? screen : QGuiApplication::primaryScreen();
}

}  // namespace

AppDelegate::AppDelegate() = default;

AppDelegate::~AppDelegate() {
    removeClickMonitor();
}

void AppDelegate::applicationDidFinishLaunching() {
    buildTrayIcon();
    buildPopover();
    showOnboardingAtFirstRun();
    runCleanUpAtLaunch();
    setUpHotkeys();
    setUpNotifications();
    setUpUpdates();
    // The first screen grab of a process sets up shared memory (50–80 ms):
    // pay for it now rather than on the first area capture.
    QTimer::singleShot(0, this, [] { AnnotationOverlayController::warmUp(); });
}

void AppDelegate::buildTrayIcon() {
    trayIcon_ = std::make_unique<QSystemTrayIcon>(BarIcon::builtIn());
    trayIcon_->setToolTip(QStringLiteral("Quillix"));
    // The icon is drawn in the palette's text colour: a new palette (a
    // changed desktop theme) redraws it.
    qApp->installEventFilter(this);
    connect(trayIcon_.get(), &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                // Two quick clicks report the second as a double click: it
                // still toggles, so open-then-close works at any speed.
                if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick) {
                    togglePopover();
                }
            });
    trayIcon_->show();
}

void AppDelegate::buildPopover() {
    popover_ = std::make_unique<PopoverWindow>();
    // The gallery is made once and kept, so its filters survive closing and
    // reopening the popover.
    auto* gallery = new MenuBarView();
    gallery_ = gallery;
    popover_->setContent(gallery);
    // The preview's own opening closes the popover and waits for it once.
    connect(gallery, &MenuBarView::itemSelected, this, &AppDelegate::openPreview);
    connect(popover_.get(), &PopoverWindow::closed, this, &AppDelegate::popoverDidClose);

    const QPointer<AppDelegate> self(this);
    ScreenshotPreviewWindowController::setPopoverCloser([self] {
        if (self) {
            self->handleClosePopover();
        }
    });

    const QString customIcon = Preferences::shared().customAppIconPath();
    if (!customIcon.isEmpty()) {
        applyCustomBarIcon(customIcon);
    }
}

void AppDelegate::applyCustomBarIcon(const QString& imagePath) {
    customIconPath_ = imagePath;
    trayIcon_->setIcon(BarIcon::fromFile(imagePath).value_or(BarIcon::builtIn()));
}

bool AppDelegate::eventFilter(QObject* watched, QEvent* event) {
    if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange && trayIcon_) {
        applyCustomBarIcon(customIconPath_);
    }
    return QObject::eventFilter(watched, event);
}

bool AppDelegate::isPopoverShown() const {
    return popover_ && popover_->isVisible();
}

void AppDelegate::togglePopover() {
    if (isPopoverShown()) {
        handleClosePopover();
        return;
    }
    if (gallery_) {
        gallery_->prepareToShow();
    }
    showPopover();
    showPillPanel();
    installClickMonitor();
}

void AppDelegate::showPopover() {
    const QRect iconFrame = trayIcon_->geometry();
    const QPoint anchor = iconFrame.isEmpty() ? QCursor::pos() : iconFrame.center();
    const QRect available = screenAt(anchor)->availableGeometry();
    popover_->setGeometry(PopoverPlacement::popoverFrame(iconFrame, QCursor::pos(), available));
    popover_->show();
    popover_->raise();
    popover_->activateWindow();
}

void AppDelegate::showPillPanel() {
    hidePill();
    const QRect popoverFrame = popover_->geometry();
    QScreen* screen = screenAt(popoverFrame.center());
    FooterPillView::Actions actions;
    actions.showSettings = [self = QPointer<AppDelegate>(this)] {
        if (self) {
            self->showSettings();
        }
    };
    actions.showShelves = [self = QPointer<AppDelegate>(this)] {
        if (self) {
            self->showShelves();
        }
    };
    // exit(), not quit(): no window may veto quitting from the pill.
    actions.quit = [] {
        // Unsaved annotations in a preview are asked about first.
        ScreenshotPreviewWindowController::settleUnsavedChanges([] { QCoreApplication::exit(0); });
    };
    actions.closePopover = [self = QPointer<AppDelegate>(this)] {
        if (self) {
            self->handleClosePopover();
        }
    };
    pillPanel_ = std::make_unique<PillPanel>(
        ScreenshotStore::shared(), PlatformServices::instance().soundPlayer(), std::move(actions));
    pillPanel_->setGeometry(PopoverPlacement::pillFrame(popoverFrame, screen->availableGeometry()));
    pillPanel_->showFadingIn();
}

void AppDelegate::hidePill() {
    pillPanel_.reset();
}

void AppDelegate::handleClosePopover() {
    if (popover_) {
        popover_->hide();  // popoverDidClose does the rest
    }
    hidePill();
    removeClickMonitor();
}

void AppDelegate::popoverDidClose() {
    hidePill();
    removeClickMonitor();
}

void AppDelegate::installClickMonitor() {
    removeClickMonitor();
    ClickMonitor* monitor = PlatformServices::instance().clickMonitor();
    if (monitor == nullptr) {
        return;
    }
    connect(monitor, &ClickMonitor::pressed, this, &AppDelegate::closeOutsideClick);
    monitor->start();
    clickMonitorInstalled_ = true;
}

void AppDelegate::removeClickMonitor() {
    if (!clickMonitorInstalled_) {
        return;
    }
    clickMonitorInstalled_ = false;
    if (ClickMonitor* monitor = PlatformServices::instance().clickMonitor()) {
        monitor->stop();
        disconnect(monitor, &ClickMonitor::pressed, this, &AppDelegate::closeOutsideClick);
    }
}

void AppDelegate::closeOutsideClick(const QPoint& globalPosition, bool onOwnWindow) {
    // A press in a window of ours (a cell's menu, its rename or event
    // dialog, a preview) belongs to the gallery's own work.
    if (!isPopoverShown() || onOwnWindow) {
        return;
    }
    const bool inPopover = popover_->frameGeometry().contains(globalPosition);
    const bool inPill = pillPanel_ && pillPanel_->frameGeometry().contains(globalPosition);
    // A press on the tray icon is left to the icon's own click, which toggles
    // the popover; closing here too would let that click open it again.
    const bool onTrayIcon = trayIcon_ && trayIcon_->geometry().contains(globalPosition);
    if (!inPopover && !inPill && !onTrayIcon) {
        handleClosePopover();
    }
}

void AppDelegate::runCleanUpAtLaunch() {
    // The library publishes its first scan only after this launch sequence has
    // returned, so this finds an empty list: older captures stay listed.
    ScreenshotStore::shared().autoClear(Preferences::shared().autoClearDays());
}

void AppDelegate::setUpHotkeys() {
    HotkeyBackend* backend = PlatformServices::instance().hotkeyBackend();
    if (backend == nullptr) {
        qCWarning(lcApp).noquote()
            << QStringLiteral("⚠️ Quillix: global hotkeys are not available on this display");
        return;
    }
    hotKeyManager_ = std::make_unique<HotKeyManager>(*backend, UserSettings::shared());
    // Callbacks hold the delegate weakly. While a capture is under way the
    // hotkeys do nothing: a gallery or second editor opening under the
    // editor's overlay would take its keyboard.
    QPointer<AppDelegate> self(this);
    const auto weakly = [self](void (AppDelegate::*action)()) {
        return [self, action] {
            if (self && !self->isCaptureUnderWay()) {
                (self.data()->*action)();
            }
        };
    };
    hotKeyManager_->onTriggered = [self] {
        QTimer::singleShot(0, self, [self] {
            if (!self->isCaptureUnderWay()) {
                self->togglePopover();
            }
        });
    };
    hotKeyManager_->onShowHUD = weakly(&AppDelegate::showHUD);
    hotKeyManager_->onCaptureArea = weakly(&AppDelegate::captureArea);
    // The window-capture hotkey is registered but deliberately does nothing:
    // window capture starts from the capture HUD.
    hotKeyManager_->onRecordWindow = weakly(&AppDelegate::recordWindow);
    hotKeyManager_->onRecordScreen = weakly(&AppDelegate::recordScreen);
    hotKeyManager_->registerAll();
    // Every later change of the bindings re-registers all of them.
    connect(
        &UserSettings::shared(), &UserSettings::hotkeysChanged, this,
        [this] {
            // A shortcut recorded while paused is registered once, when the
            // recording ends.
            if (!hotkeysPaused_) {
                hotKeyManager_->registerAll();
            }
        },
        Qt::QueuedConnection);
}

void AppDelegate::setUpNotifications() {
    connect(&PlatformServices::instance().notifier(), &Notifier::activated, this,
            &AppDelegate::openNotifiedCapture);
}

void AppDelegate::openPreview(const ScreenshotItem& item) {
    ScreenshotPreviewWindowController::show(item);
}

void AppDelegate::showShelves() {
    if (!shelfWindow_) {
        shelfWindow_ = std::make_unique<ShelfWindow>(
            ShelfWindow::Stores{ShelfStore::shared(), UserSettings::shared(), Preferences::shared(),
                                ScreenshotMetadataStore::shared(), ScreenshotStore::shared()},
            &AppDelegate::openPreview);
    }
    shelfWindow_->present();
}

void AppDelegate::setUpUpdates() {
    UpdateChecker::setInstallAction(
        [](const AppcastRelease& release) { UpdateInstaller::shared().install(release); });
    UpdateChecker::shared().start();
}

void AppDelegate::showOnboardingAtFirstRun() {
    if (Preferences::shared().hasSeenOnboarding()) {
        return;
    }
    onboarding_ = new OnboardingWindowController(
        OnboardingWindowController::Dependencies{
            Preferences::shared(),
            [] { return PlatformServices::instance().screenCaptureGranted(); },
            // No desktop has a settings page for screen capture on X11.
            {}},
        this);
    connect(onboarding_, &OnboardingWindowController::closed, onboarding_, &QObject::deleteLater);
    onboarding_->show();
}

void AppDelegate::showSettings() {
    if (!settingsWindow_) {
        PlatformServices& platform = PlatformServices::instance();
        autostart_ = std::make_unique<AutostartEntry>(QCoreApplication::applicationFilePath());
        const QPointer<AppDelegate> self(this);
        SettingsServices services{
            Preferences::shared(),
            UserSettings::shared(),
            ShelfStore::shared(),
            platform.keyboardLayout(),
            platform.notifier(),
            *autostart_,
            dataDirectory() + QStringLiteral("/icons"),
            [&platform] { return platform.screenCaptureGranted(); },
            [&platform] { return platform.accessibilityGranted(); },
            [self] {
                if (self) {
                    self->pauseHotkeys();
                }
            },
            [self] {
                if (self) {
                    self->resumeHotkeys();
                }
            },
            [] { UpdateChecker::shared().check(true); },
        };
        settingsWindow_ = std::make_unique<SettingsWindowController>(std::move(services));
        connect(settingsWindow_.get(), &SettingsWindowController::customBarIconChanged, this,
                &AppDelegate::applyCustomBarIcon);
    }
    settingsWindow_->show();
}

// While a shortcut is being recorded the global grabs are released, so the
// combination pressed reaches the recorder rather than starting its action.
void AppDelegate::pauseHotkeys() {
    ++hotkeyPauses_;
    if (hotKeyManager_ && !hotkeysPaused_) {
        hotkeysPaused_ = true;
        qCInfo(lcApp).noquote() << QStringLiteral(
            "Quillix: hotkeys paused while a shortcut is recorded");
        hotKeyManager_->unregisterAll();
    }
}

// Queued behind the change the recording may just have saved, whose own
// re-registration is then skipped: the bindings are registered once. A new
// recording started meanwhile keeps them paused.
void AppDelegate::resumeHotkeys() {
    QTimer::singleShot(0, this, [this, pauses = hotkeyPauses_] {
        if (hotKeyManager_ && hotkeysPaused_ && pauses == hotkeyPauses_) {
            hotkeysPaused_ = false;
            hotKeyManager_->registerAll();
        }
    });
}

void AppDelegate::openNotifiedCapture(const QString& path) {
    const QFileInfo file(path);
    if (!file.isFile()) {
        return;  // moved or deleted since
    }
    // A click right after the notification shows may come before the
    // library has listed the capture: it opens all the same, from its file.
    const QDateTime created = file.birthTime();
    ScreenshotItem item(file.absoluteFilePath(),
                        created.isValid() ? created : ScreenshotItem::distantPast(),
                        file.lastModified());
    for (const ScreenshotItem& listed : ScreenshotStore::shared().screenshots()) {
        if (QFileInfo(listed.path()) == file) {
            item = listed;
            break;
        }
    }
    QTimer::singleShot(0, this, [item] { openPreview(item); });
}

void AppDelegate::showHUD() {
    // While a window is being picked, the pointer belongs to the pick.
    if (isCaptureUnderWay() ||
        RecordingPicker::shared().state() == RecordingPicker::State::picking) {
        return;
    }
    closeHUD();
    QPointer<AppDelegate> self(this);
    const auto weakly = [self](void (AppDelegate::*action)()) {
        return [self, action] {
            if (self) {
                (self.data()->*action)();
            }
        };
    };
    HUDWindowController::Actions actions{weakly(&AppDelegate::captureArea),
                                         weakly(&AppDelegate::pickWindowToCapture),
                                         weakly(&AppDelegate::recordWindow)};
    HUDWindowController::Options options{Preferences::shared().autoDismissSeconds(),
                                         PlatformServices::instance().hotkeyBackend()};
    hud_ = new HUDWindowController(QCursor::pos(), std::move(actions), options, this);
    connect(hud_, &HUDWindowController::closed, hud_, &QObject::deleteLater);
    hud_->showWindow();
}

void AppDelegate::closeHUD() {
    delete hud_;
}

void AppDelegate::pickWindowToCapture() {
    if (isCaptureUnderWay() || isRecordingUnderWay()) {
        return;
    }
    WindowPicker::shared().startPicking();
}

bool AppDelegate::isCaptureUnderWay() const {
    return pendingStart_ || AnnotationOverlayController::isEditorOpen() ||
           WindowPicker::shared().isActive();
}

void AppDelegate::captureArea() {
    if (isCaptureUnderWay()) {
        return;  // one editor at a time
    }
    startOnClearScreen(kAreaCaptureLatestStartMs, [] { AnnotationOverlayController::start(); });
}

bool AppDelegate::isRecordingUnderWay() {
    return RecordingPicker::shared().state() != RecordingPicker::State::idle;
}

void AppDelegate::recordWindow() {
    // One recording at a time; the gallery and screenshots stay at hand
    // while it runs.
    if (isCaptureUnderWay() || isRecordingUnderWay()) {
        return;
    }
    startOnClearScreen(kRecordingLatestStartMs,
                       [] { RecordingPicker::shared().pickWindowToRecord(); });
}

void AppDelegate::recordScreen() {
    if (isCaptureUnderWay() || isRecordingUnderWay()) {
        return;
    }
    startOnClearScreen(kRecordingLatestStartMs,
                       [] { RecordingPicker::shared().recordFullScreen(); });
}

void AppDelegate::startOnClearScreen(int latestMs, std::function<void()> action) {
    // Only the panels leave: the tray icon, previews and dialogs stay as
    // they are, and may well be what the user wants to capture.
    PlatformServices& platform = PlatformServices::instance();
    auto* starter =
        new ClearScreenStarter(platform.windowUnmapWatcher(), std::chrono::milliseconds(latestMs),
                               std::move(action), this);
    QWidget* hudWindow = hud_ != nullptr ? hud_->window() : nullptr;
    for (QWidget* panel : {static_cast<QWidget*>(popover_.get()),
                           static_cast<QWidget*>(pillPanel_.get()), hudWindow}) {
        if (panel != nullptr) {
            starter->noteLeaving(*panel);
        }
    }
    closeHUD();
    handleClosePopover();
    delete pendingStart_;
    pendingStart_ = starter;
    starter->begin(platform.compositorRunning());
}
