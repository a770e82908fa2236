#include "ui/gallery/pill_panel.h"

#include <QDragEnterEvent>
#include <QTimer>
#include <QVBoxLayout>
#include <QVariantAnimation>

#include "app/popover_placement.h"

namespace {

constexpr int kFadeDelayMs = 50;
constexpr int kFadeDurationMs = 280;

}  // namespace

PillPanel::PillPanel(ScreenshotStore& library, SoundPlayer& sounds, FooterPillView::Actions actions,
                     QWidget* parent)
    : FloatingPanel(QStringLiteral("Quillix controls"), PopoverPlacement::kPillSize.height() / 2,
                    Focus::refuses, parent),
      content_(new FooterPillView(library, sounds, std::move(actions), this)),
      fade_(new QVariantAnimation(this)) {
    setFixedSize(PopoverPlacement::kPillSize);
    setAcceptDrops(true);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(content_);

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

void PillPanel::dragEnterEvent(QDragEnterEvent* event) {
    if (!FooterPillView::acceptsDrag(event->mimeData())) {
        event->ignore();
        return;
    }
    // The trash takes the file away: to the source this is a move.
    event->setDropAction(Qt::MoveAction);
    event->accept();
    content_->trashHoverOn();
}

void PillPanel::dragMoveEvent(QDragMoveEvent* event) {
    if (FooterPillView::acceptsDrag(event->mimeData())) {
        event->setDropAction(Qt::MoveAction);
        event->accept();
    } else {
        event->ignore();
    }
}

void PillPanel::dragLeaveEvent(QDragLeaveEvent* event) {
    content_->trashHoverOff();
    event->accept();
}

void PillPanel::dropEvent(QDropEvent* event) {
    if (content_->performDrop(event->mimeData())) {
        event->setDropAction(Qt::MoveAction);
        event->accept();
    } else {
        event->ignore();
    }
}
