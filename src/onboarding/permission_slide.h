// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <functional>

#include "onboarding/slide_container.h"

class QLabel;
class QPushButton;

// The "Screen Recording" slide: asks whether the program may capture the
// screen each time it is shown and each time the program becomes active
// again (the user may have granted it in the system's settings meanwhile).
// Until then it offers "Grant Access"; afterwards it says "Permission
// granted" in green.
class PermissionSlide : public SlideContainer {
    Q_OBJECT

public:
    // `openSettings` may be empty: the button then opens nothing.
    PermissionSlide(std::function<bool()> isGranted, std::function<void()> openSettings,
                    QWidget* parent = nullptr);

    bool granted() const { return granted_; }
    QPushButton* grantButton() const { return grantButton_; }
    QLabel* grantedLabel() const { return grantedLabel_; }

    // Asks again and shows the answer; a change on screen fades in.
    void refresh();

protected:
    void showEvent(QShowEvent* event) override;

private:
    void showState();

    std::function<bool()> isGranted_;
    std::function<void()> openSettings_;
    bool granted_ = false;
    QWidget* status_ = nullptr;
    QPushButton* grantButton_ = nullptr;
    QWidget* grantedRow_ = nullptr;
    QLabel* grantedLabel_ = nullptr;
};
