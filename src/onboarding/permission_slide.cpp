// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "onboarding/permission_slide.h"

#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QShowEvent>

#include "onboarding/primary_button.h"
#include "widgets/symbol_icon.h"
#include "widgets/widget_style.h"

namespace {

const QColor kGreen(52, 199, 89);
constexpr int kCheckSize = 16;
constexpr int kStatusPixels = 13;

}  // namespace

PermissionSlide::PermissionSlide(std::function<bool()> isGranted,
                                 std::function<void()> openSettings, QWidget* parent)
    : SlideContainer({.symbol = QStringLiteral("camera.aperture"),
                      .imagePath = {},
                      .title = QStringLiteral("Screen Recording"),
                      .text = QStringLiteral("Quillix needs Screen Recording permission\nto "
                                             "capture your screen.")},
                     parent),
      isGranted_(std::move(isGranted)),
      openSettings_(std::move(openSettings)) {
    // Both answers live in one part, so the slide keeps its height when the
    // answer changes.
    status_ = new QWidget(this);
    auto* statusLayout = new QHBoxLayout(status_);
    statusLayout->setContentsMargins(0, 0, 0, 0);

    grantButton_ = new PrimaryButton(QStringLiteral("Grant Access"), status_);
    connect(grantButton_, &QPushButton::clicked, this, [this] {
        if (openSettings_) {
            openSettings_();
        }
    });
    statusLayout->addWidget(grantButton_);

    grantedRow_ = new QWidget(status_);
    auto* rowLayout = new QHBoxLayout(grantedRow_);
    rowLayout->setContentsMargins(0, 0, 0, 0);
    rowLayout->setSpacing(6);
    auto* check = new QLabel(grantedRow_);
    check->setPixmap(symbolPixmap(QStringLiteral("checkmark.circle.fill"), kGreen,
                                  QSize(kCheckSize, kCheckSize), devicePixelRatioF()));
    check->setAccessibleName(QStringLiteral("Granted"));
    rowLayout->addWidget(check);
    grantedLabel_ = new QLabel(QStringLiteral("Permission granted"), grantedRow_);
    grantedLabel_->setFont(widget_style::font(font(), kStatusPixels, QFont::Medium));
    QPalette green = grantedLabel_->palette();
    green.setColor(QPalette::WindowText, widget_style::withAlpha(kGreen, 0.9));
    grantedLabel_->setPalette(green);
    rowLayout->addWidget(grantedLabel_);
    statusLayout->addWidget(grantedRow_);
    status_->setFixedHeight(grantButton_->sizeHint().height());

    setExtra(status_);
    showState();

    if (auto* application = qGuiApp) {
        connect(application, &QGuiApplication::applicationStateChanged, this,
                [this](Qt::ApplicationState state) {
                    if (state == Qt::ApplicationActive) {
                        refresh();
                    }
                });
    }
}

void PermissionSlide::refresh() {
    const bool now = isGranted_ ? isGranted_() : false;
    if (now == granted_) {
        return;
    }
    granted_ = now;
    showState();
    replayExtraEntrance();
}

void PermissionSlide::showEvent(QShowEvent* event) {
    // Asked before the entrance starts, so it shows the current answer
    // rather than fading from one answer to the other.
    granted_ = isGranted_ ? isGranted_() : false;
    showState();
    SlideContainer::showEvent(event);
}

void PermissionSlide::showState() {
    grantButton_->setVisible(!granted_);
    grantedRow_->setVisible(granted_);
}
