// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QObject>
#include <QPointer>
#include <functional>

#include "updates/appcast_release.h"

class QTimer;
class QWidget;
class UpdateToastView;

// The card in the top-right corner of the screen under the pointer that
// offers a newer release. At most one is up: a newer one replaces it. It
// slides in without taking focus, and goes after 12 s, on its close button
// or on "Update & Restart" (which then runs the install action). Each
// controller shows once and deletes itself when its card has faded out.
class UpdateToastController : public QObject {
    Q_OBJECT

public:
    static constexpr int kWidth = 320;
    static constexpr int kHeight = 112;
    static constexpr int kMargin = 16;
    static constexpr int kSlideDistance = 30;
    static constexpr int kAppearMs = 350;
    static constexpr int kFadeOutMs = 250;
    static constexpr int kAutoDismissMs = 12000;

    // Shows the toast for `release` (from any thread; it is presented on the
    // GUI thread), dismissing the one already up.
    static void show(const AppcastRelease& release,
                     std::function<void(const AppcastRelease&)> install);
    // The toast currently shown, if any.
    static UpdateToastController* current();
    // Tests shorten the time a toast stays up.
    static void setAutoDismissMs(int milliseconds);

    // Fades the card out and goes away; a second call does nothing.
    void dismiss();

    QWidget* panel() const { return panel_; }
    UpdateToastView* view() const { return view_; }

private:
    UpdateToastController(const AppcastRelease& release,
                          std::function<void(const AppcastRelease&)> install);
    static void present(const AppcastRelease& release,
                        std::function<void(const AppcastRelease&)> install);
    void appear();

    AppcastRelease release_;
    std::function<void(const AppcastRelease&)> install_;
    QPointer<QWidget> panel_;
    UpdateToastView* view_ = nullptr;
    QTimer* dismissTimer_ = nullptr;
    bool dismissed_ = false;
};
