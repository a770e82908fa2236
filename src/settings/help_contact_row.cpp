// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "settings/help_contact_row.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QMimeData>
#include <QPainter>
#include <QToolButton>
#include <QVBoxLayout>

#include "widgets/symbol_icon.h"
#include "widgets/widget_style.h"

HelpContactRow::HelpContactRow(const QString& label, const QString& value, QWidget* parent)
    : QWidget(parent), value_(value) {
    setAccessibleName(label);
    setAttribute(Qt::WA_Hover);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(12, 8, 8, 8);
    auto* texts = new QVBoxLayout;
    texts->setSpacing(2);
    auto* title = new QLabel(label, this);
    title->setFont(widget_style::font(font(), 11, QFont::Normal));
    auto* shown = new QLabel(value, this);
    shown->setTextInteractionFlags(Qt::TextSelectableByMouse);
    shown->setAccessibleName(label + QStringLiteral(" ") + value);
    texts->addWidget(title);
    texts->addWidget(shown);
    copy_ = new QToolButton(this);
    copy_->setAutoRaise(true);
    copy_->setAccessibleName(QStringLiteral("Copy ") + label);
    copy_->setToolTip(QStringLiteral("Copy"));
    layout->addLayout(texts, 1);
    layout->addWidget(copy_);
    copiedTimer_.setSingleShot(true);
    copiedTimer_.setInterval(kCopiedMs);
    connect(&copiedTimer_, &QTimer::timeout, this, [this] { showCopied(false); });
    connect(copy_, &QToolButton::clicked, this, &HelpContactRow::copy);
    showCopied(false);
}

void HelpContactRow::copy() {
    // New data replaces whatever was on the clipboard, as plain text only.
    auto* data = new QMimeData;
    data->setText(value_);
    QGuiApplication::clipboard()->setMimeData(data);
    showCopied(true);
    copiedTimer_.start();
}

void HelpContactRow::showCopied(bool copied) {
    copied_ = copied;
    const QString symbol = copied ? QStringLiteral("checkmark") : QStringLiteral("doc.on.doc");
    copy_->setIcon(symbolIcon(symbol, widget_style::secondary(palette()), QSize(16, 16)));
    copy_->setToolTip(copied ? QStringLiteral("Copied") : QStringLiteral("Copy"));
}

void HelpContactRow::enterEvent(QEnterEvent* event) {
    hovered_ = true;
    update();
    QWidget::enterEvent(event);
}

void HelpContactRow::leaveEvent(QEvent* event) {
    hovered_ = false;
    update();
    QWidget::leaveEvent(event);
}

void HelpContactRow::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(
        widget_style::withAlpha(widget_style::primary(palette()), hovered_ ? 0.09 : 0.05));
    painter.drawRoundedRect(QRectF(rect()), 8, 8);
}
