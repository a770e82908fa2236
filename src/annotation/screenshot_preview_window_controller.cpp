#include "annotation/screenshot_preview_window_controller.h"

#include <QApplication>
#include <QCloseEvent>
#include <QCursor>
#include <QFileInfo>
#include <QGuiApplication>
#include <QPointer>
#include <QPropertyAnimation>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>
#include <QWidget>

#include "annotation/screenshot_preview_view.h"
#include "app/app_signals.h"
#include "capture/screenshot_store.h"
#include "storage/screenshot_metadata_store.h"

namespace {

const char* const kControllerProperty = "quillixPreviewController";

QScreen* screenUnderPointer() {
    if (QScreen* screen = QGuiApplication::screenAt(QCursor::pos())) {
        return screen;
    }
    return QGuiApplication::primaryScreen();
}

}  // namespace

void ScreenshotPreviewWindowController::show(const ScreenshotItem& item) {
    Q_EMIT AppSignals::instance().quillixClosePopover();
    QTimer::singleShot(kOpenDelayMs, qApp, [item] {
        open(item, ScreenshotMetadataStore::shared(), [] { ScreenshotStore::shared().refresh(); });
    });
}

QWidget* ScreenshotPreviewWindowController::open(const ScreenshotItem& item,
                                                 ScreenshotMetadataStore& metaStore,
                                                 std::function<void()> refreshLibrary) {
    auto* window = new QWidget(nullptr, Qt::Tool | Qt::Window | Qt::WindowTitleHint |
                                            Qt::WindowSystemMenuHint | Qt::WindowMinMaxButtonsHint |
                                            Qt::WindowCloseButtonHint);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setWindowTitle(QFileInfo(item.path()).completeBaseName());
    window->setAccessibleName(QFileInfo(item.path()).fileName());
    window->setMinimumSize(kMinimumWidth, kMinimumHeight);
    window->resize(kWidth, kHeight);

    auto* view = new ScreenshotPreviewView(item, metaStore, std::move(refreshLibrary), window);
    auto* layout = new QVBoxLayout(window);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(view);

    auto* controller = new ScreenshotPreviewWindowController(window, view);
    window->setProperty(kControllerProperty, QVariant::fromValue<QObject*>(controller));

    if (QScreen* screen = screenUnderPointer()) {
        const QPoint centre = screen->geometry().center();
        window->move(centre.x() - kWidth / 2, centre.y() - kHeight / 2);
    }
    // A window still open when the program quits goes with it, so nothing
    // outlives the application object.
    QObject::connect(qApp, &QCoreApplication::aboutToQuit, qApp,
                     [guard = QPointer<QWidget>(window)] { delete guard.data(); });

    window->setWindowOpacity(0.0);
    window->show();
    window->raise();
    window->activateWindow();
    controller->fadeIn();
    return window;
}

ScreenshotPreviewWindowController* ScreenshotPreviewWindowController::of(const QWidget* window) {
    if (!window) {
        return nullptr;
    }
    return qobject_cast<ScreenshotPreviewWindowController*>(
        window->property(kControllerProperty).value<QObject*>());
}

ScreenshotPreviewWindowController::ScreenshotPreviewWindowController(QWidget* window,
                                                                     ScreenshotPreviewView* view)
    : QObject(window), window_(window), view_(view) {
    window_->installEventFilter(this);
}

void ScreenshotPreviewWindowController::fadeIn() {
    auto* fade = new QPropertyAnimation(window_, "windowOpacity", this);
    fade->setDuration(kFadeInMs);
    fade->setStartValue(0.0);
    fade->setEndValue(1.0);
    fade->setEasingCurve(QEasingCurve::OutCubic);
    fade_ = fade;
    fade->start(QAbstractAnimation::DeleteWhenStopped);
}

void ScreenshotPreviewWindowController::fadeOut() {
    closing_ = true;
    if (fade_) {
        fade_->stop();
    }
    auto* fade = new QPropertyAnimation(window_, "windowOpacity", this);
    fade->setDuration(kFadeOutMs);
    fade->setStartValue(window_->windowOpacity());
    fade->setEndValue(0.0);
    fade->setEasingCurve(QEasingCurve::InCubic);
    connect(fade, &QPropertyAnimation::finished, this, [this] {
        faded_ = true;
        window_->close();
    });
    fade_ = fade;
    fade->start(QAbstractAnimation::DeleteWhenStopped);
}

bool ScreenshotPreviewWindowController::eventFilter(QObject* watched, QEvent* event) {
    if (watched == window_ && event->type() == QEvent::Close && !faded_) {
        // The first close request only starts the fade; its end closes the
        // window for real.
        event->ignore();
        if (!closing_ && window_->isVisible()) {
            fadeOut();
        } else if (!window_->isVisible()) {
            faded_ = true;
            event->accept();
            return false;
        }
        return true;
    }
    return QObject::eventFilter(watched, event);
}
