// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "gallery/thumbnail_text_dialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

ThumbnailTextDialog::ThumbnailTextDialog(const Texts& texts, const QString& initialText,
                                         QWidget* parent)
    : QDialog(parent) {
    setWindowTitle(texts.message);
    setAccessibleName(texts.message);
    setModal(true);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(20, 18, 20, 14);
    layout->setSpacing(8);

    auto* messageLabel = new QLabel(texts.message, this);
    QFont messageFont = messageLabel->font();
    messageFont.setBold(true);
    messageLabel->setFont(messageFont);
    messageLabel->setAccessibleName(texts.message);
    layout->addWidget(messageLabel);

    auto* informativeLabel = new QLabel(texts.informativeText, this);
    informativeLabel->setWordWrap(true);
    informativeLabel->setAccessibleName(texts.informativeText);
    layout->addWidget(informativeLabel);

    field_ = new QLineEdit(initialText, this);
    field_->setFixedSize(260, 24);
    field_->setPlaceholderText(texts.placeholder);
    field_->setAccessibleName(texts.fieldAccessibleName);
    field_->setAccessibleDescription(texts.informativeText);
    field_->selectAll();
    informativeLabel->setBuddy(field_);
    layout->addWidget(field_);

    auto* buttons = new QDialogButtonBox(this);
    acceptButton_ = buttons->addButton(texts.acceptLabel, QDialogButtonBox::AcceptRole);
    acceptButton_->setAccessibleName(texts.acceptLabel);
    acceptButton_->setDefault(true);
    cancelButton_ = buttons->addButton(tr("Cancel"), QDialogButtonBox::RejectRole);
    cancelButton_->setAccessibleName(cancelButton_->text());
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);

    field_->setFocus();
}

QString ThumbnailTextDialog::trimmedText() const {
    // QString::trimmed strips every kind of white space, line breaks included.
    return field_->text().trimmed();
}

std::optional<QString> ThumbnailTextDialog::run() {
    show();
    raise();
    activateWindow();
    field_->setFocus();
    field_->selectAll();
    if (exec() != QDialog::Accepted) {
        return std::nullopt;
    }
    return trimmedText();
}
