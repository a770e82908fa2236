// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "onboarding/onboarding_window.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QVBoxLayout>
#include <QWindow>

#include "onboarding/onboarding_view.h"
#include "widgets/window_corners.h"

namespace {

// White at 10 % brightness.
const QColor kBackground(26, 26, 26);

}  // namespace

OnboardingWindow::OnboardingWindow(QWidget* parent) : QWidget(parent) {
    setWindowFlags(Qt::Tool | Qt::FramelessWindowHint);
    setAttribute(Qt::WA_TranslucentBackground);
    setWindowTitle(QStringLiteral("Welcome to Quillix"));
    setAccessibleName(QStringLiteral("Welcome to Quillix"));
    setFixedSize(kSize);
    // Light text on the dark fill, whatever the desktop's colours are.
    QPalette dark = palette();
    dark.setColor(QPalette::Window, kBackground);
    dark.setColor(QPalette::WindowText, Qt::white);
    dark.setColor(QPalette::Text, Qt::white);
    dark.setColor(QPalette::ButtonText, Qt::white);
    dark.setColor(QPalette::ToolTipBase, QColor(44, 44, 46));
    dark.setColor(QPalette::ToolTipText, Qt::white);
    setPalette(dark);
}

void OnboardingWindow::setView(OnboardingView* view) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(view);
}

void OnboardingWindow::closeNow() {
    closing_ = true;
    close();
}

void OnboardingWindow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath outline;
    outline.addRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), kCornerRadius,
                           kCornerRadius);
    painter.fillPath(outline, kBackground);
    painter.setPen(QColor(255, 255, 255, 28));
    painter.drawPath(outline);
}

void OnboardingWindow::showEvent(QShowEvent* event) {
    // A compositor may have started or stopped since the last showing.
    WindowCorners::apply(*this, kCornerRadius);
    QWidget::showEvent(event);
}

void OnboardingWindow::closeEvent(QCloseEvent* event) {
    if (closing_) {
        event->accept();
        return;
    }
    event->ignore();
    Q_EMIT closeRequested();
}

void OnboardingWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        Q_EMIT closeRequested();
        return;
    }
    QWidget::keyPressEvent(event);
}

void OnboardingWindow::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        QWidget::mousePressEvent(event);
        return;
    }
    // The window manager moves the window when it can (it then also snaps
    // and keeps it on screen); otherwise the window follows the pointer.
    if (windowHandle() != nullptr && windowHandle()->startSystemMove()) {
        return;
    }
    dragOffset_ = event->globalPosition().toPoint() - frameGeometry().topLeft();
}

void OnboardingWindow::mouseMoveEvent(QMouseEvent* event) {
    if (dragOffset_) {
        move(event->globalPosition().toPoint() - *dragOffset_);
        return;
    }
    QWidget::mouseMoveEvent(event);
}

void OnboardingWindow::mouseReleaseEvent(QMouseEvent* event) {
    dragOffset_.reset();
    QWidget::mouseReleaseEvent(event);
}
