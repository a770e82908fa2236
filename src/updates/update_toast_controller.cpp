// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "updates/update_toast_controller.h"

#include <QCoreApplication>
#include <QCursor>
#include <QGuiApplication>
#include <QParallelAnimationGroup>
#include <QPropertyAnimation>
#include <QScreen>
#include <QThread>
#include <QTimer>
#include <QVBoxLayout>
#include <QWidget>
#include <utility>

#include "updates/update_toast_view.h"
#include "widgets/window_corners.h"

namespace {

QPointer<UpdateToastController>& shownToast() {
    static QPointer<UpdateToastController> toast;
    return toast;
}

int& autoDismissMs() {
    static int milliseconds = UpdateToastController::kAutoDismissMs;
    return milliseconds;
}

// The screen the user is looking at: the one under the pointer.
QScreen* screenForToast() {
    QScreen* screen = QGuiApplication::screenAt(QCursor::pos());
    return screen != nullptr ? screen : QGuiApplication::primaryScreen();
}

// A borderless floating window that never takes the keyboard from the
// program the user is working in.
QWidget* makePanel() {
    auto* panel = new QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint |
                                           Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus);
    panel->setAttribute(Qt::WA_ShowWithoutActivating);
    panel->setAttribute(Qt::WA_TranslucentBackground);
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->setWindowTitle(QStringLiteral("Quillix update"));
    panel->setAccessibleName(QStringLiteral("Quillix update"));
    panel->setFixedSize(UpdateToastController::kWidth, UpdateToastController::kHeight);
    return panel;
}

}  // namespace

void UpdateToastController::show(const AppcastRelease& release,
                                 std::function<void(const AppcastRelease&)> install) {
    if (QThread::currentThread() == qApp->thread()) {
        present(release, std::move(install));
        return;
    }
    QMetaObject::invokeMethod(
        qApp, [release, install = std::move(install)] { present(release, install); },
        Qt::QueuedConnection);
}

UpdateToastController* UpdateToastController::current() {
    return shownToast().data();
}

void UpdateToastController::setAutoDismissMs(int milliseconds) {
    autoDismissMs() = milliseconds;
}

UpdateToastController::UpdateToastController(const AppcastRelease& release,
                                             std::function<void(const AppcastRelease&)> install)
    : release_(release), install_(std::move(install)) {}

void UpdateToastController::present(const AppcastRelease& release,
                                    std::function<void(const AppcastRelease&)> install) {
    if (UpdateToastController* previous = shownToast().data()) {
        previous->dismiss();
    }
    auto* toast = new UpdateToastController(release, std::move(install));
    shownToast() = toast;
    toast->appear();
}

void UpdateToastController::appear() {
    QScreen* screen = screenForToast();
    if (screen == nullptr) {
        dismiss();
        return;
    }
    const QRect area = screen->availableGeometry();
    const QPoint origin(area.x() + area.width() - kWidth - kMargin, area.y() + kMargin);

    panel_ = makePanel();
    view_ = new UpdateToastView(
        release_,
        [this] {
            // The callback outlives this controller, which goes once faded.
            auto install = install_;
            const AppcastRelease release = release_;
            dismiss();
            if (install) {
                install(release);
            }
        },
        [this] { dismiss(); }, panel_);
    auto* layout = new QVBoxLayout(panel_);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(view_);

    panel_->setWindowOpacity(0.0);
    panel_->move(origin - QPoint(0, kSlideDistance));
    panel_->show();
    WindowCorners::apply(*panel_, UpdateToastView::kCornerRadius);
    panel_->raise();

    auto* slide = new QPropertyAnimation(panel_, "pos");
    slide->setEndValue(origin);
    auto* fade = new QPropertyAnimation(panel_, "windowOpacity");
    fade->setEndValue(1.0);
    auto* group = new QParallelAnimationGroup(panel_);
    for (QPropertyAnimation* animation : {slide, fade}) {
        animation->setDuration(kAppearMs);
        animation->setEasingCurve(QEasingCurve::OutCubic);
        group->addAnimation(animation);
    }
    group->start(QAbstractAnimation::DeleteWhenStopped);

    dismissTimer_ = new QTimer(this);
    dismissTimer_->setSingleShot(true);
    connect(dismissTimer_, &QTimer::timeout, this, &UpdateToastController::dismiss);
    dismissTimer_->start(autoDismissMs());
}

void UpdateToastController::dismiss() {
    if (dismissed_) {
        return;
    }
    dismissed_ = true;
    if (dismissTimer_ != nullptr) {
        // It may be the timer that called: stop it, it goes with the controller.
        dismissTimer_->stop();
        dismissTimer_ = nullptr;
    }
    if (shownToast() == this) {
        shownToast() = nullptr;
    }
    if (panel_.isNull()) {
        deleteLater();
        return;
    }
    QWidget* panel = panel_;
    panel_ = nullptr;
    auto* fade = new QPropertyAnimation(panel, "windowOpacity", panel);
    fade->setDuration(kFadeOutMs);
    fade->setEasingCurve(QEasingCurve::InCubic);
    fade->setEndValue(0.0);
    connect(fade, &QAbstractAnimation::finished, panel, &QWidget::close);
    fade->start(QAbstractAnimation::DeleteWhenStopped);
    deleteLater();
}
