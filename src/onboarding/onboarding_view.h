// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QWidget>
#include <functional>

class PageDots;
class PermissionSlide;
class SlideContainer;
class SlideStage;
class SymbolButton;

// The content of the welcome window: a close button at the top, five slides
// (welcome, the tray icon, the screen capture permission, the shortcuts, all
// set) and a bar with back, one dot per slide and next ("Done" on the last).
// The arrow keys turn the slides too.
class OnboardingView : public QWidget {
    Q_OBJECT

public:
    static constexpr int totalSlides = 5;

    struct Hooks {
        std::function<bool()> screenCaptureGranted;
        // May be empty: "Grant Access" then opens nothing.
        std::function<void()> openScreenCaptureSettings;
    };

    explicit OnboardingView(const Hooks& hooks, QWidget* parent = nullptr);

    int slide() const;
    // Shows slide `index` (clamped to the slides there are).
    void goToSlide(int index);
    // One slide back or forward; nothing before the first. Forward on the last
    // slide asks to dismiss.
    void goBack();
    void goForward();

    SlideContainer* slideAt(int index) const;
    PermissionSlide* permissionSlide() const { return permissionSlide_; }
    SymbolButton* closeButton() const { return closeButton_; }
    SymbolButton* backButton() const { return backButton_; }
    SymbolButton* forwardButton() const { return forwardButton_; }
    PageDots* pageDots() const { return dots_; }

Q_SIGNALS:
    // The close button, or "Done" on the last slide.
    void dismissRequested();
    void slideChanged(int index);

private:
    void addSlides(const Hooks& hooks);
    QWidget* makeBottomBar();
    void showControls();

    SymbolButton* closeButton_ = nullptr;
    SlideStage* stage_ = nullptr;
    PermissionSlide* permissionSlide_ = nullptr;
    SymbolButton* backButton_ = nullptr;
    PageDots* dots_ = nullptr;
    SymbolButton* forwardButton_ = nullptr;
};
