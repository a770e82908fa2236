// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "app/popover_window.h"

#include <QKeyEvent>
#include <QVBoxLayout>

#include "widgets/popover_placement.h"

PopoverWindow::PopoverWindow(QWidget* parent)
    : FloatingPanel(QStringLiteral("Quillix gallery"), 10, Focus::accepts, parent) {
    setFixedSize(PopoverPlacement::kPopoverSize);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
}

void PopoverWindow::setContent(QWidget* content) {
    while (QLayoutItem* old = layout()->takeAt(0)) {
        delete old->widget();
        delete old;
    }
    layout()->addWidget(content);
}

void PopoverWindow::hideEvent(QHideEvent* event) {
    FloatingPanel::hideEvent(event);
    Q_EMIT closed();
}

void PopoverWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        hide();
        return;
    }
    FloatingPanel::keyPressEvent(event);
}
