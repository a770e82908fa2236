// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "gallery/hud_window_controller.h"

#include <QCoreApplication>
#include <QEvent>
#include <QGuiApplication>
#include <QLoggingCategory>
#include <QPropertyAnimation>
#include <QScreen>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

#include "platform/hotkey_backend.h"
#include "platform/key_codes.h"
#include "widgets/floating_panel.h"

Q_LOGGING_CATEGORY(lcHUD, "quillix.hud")

namespace {

constexpr int kCornerRadius = 14;
constexpr double kMsPerSecond = 1000;

QRect availableAreaAt(const QPoint& pointer) {
    QScreen* screen = QGuiApplication::screenAt(pointer);
    if (screen == nullptr) {
        screen = QGuiApplication::primaryScreen();
    }
    return screen != nullptr ? screen->availableGeometry() : QRect(QPoint(0, 0), QSize(1, 1));
}

bool dismissesHUD(QEvent::Type type) {
    return type == QEvent::MouseButtonPress || type == QEvent::MouseButtonDblClick ||
           type == QEvent::KeyPress;
}

}  // namespace

HUDWindowController::HUDWindowController(const QPoint& pointer, Actions actions, Options options,
                                         QObject* parent)
    : QObject(parent),
      actions_(std::move(actions)),
      options_(options),
      panel_(std::make_unique<FloatingPanel>(tr("Capture HUD"), kCornerRadius,
                                             FloatingPanel::Focus::refuses)) {
    // Like a menu, it lies over everything for its few seconds without the
    // window manager framing, placing or focusing it.
    panel_->setWindowFlag(Qt::X11BypassWindowManagerHint);
    view_ =
        new HUDView([this](HUDView::Row row) { choose(row); }, [this] { dismiss(); }, panel_.get());
    auto* layout = new QVBoxLayout(panel_.get());
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(view_);
    panel_->setGeometry(frameAt(pointer, availableAreaAt(pointer)));
    panel_->setFixedSize(kSize);
    panel_->setWindowOpacity(0);
    autoDismissTimer_.setSingleShot(true);
    connect(&autoDismissTimer_, &QTimer::timeout, this, &HUDWindowController::dismiss);
}

HUDWindowController::~HUDWindowController() {
    stopWatching();
}

QRect HUDWindowController::frameAt(const QPoint& pointer, const QRect& available) {
    const QPoint wanted = pointer + kPointerOffset;
    // The far bound is applied last, so that it wins on a screen too small.
    const int right = available.x() + available.width() - kSize.width() - kScreenMargin;
    const int bottom = available.y() + available.height() - kSize.height() - kScreenMargin;
    const int x = std::min(std::max(wanted.x(), available.x() + kScreenMargin), right);
    const int y = std::min(std::max(wanted.y(), available.y() + kScreenMargin), bottom);
    return {QPoint(x, y), kSize};
}

int HUDWindowController::autoDismissMs(double seconds) {
    const double shown = seconds > 0 ? seconds : kDefaultDismissSeconds;
    return static_cast<int>(std::lround(shown * kMsPerSecond));
}

QWidget* HUDWindowController::window() const {
    return panel_.get();
}

void HUDWindowController::showWindow() {
    if (dismissing_ || panel_->isVisible()) {
        return;
    }
    panel_->show();
    view_->appear();
    fade_ = new QPropertyAnimation(panel_.get(), "windowOpacity", this);
    fade_->setDuration(kFadeInMs);
    fade_->setStartValue(0.0);
    fade_->setEndValue(1.0);
    fade_->start();
    autoDismissTimer_.start(autoDismissMs(options_.autoDismissSeconds));
    // Clicks and keys anywhere in the program close the HUD and go on to
    // where they were going. Escape reaches the HUD even though the
    // keyboard stays with the user's window.
    qApp->installEventFilter(this);
    if (options_.keys != nullptr) {
        options_.keys->grab(kEscapeHotkeyId, KeyCodes::kEscape, 0);
        connect(options_.keys, &HotkeyBackend::pressed, this, [this](quint32 id) {
            if (id == kEscapeHotkeyId) {
                dismiss();
            }
        });
    }
    watching_ = true;
}

void HUDWindowController::dismiss() {
    if (dismissing_) {
        return;
    }
    dismissing_ = true;
    autoDismissTimer_.stop();
    stopWatching();
    if (fade_ != nullptr) {
        fade_->stop();
        fade_->deleteLater();
    }
    fade_ = new QPropertyAnimation(panel_.get(), "windowOpacity", this);
    fade_->setDuration(kFadeOutMs);
    fade_->setStartValue(panel_->windowOpacity());
    fade_->setEndValue(0.0);
    connect(fade_, &QPropertyAnimation::finished, this, &HUDWindowController::closeWindow);
    fade_->start();
}

void HUDWindowController::closeWindow() {
    panel_->close();
    Q_EMIT closed();
}

void HUDWindowController::stopWatching() {
    if (!watching_) {
        return;
    }
    watching_ = false;
    if (qApp != nullptr) {
        qApp->removeEventFilter(this);
    }
    if (options_.keys != nullptr) {
        disconnect(options_.keys, &HotkeyBackend::pressed, this, nullptr);
        options_.keys->ungrab(kEscapeHotkeyId);
    }
}

bool HUDWindowController::eventFilter(QObject* watched, QEvent* event) {
    if (watched->isWidgetType() && dismissesHUD(event->type())) {
        dismiss();
    }
    return false;
}

void HUDWindowController::choose(HUDView::Row row) {
    dismiss();
    switch (row) {
        case HUDView::Row::captureArea:
            runLater(actions_.captureArea);
            break;
        case HUDView::Row::captureWindow:
            runLater(actions_.captureWindow);
            break;
        case HUDView::Row::fullScreen:
            qCInfo(lcHUD).noquote() << QStringLiteral("📸 Full screen");
            break;
        case HUDView::Row::recordWindow:
            runLater(actions_.recordWindow);
            break;
        case HUDView::Row::clipboardHistory:
            qCInfo(lcHUD).noquote() << QStringLiteral("📂 Open shelf");
            break;
    }
}

void HUDWindowController::runLater(const std::function<void()>& action) const {
    if (action) {
        // Outlives this controller, which the shell drops once the HUD has
        // closed.
        QTimer::singleShot(kActionDelayMs, qApp, action);
    }
}
