// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QObject>
#include <functional>
#include <memory>

class OnboardingView;
class OnboardingWindow;
class Preferences;
class QPropertyAnimation;
class QWidget;

// Shows the welcome slides the first time the program runs and remembers
// that they were seen as soon as the user closes them, however that happens.
class OnboardingWindowController : public QObject {
    Q_OBJECT

public:
    static constexpr int kFadeInMs = 200;
    static constexpr int kFadeOutMs = 150;

    struct Dependencies {
        Preferences& preferences;
        // Whether the program may capture the screen (always so on X11).
        std::function<bool()> screenCaptureGranted;
        // Opens the system's screen capture settings; may be empty, then
        // "Grant Access" opens nothing.
        std::function<void()> openScreenCaptureSettings;
    };

    explicit OnboardingWindowController(Dependencies deps, QObject* parent = nullptr);
    ~OnboardingWindowController() override;

    OnboardingWindowController(const OnboardingWindowController&) = delete;
    OnboardingWindowController& operator=(const OnboardingWindowController&) = delete;

    // Fades the window in, centred on the screen under the pointer, and gives
    // it the keyboard.
    void show();
    // Remembers that the slides were seen, then fades the window out and
    // closes it. Calling it again while it fades does nothing more.
    void dismiss();

    QWidget* window() const;
    OnboardingView* view() const { return view_; }

Q_SIGNALS:
    // The window has closed; the owner may let go of this controller.
    void closed();

private:
    void placeWindow();
    void finishClosing();

    Dependencies deps_;
    std::unique_ptr<OnboardingWindow> window_;
    OnboardingView* view_ = nullptr;
    QPropertyAnimation* fade_ = nullptr;
    bool dismissing_ = false;
};
