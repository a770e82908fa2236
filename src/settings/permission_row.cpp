// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "settings/permission_row.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

#include "widgets/symbol_icon.h"
#include "widgets/widget_style.h"

namespace {

constexpr QSize kSymbolSize(16, 16);
const QColor kGrantedGreen(52, 199, 89);
const QColor kWarningOrange(255, 159, 10);

}  // namespace

PermissionRow::PermissionRow(const QString& title, const QString& icon,
                             std::function<void()> action, QWidget* parent)
    : QWidget(parent), title_(title) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 6, 0, 6);
    auto* symbol = new QLabel(this);
    symbol->setPixmap(
        symbolPixmap(icon, widget_style::primary(palette()), kSymbolSize, devicePixelRatioF()));
    symbol->setAccessibleName(title + QStringLiteral(" symbol"));
    layout->addWidget(symbol);
    layout->addWidget(new QLabel(title, this), 1);
    status_ = new QLabel(this);
    statusText_ = new QLabel(QStringLiteral("Granted"), this);
    grant_ = new QPushButton(QStringLiteral("Grant"), this);
    grant_->setAccessibleName(QStringLiteral("Grant ") + title);
    grant_->setEnabled(static_cast<bool>(action));
    if (!action) {
        grant_->setToolTip(QStringLiteral("This desktop has no settings page for it"));
    }
    connect(grant_, &QPushButton::clicked, this, [action = std::move(action)] {
        if (action) {
            action();
        }
    });
    layout->addWidget(status_);
    layout->addWidget(statusText_);
    layout->addWidget(grant_);
    setGranted(false);
}

void PermissionRow::setGranted(bool granted) {
    granted_ = granted;
    const QString symbol = granted ? QStringLiteral("checkmark.circle.fill")
                                   : QStringLiteral("exclamationmark.triangle.fill");
    status_->setPixmap(symbolPixmap(symbol, granted ? kGrantedGreen : kWarningOrange, kSymbolSize,
                                    devicePixelRatioF()));
    statusText_->setVisible(granted);
    grant_->setVisible(!granted);
    setAccessibleName(title_ +
                      (granted ? QStringLiteral(": granted") : QStringLiteral(": not granted")));
}
