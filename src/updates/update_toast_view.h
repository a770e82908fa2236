// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QWidget>
#include <functional>

#include "updates/appcast_release.h"

class QAbstractButton;

// The update toast's card: "Quillix <version> available", a line saying a
// new version is ready, a close button in the corner and "Update & Restart".
class UpdateToastView : public QWidget {
    Q_OBJECT

public:
    static constexpr int kCornerRadius = 16;

    UpdateToastView(AppcastRelease release, std::function<void()> onUpdate,
                    std::function<void()> onDismiss, QWidget* parent = nullptr);

    const AppcastRelease& release() const { return release_; }
    QAbstractButton* updateButton() const { return updateButton_; }
    QAbstractButton* closeButton() const { return closeButton_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    AppcastRelease release_;
    QAbstractButton* updateButton_;
    QAbstractButton* closeButton_;
};
