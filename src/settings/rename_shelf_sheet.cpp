// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "settings/rename_shelf_sheet.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "storage/shelf_store.h"
#include "widgets/symbol_icon.h"
#include "widgets/widget_style.h"

namespace {

constexpr int kFieldWidth = 260;
const QColor kErrorRed(255, 69, 58);

}  // namespace

RenameShelfSheet::RenameShelfSheet(ShelfStore& store, const QUuid& shelfId,
                                   const QString& currentName, QWidget* parent)
    : QDialog(parent), store_(store), shelfId_(shelfId) {
    setWindowTitle(QStringLiteral("Rename Shelf"));
    setAccessibleName(QStringLiteral("Rename Shelf"));
    setWindowModality(Qt::WindowModal);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 20, 24, 16);
    layout->setSpacing(10);
    auto* symbol = new QLabel(this);
    symbol->setPixmap(symbolPixmap(QStringLiteral("tray.fill"), widget_style::accent(palette()),
                                   QSize(28, 28), devicePixelRatioF()));
    symbol->setAccessibleName(QStringLiteral("Shelf symbol"));
    auto* title = new QLabel(QStringLiteral("Rename Shelf"), this);
    title->setFont(widget_style::font(font(), 15, QFont::DemiBold));
    name_ = new QLineEdit(currentName, this);
    name_->setPlaceholderText(QStringLiteral("Shelf name"));
    name_->setAccessibleName(QStringLiteral("Shelf name"));
    name_->setFixedWidth(kFieldWidth);
    name_->selectAll();
    error_ = new QLabel(this);
    error_->setStyleSheet(QStringLiteral("color: %1;").arg(kErrorRed.name()));
    error_->setWordWrap(true);
    error_->hide();
    auto* cancel = new QPushButton(QStringLiteral("Cancel"), this);
    rename_ = new QPushButton(QStringLiteral("Rename"), this);
    rename_->setDefault(true);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cancel);
    buttons->addWidget(rename_);
    layout->addWidget(symbol, 0, Qt::AlignHCenter);
    layout->addWidget(title, 0, Qt::AlignHCenter);
    layout->addWidget(name_, 0, Qt::AlignHCenter);
    layout->addWidget(error_);
    layout->addLayout(buttons);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(rename_, &QPushButton::clicked, this, &RenameShelfSheet::rename);
}

void RenameShelfSheet::rename() {
    const std::optional<ShelfError> error = store_.renameShelf(shelfId_, name_->text());
    if (!error) {
        error_->clear();
        accept();
        return;
    }
    error_->setText(error->description());
    error_->setAccessibleName(error->description());
    error_->show();
}
