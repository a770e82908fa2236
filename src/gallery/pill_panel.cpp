// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "gallery/pill_panel.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QKeyEvent>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>
#include <QVariantAnimation>

#include "gallery/menu_bar_view.h"
#include "widgets/popover_placement.h"

namespace {

constexpr int kFadeDelayMs = 50;
constexpr int kFadeDurationMs = 280;

}  // namespace

PillPanel::PillPanel(ScreenshotStore& library, SoundPlayer& sounds, FooterPillView::Actions actions,
                     QWidget* parent)
    : FloatingPanel(QStringLiteral("Quillix controls"), PopoverPlacement::kPillSize.height() / 2,
                    Focus::accepts, parent),
      closePopover_(actions.closePopover),
      content_(new FooterPillView(library, sounds, std::move(actions), this)),
      fade_(new QVariantAnimation(this)) {
    // The window can hold the keyboard (for Tab from the gallery) but is
    // never activated by being shown.
    setAttribute(Qt::WA_ShowWithoutActivating);
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

PillPanel* PillPanel::shown() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (auto* pill = qobject_cast<PillPanel*>(window); pill != nullptr && pill->isVisible()) {
            return pill;
        }
    }
    return nullptr;
}

void PillPanel::takeFocus(bool first) {
    raise();
    activateWindow();
    const QList<QPushButton*> buttons = content_->buttons();
    if (first) {
        buttons.constFirst()->setFocus(Qt::TabFocusReason);
    } else {
        buttons.constLast()->setFocus(Qt::BacktabFocusReason);
    }
}

bool PillPanel::focusNextPrevChild(bool next) {
    const QList<QPushButton*> buttons = content_->buttons();
    const QWidget* focus = QApplication::focusWidget();
    MenuBarView* gallery = MenuBarView::shown();
    if (gallery != nullptr && focus == (next ? buttons.constLast() : buttons.constFirst())) {
        gallery->takeFocus(next);
        return true;
    }
    return FloatingPanel::focusNextPrevChild(next);
}

void PillPanel::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        if (closePopover_) {
            closePopover_();
        }
        event->accept();
        return;
    }
    FloatingPanel::keyPressEvent(event);
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
