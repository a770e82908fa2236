// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QWidget>
#include <functional>

class QLabel;
class QPushButton;

// One permission in the General section: its symbol and title, then either
// "Granted" with a tick, or a warning sign and a "Grant" button.
class PermissionRow : public QWidget {
    Q_OBJECT

public:
    // `action` is what "Grant" does; empty disables the button.
    PermissionRow(const QString& title, const QString& icon, std::function<void()> action,
                  QWidget* parent = nullptr);

    bool granted() const { return granted_; }
    void setGranted(bool granted);

    QPushButton* grantButton() const { return grant_; }

private:
    QString title_;
    bool granted_ = false;
    QLabel* status_ = nullptr;
    QLabel* statusText_ = nullptr;
    QPushButton* grant_ = nullptr;
};
