#include "ui/gallery/pill_panel.h"

#include <QTimer>
#include <QVariantAnimation>

#include "app/popover_placement.h"

namespace {

constexpr int kFadeDelayMs = 50;
constexpr int kFadeDurationMs = 280;

}  // namespace

PillPanel::PillPanel(QWidget* parent)
    : FloatingPanel(QStringLiteral("Quillix controls"), PopoverPlacement::kPillSize.height() / 2,
                    Focus::refuses, parent),
      fade_(new QVariantAnimation(this)) {
    setFixedSize(PopoverPlacement::kPillSize);
    fade_->setStartValue(0.0);
    fade_->setEndValue(1.0);
    fade_->setDuration(kFadeDurationMs);
    fade_->setEasingCurve(QEasingCurve::OutCubic);
    connect(fade_, &QVariantAnimation::valueChanged, this,
            [this](const QVariant& opacity) { setWindowOpacity(opacity.toDouble()); });
}

void PillPanel::showFadingIn() {
    setWindowOpacity(0.0);
    show();
    raise();
    QTimer::singleShot(kFadeDelayMs, fade_, [this] { fade_->start(); });
}
