// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "onboarding/onboarding_view.h"

#include <QHBoxLayout>
#include <QShortcut>
#include <QVBoxLayout>
#include <algorithm>

#include "onboarding/page_dots.h"
#include "onboarding/permission_slide.h"
#include "onboarding/shortcuts_slide.h"
#include "onboarding/slide_container.h"
#include "onboarding/slide_stage.h"
#include "onboarding/symbol_button.h"
#include "widgets/widget_style.h"

namespace {

constexpr int kCloseSize = 22;
constexpr int kCloseSymbolSize = 9;
constexpr int kChevronSize = 13;
constexpr int kBarButtonSize = 30;
constexpr qreal kBackOpacity = 0.5;
constexpr qreal kBackInactiveOpacity = 0.12;
constexpr qreal kForwardOpacity = 0.85;

}  // namespace

OnboardingView::OnboardingView(const Hooks& hooks, QWidget* parent) : QWidget(parent) {
    setAccessibleName(QStringLiteral("Welcome slides"));
    // Widgets made first come first in the Tab order: close, the slide's own
    // controls, back, the dots, next.
    closeButton_ =
        new SymbolButton(QStringLiteral("xmark"), kCloseSymbolSize, QStringLiteral("Close"), this);
    closeButton_->setFixedSize(kCloseSize, kCloseSize);
    closeButton_->setSymbolOpacity(0.45);
    closeButton_->setCircleFill(widget_style::withAlpha(Qt::white, 0.08));
    connect(closeButton_, &QAbstractButton::clicked, this, &OnboardingView::dismissRequested);

    stage_ = new SlideStage(this);
    addSlides(hooks);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 12, 0, 14);
    layout->setSpacing(0);
    auto* top = new QHBoxLayout;
    top->setContentsMargins(14, 0, 14, 0);
    top->addStretch(1);
    top->addWidget(closeButton_);
    layout->addLayout(top);
    layout->addWidget(stage_, 1);
    layout->addWidget(makeBottomBar());

    stage_->showSlide(0);
    showControls();

    // Shortcuts rather than key handling: the buttons would take the arrow
    // keys for moving the focus first.
    auto* left = new QShortcut(QKeySequence(Qt::Key_Left), this, this, &OnboardingView::goBack);
    left->setContext(Qt::WidgetWithChildrenShortcut);
    auto* right = new QShortcut(QKeySequence(Qt::Key_Right), this, this, [this] {
        if (slide() < totalSlides - 1) {
            goForward();
        }
    });
    right->setContext(Qt::WidgetWithChildrenShortcut);
}

void OnboardingView::addSlides(const Hooks& hooks) {
    stage_->addSlide(new SlideContainer(
        {.symbol = {},
         .imagePath = QStringLiteral(":/icons/Logo.svg"),
         .title = QStringLiteral("Welcome to Quillix"),
         .text = QStringLiteral(
             "Your screenshot companion.\nCapture, organise, and share — in one click.")},
        stage_));
    stage_->addSlide(new SlideContainer(
        {.symbol = QStringLiteral("menubar.rectangle"),
         .imagePath = {},
         .title = QStringLiteral("Lives in your system tray"),
         .text = QStringLiteral(
             "Click the Quillix icon anytime to browse\nyour recent captures instantly.")},
        stage_));
    permissionSlide_ =
        new PermissionSlide(hooks.screenCaptureGranted, hooks.openScreenCaptureSettings, stage_);
    stage_->addSlide(permissionSlide_);
    stage_->addSlide(new ShortcutsSlide(stage_));
    stage_->addSlide(new SlideContainer(
        {.symbol = QStringLiteral("checkmark.circle.fill"),
         .imagePath = {},
         .title = QStringLiteral("All Set!"),
         .text = QStringLiteral(
             "You're ready to capture your screen.\nStart with ⌘2 for an area screenshot.")},
        stage_));
}

QWidget* OnboardingView::makeBottomBar() {
    auto* bar = new QWidget(this);
    bar->setAccessibleName(QStringLiteral("Slide navigation"));
    backButton_ =
        new SymbolButton(QStringLiteral("chevron.left"), kChevronSize, QStringLiteral("Back"), bar);
    backButton_->setFixedSize(kBarButtonSize, kBarButtonSize);
    connect(backButton_, &QAbstractButton::clicked, this, &OnboardingView::goBack);

    dots_ = new PageDots(totalSlides, bar);
    connect(dots_, &PageDots::dotClicked, this, &OnboardingView::goToSlide);

    forwardButton_ = new SymbolButton(QStringLiteral("chevron.right"), kChevronSize,
                                      QStringLiteral("Next"), bar);
    forwardButton_->setMinimumSize(kBarButtonSize, kBarButtonSize);
    forwardButton_->setSymbolOpacity(kForwardOpacity);
    connect(forwardButton_, &QAbstractButton::clicked, this, &OnboardingView::goForward);

    auto* layout = new QHBoxLayout(bar);
    layout->setContentsMargins(20, 0, 20, 0);
    // Back and next sit in equal boxes, so the dots stay in the middle when
    // next becomes the wider "Done".
    constexpr int kSideWidth = 64;
    auto* left = new QHBoxLayout;
    left->addWidget(backButton_);
    left->addStretch(1);
    auto* right = new QHBoxLayout;
    right->addStretch(1);
    right->addWidget(forwardButton_);
    auto* leftBox = new QWidget(bar);
    leftBox->setLayout(left);
    leftBox->setFixedWidth(kSideWidth);
    left->setContentsMargins(0, 0, 0, 0);
    auto* rightBox = new QWidget(bar);
    rightBox->setLayout(right);
    rightBox->setFixedWidth(kSideWidth);
    right->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(leftBox);
    layout->addStretch(1);
    layout->addWidget(dots_);
    layout->addStretch(1);
    layout->addWidget(rightBox);
    return bar;
}

int OnboardingView::slide() const {
    return stage_->current();
}

SlideContainer* OnboardingView::slideAt(int index) const {
    return qobject_cast<SlideContainer*>(stage_->slideAt(index));
}

void OnboardingView::goToSlide(int index) {
    index = std::clamp(index, 0, totalSlides - 1);
    if (index == slide()) {
        return;
    }
    stage_->showSlide(index);
    showControls();
    Q_EMIT slideChanged(index);
}

void OnboardingView::goBack() {
    if (slide() > 0) {
        goToSlide(slide() - 1);
    }
}

void OnboardingView::goForward() {
    if (slide() < totalSlides - 1) {
        goToSlide(slide() + 1);
    } else {
        Q_EMIT dismissRequested();
    }
}

void OnboardingView::showControls() {
    const bool first = slide() == 0;
    backButton_->setEnabled(!first);
    backButton_->setSymbolOpacity(first ? kBackInactiveOpacity : kBackOpacity);
    const bool last = slide() == totalSlides - 1;
    forwardButton_->setWord(last ? QStringLiteral("Done") : QString());
    forwardButton_->setAccessibleName(last ? QStringLiteral("Done") : QStringLiteral("Next"));
    forwardButton_->setToolTip(forwardButton_->accessibleName());
    dots_->setCurrent(slide());
}
