// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

// The shell on the real X server of the test desktop: the tray icon's
// image, when a selected capture's preview and an area capture start, and
// the X11 services behind them (unmap watching, compositor detection).
#include <xcb/xcb.h>

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPointer>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QWindow>
#include <cstdlib>
#include <optional>

#include "app/app_delegate.h"
#include "app/bar_icon.h"
#include "area_capture/annotation_overlay_controller.h"
#include "gallery/menu_bar_view.h"
#include "library/screenshot_item.h"
#include "platform/platform_services.h"
#include "platform/window_unmap_watcher.h"
#include "widgets/window_corners.h"

namespace {

// The largest difference in luma between the icon's pixels, laid over
// `panel`, and the panel itself.
int strongestContrast(const QIcon& icon, const QColor& panel) {
    const QImage glyph = icon.pixmap(QSize(BarIcon::kSize, BarIcon::kSize), 1.0).toImage();
    QImage shown(glyph.size(), QImage::Format_RGB32);
    shown.fill(panel);
    QPainter(&shown).drawImage(0, 0, glyph);
    int strongest = 0;
    for (int y = 0; y < shown.height(); ++y) {
        for (int x = 0; x < shown.width(); ++x) {
            strongest =
                std::max(strongest, std::abs(qGray(shown.pixel(x, y)) - qGray(panel.rgb())));
        }
    }
    return strongest;
}

QWidget* shownTopLevel(const QString& accessibleName) {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->isVisible() && window->accessibleName() == accessibleName) {
            return window;
        }
    }
    return nullptr;
}

int topLevelsNamed(const QString& accessibleName) {
    int count = 0;
    for (QWidget* window : QApplication::topLevelWidgets()) {
        count += window->accessibleName() == accessibleName ? 1 : 0;
    }
    return count;
}

xcb_connection_t* x11() {
    return qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
}

xcb_atom_t atom(const char* name) {
    auto* reply = xcb_intern_atom_reply(
        x11(), xcb_intern_atom(x11(), 0, uint16_t(strlen(name)), name), nullptr);
    const xcb_atom_t found = reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
    std::free(reply);
    return found;
}

}  // namespace

class ShellTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        Q_INIT_RESOURCE(quillix);
        QVERIFY(qGuiApp->nativeInterface<QNativeInterface::QX11Application>());
    }

    void theTrayIconReadsOnLightAndDarkPanels() {
        const QString picture = home_.filePath(QStringLiteral("own-icon.png"));
        QImage own(64, 64, QImage::Format_ARGB32);
        own.fill(Qt::transparent);
        QPainter painter(&own);
        painter.setBrush(QColor(200, 40, 40));
        painter.drawEllipse(8, 8, 48, 48);
        painter.end();
        QVERIFY(own.save(picture));
        const std::optional<QIcon> custom = BarIcon::fromFile(picture);
        QVERIFY(custom.has_value());

        // A light panel, a mid-grey one, the test desktop's tray and a black one.
        for (const QColor panel :
             {QColor(0xf6f6f6), QColor(0xb0b0b0), QColor(0x333333), QColor(Qt::black)}) {
            QVERIFY2(strongestContrast(BarIcon::builtIn(), panel) >= 100,
                     qPrintable(QStringLiteral("built-in icon on ") + panel.name()));
            QVERIFY2(strongestContrast(*custom, panel) >= 100,
                     qPrintable(QStringLiteral("custom icon on ") + panel.name()));
        }
    }

    void aSelectedCapturesPreviewOpensAfterOnePause() {
        const QString picture = desktopPicture(QStringLiteral("selected.png"));
        AppDelegate delegate;
        delegate.applicationDidFinishLaunching();
        delegate.togglePopover();
        QTRY_VERIFY(delegate.isPopoverShown());
        auto* gallery = shownTopLevel(QStringLiteral("Quillix gallery"))->findChild<MenuBarView*>();
        QVERIFY(gallery);

        const QFileInfo file(picture);
        Q_EMIT gallery->itemSelected(
            ScreenshotItem(picture, file.lastModified(), file.lastModified()));
        // Timers fire in the order of their deadlines however late the event
        // loop gets to them, so this one sees the preview only if it opened
        // after one 0.15 s pause, not after two.
        std::optional<bool> openBeforeTwoPauses;
        QTimer::singleShot(290, this, [&openBeforeTwoPauses] {
            openBeforeTwoPauses = shownTopLevel(QStringLiteral("selected.png")) != nullptr;
        });
        QVERIFY(!delegate.isPopoverShown());
        QTRY_VERIFY(openBeforeTwoPauses.has_value());
        QVERIFY2(*openBeforeTwoPauses, "the preview waited for the popover twice");
        QTRY_VERIFY(shownTopLevel(QStringLiteral("selected.png")));

        const QPointer<QWidget> preview = shownTopLevel(QStringLiteral("selected.png"));
        preview->close();
        QTRY_VERIFY(preview.isNull());
    }

    void theAreaEditorStartsAtOnceAndOnlyOnce() {
        AppDelegate delegate;
        delegate.applicationDidFinishLaunching();
        QVERIFY(!delegate.isCaptureUnderWay());

        // Nothing of ours on screen: no pause before the editor opens. A
        // timer started with the capture, well before the design's 0.55 s,
        // already finds it open (timers fire in deadline order).
        delegate.captureArea();
        QVERIFY(delegate.isCaptureUnderWay());
        std::optional<bool> openEarly;
        QTimer::singleShot(100, this, [&openEarly] {
            openEarly = shownTopLevel(QStringLiteral("Area selection")) != nullptr;
        });
        QTRY_VERIFY(openEarly.has_value());
        QVERIFY2(*openEarly, "the editor waited with nothing of ours on screen");
        QTRY_VERIFY(shownTopLevel(QStringLiteral("Area selection")));
        QVERIFY(AnnotationOverlayController::isEditorOpen());

        // A second request while the editor is open does nothing.
        delegate.captureArea();
        QTest::qWait(700);
        QCOMPARE(topLevelsNamed(QStringLiteral("Area selection")), 1);
        QTest::keyClick(shownTopLevel(QStringLiteral("Area selection")), Qt::Key_Escape);
        QTRY_VERIFY(!AnnotationOverlayController::isEditorOpen());
        QTRY_COMPARE(topLevelsNamed(QStringLiteral("Area selection")), 0);
        QTRY_VERIFY(!delegate.isCaptureUnderWay());
    }

    void unmapsAreReportedForTheFrameOrTheWindowItself() {
        WindowUnmapWatcher* watcher = PlatformServices::instance().windowUnmapWatcher();
        QVERIFY(watcher);
        QSignalSpy unmapped(watcher, &WindowUnmapWatcher::unmapped);

        // A window the window manager frames: its frame is what leaves.
        QWidget managed(nullptr, Qt::Tool | Qt::FramelessWindowHint);
        managed.setGeometry(100, 100, 120, 80);
        managed.show();
        std::optional<WindowUnmapWatcher::ScreenWindow> frame;
        QTRY_VERIFY((frame = watcher->watch(managed.winId())) && *frame != managed.winId());
        managed.hide();
        QTRY_COMPARE(unmapped.count(), 1);
        QCOMPARE(unmapped.at(0).at(0).value<WindowUnmapWatcher::ScreenWindow>(), *frame);

        // An override-redirect window stands for itself.
        QWidget overlay(nullptr,
                        Qt::Tool | Qt::FramelessWindowHint | Qt::X11BypassWindowManagerHint);
        overlay.setGeometry(300, 100, 120, 80);
        overlay.show();
        QVERIFY(QTest::qWaitForWindowExposed(&overlay));
        QCOMPARE(watcher->watch(overlay.winId()), std::optional(quint32(overlay.winId())));
        overlay.hide();
        QTRY_COMPARE(unmapped.count(), 2);
        QCOMPARE(unmapped.at(1).at(0).value<WindowUnmapWatcher::ScreenWindow>(),
                 quint32(overlay.winId()));
        watcher->stopWatching();
    }

    void roundedCornersAreShapedOnlyWithoutACompositor() {
        QWidget panel(nullptr, Qt::Tool | Qt::FramelessWindowHint);
        panel.resize(200, 60);
        QVERIFY(!PlatformServices::instance().compositorRunning());
        WindowCorners::apply(panel, 12);
        QCOMPARE(panel.mask(), WindowCorners::roundedRegion(QSize(200, 60), 12));

        // A compositor announces itself by owning _NET_WM_CM_S<screen>.
        const xcb_window_t owner = xcb_generate_id(x11());
        const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(x11())).data;
        xcb_create_window(x11(), XCB_COPY_FROM_PARENT, owner, screen->root, 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_set_selection_owner(x11(), owner, atom("_NET_WM_CM_S0"), XCB_CURRENT_TIME);
        QVERIFY(PlatformServices::instance().compositorRunning());
        WindowCorners::apply(panel, 12);
        QVERIFY(panel.mask().isEmpty());

        xcb_destroy_window(x11(), owner);
        QVERIFY(!PlatformServices::instance().compositorRunning());
    }

private:
    QString desktopPicture(const QString& name) {
        const QString folder = QStandardPaths::writableLocation(QStandardPaths::DesktopLocation);
        QDir().mkpath(folder);
        const QString path = QDir(folder).filePath(name);
        QImage image(240, 160, QImage::Format_RGB32);
        image.fill(QColor(0x3a7d44));
        [&] { QVERIFY(image.save(path)); }();
        return path;
    }

    QTemporaryDir home_;
};

QTEST_MAIN(ShellTest)
#include "shell_test.moc"
