// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "settings/settings_group.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include "widgets/widget_style.h"

SettingsGroup::SettingsGroup(const QString& title, QWidget* parent) : QWidget(parent) {
    setAccessibleName(title);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    title_ = new QLabel(title, this);
    title_->setFont(widget_style::font(font(), 12, QFont::DemiBold));
    box_ = new QFrame(this);
    box_->setObjectName(QStringLiteral("settingsGroupBox"));
    const QColor text = widget_style::primary(palette());
    box_->setStyleSheet(QStringLiteral("#settingsGroupBox { background: %1; border: 1px solid %2;"
                                       " border-radius: 8px; }")
                            .arg(widget_style::withAlpha(text, 0.04).name(QColor::HexArgb),
                                 widget_style::withAlpha(text, 0.12).name(QColor::HexArgb)));
    rows_ = new QVBoxLayout(box_);
    rows_->setContentsMargins(12, 4, 12, 4);
    rows_->setSpacing(0);
    layout->addWidget(title_);
    layout->addWidget(box_);
}

void SettingsGroup::setTitle(const QString& title) {
    title_->setText(title);
    setAccessibleName(title);
}

QString SettingsGroup::title() const {
    return title_->text();
}

void SettingsGroup::addRow(QWidget* row) {
    if (rows_->count() > 0) {
        auto* divider = new QFrame(box_);
        divider->setFrameShape(QFrame::HLine);
        divider->setFixedHeight(1);
        divider->setStyleSheet(
            QStringLiteral("background: %1; border: none;")
                .arg(widget_style::withAlpha(widget_style::primary(palette()), 0.1)
                         .name(QColor::HexArgb)));
        rows_->addWidget(divider);
    }
    row->setParent(box_);
    row->setMinimumHeight(36);
    rows_->addWidget(row);
}

QWidget* SettingsGroup::addLabelledRow(const QString& label, QWidget* trailing) {
    auto* row = new QWidget(box_);
    row->setAccessibleName(label);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 6, 0, 6);
    auto* text = new QLabel(label, row);
    text->setWordWrap(true);
    layout->addWidget(text, 1);
    if (trailing != nullptr) {
        trailing->setParent(row);
        layout->addWidget(trailing, 0, Qt::AlignRight | Qt::AlignVCenter);
    }
    addRow(row);
    return row;
}
