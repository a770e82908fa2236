// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "onboarding/onboarding_window_controller.h"

#include <QCursor>
#include <QGuiApplication>
#include <QLoggingCategory>
#include <QPropertyAnimation>
#include <QScreen>

#include "onboarding/onboarding_view.h"
#include "onboarding/onboarding_window.h"
#include "onboarding/symbol_button.h"
#include "storage/preferences.h"

Q_LOGGING_CATEGORY(lcOnboarding, "quillix.onboarding")

OnboardingWindowController::OnboardingWindowController(Dependencies deps, QObject* parent)
    : QObject(parent), deps_(std::move(deps)), window_(std::make_unique<OnboardingWindow>()) {
    view_ = new OnboardingView({.screenCaptureGranted = deps_.screenCaptureGranted,
                                .openScreenCaptureSettings = deps_.openScreenCaptureSettings},
                               window_.get());
    window_->setView(view_);
    connect(view_, &OnboardingView::dismissRequested, this, &OnboardingWindowController::dismiss);
    connect(window_.get(), &OnboardingWindow::closeRequested, this,
            &OnboardingWindowController::dismiss);

    // The window fades by its own opacity (seen where a compositor runs).
    fade_ = new QPropertyAnimation(window_.get(), "windowOpacity", this);
    connect(fade_, &QPropertyAnimation::finished, this, [this] {
        if (dismissing_) {
            finishClosing();
        }
    });
}

// The window is deleted with the controller (a top-level window has no
// parent to do it).
OnboardingWindowController::~OnboardingWindowController() = default;

QWidget* OnboardingWindowController::window() const {
    return window_.get();
}

void OnboardingWindowController::show() {
    if (dismissing_) {
        return;
    }
    placeWindow();
    fade_->stop();
    window_->setWindowOpacity(0.0);
    window_->show();
    window_->raise();
    window_->activateWindow();
    view_->forwardButton()->setFocus(Qt::ActiveWindowFocusReason);
    fade_->setDuration(kFadeInMs);
    fade_->setStartValue(0.0);
    fade_->setEndValue(1.0);
    fade_->setEasingCurve(QEasingCurve::OutCubic);
    fade_->start();
    qCInfo(lcOnboarding) << "Quillix: welcome slides shown";
}

void OnboardingWindowController::dismiss() {
    if (dismissing_) {
        return;
    }
    dismissing_ = true;
    // Stored first: whatever happens to the window now, the slides do not
    // come back at the next start.
    deps_.preferences.setHasSeenOnboarding(true);
    qCInfo(lcOnboarding) << "Quillix: welcome slides dismissed on slide" << view_->slide() + 1;
    fade_->stop();
    if (!window_->isVisible()) {
        finishClosing();
        return;
    }
    fade_->setDuration(kFadeOutMs);
    fade_->setStartValue(window_->windowOpacity());
    fade_->setEndValue(0.0);
    fade_->setEasingCurve(QEasingCurve::InCubic);
    fade_->start();
}

void OnboardingWindowController::placeWindow() {
    QScreen* screen = QGuiApplication::screenAt(QCursor::pos());
    if (screen == nullptr) {
        screen = QGuiApplication::primaryScreen();
    }
    if (screen == nullptr) {
        return;
    }
    QRect frame(QPoint(), window_->size());
    frame.moveCenter(screen->availableGeometry().center());
    window_->move(frame.topLeft());
}

void OnboardingWindowController::finishClosing() {
    window_->closeNow();
    Q_EMIT closed();
}
