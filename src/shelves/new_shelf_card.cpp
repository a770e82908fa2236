// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "shelves/new_shelf_card.h"

#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QVBoxLayout>

#include "widgets/symbol_icon.h"
#include "widgets/widget_style.h"

namespace {

// As high as a shelf card.
constexpr int kCardHeight = 120;

}  // namespace

NewShelfCard::NewShelfCard(QWidget* parent) : QFrame(parent) {
    setAccessibleName(QStringLiteral("New Shelf"));
    setFixedHeight(kCardHeight);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(10, 10, 10, 10);
    auto* symbol = new QLabel(this);
    symbol->setAccessibleName(QStringLiteral("New shelf folder"));
    symbol->setAlignment(Qt::AlignCenter);
    symbol->setPixmap(symbolPixmap(QStringLiteral("folder.badge.plus"),
                                   widget_style::secondary(palette()), QSize(28, 28),
                                   devicePixelRatioF()));
    field_ = new QLineEdit(this);
    field_->setPlaceholderText(QStringLiteral("Shelf name"));
    field_->setAccessibleName(QStringLiteral("Shelf name"));
    field_->installEventFilter(this);
    layout->addStretch();
    layout->addWidget(symbol);
    layout->addWidget(field_);
    layout->addStretch();
    setFocusProxy(field_);
}

QString NewShelfCard::name() const {
    return field_->text();
}

void NewShelfCard::clear() {
    field_->clear();
}

bool NewShelfCard::eventFilter(QObject* watched, QEvent* event) {
    if (watched == field_ && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            Q_EMIT committed(field_->text());
            return true;
        }
        if (key == Qt::Key_Escape) {
            Q_EMIT cancelled();
            return true;
        }
    }
    return QFrame::eventFilter(watched, event);
}

void NewShelfCard::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(widget_style::accent(palette()), 1.5, Qt::DashLine));
    painter.setBrush(widget_style::withAlpha(widget_style::primary(palette()), 0.05));
    painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 10, 10);
}
