// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QPoint>
#include <QWidget>
#include <optional>

class OnboardingView;

// The frameless "Welcome to Quillix" window around the slides: dark, with
// rounded corners, moved by dragging its background. Closing it through the
// window manager or with Escape only asks to close (closeRequested), so the
// owner can store the answer and fade it out first.
class OnboardingWindow : public QWidget {
    Q_OBJECT

public:
    static constexpr QSize kSize{520, 360};
    static constexpr int kCornerRadius = 12;

    explicit OnboardingWindow(QWidget* parent = nullptr);

    // Puts the content in; the window owns it from then on.
    void setView(OnboardingView* view);

    // Closes for real, without asking.
    void closeNow();

Q_SIGNALS:
    void closeRequested();

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    bool closing_ = false;
    // Set while the window follows the pointer itself (when the window
    // manager cannot move it): the grab point inside the window.
    std::optional<QPoint> dragOffset_;
};
