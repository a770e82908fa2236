// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "settings/settings_window_controller.h"

#include <QCursor>
#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QVBoxLayout>
#include <QWidget>

#include "settings/settings_view.h"
#include "storage/preferences.h"

SettingsWindowController::SettingsWindowController(SettingsServices services, QObject* parent)
    : QObject(parent), services_(std::move(services)) {}

SettingsWindowController::~SettingsWindowController() {
    if (window_ && window_->isVisible()) {
        rememberFrame();
    }
}

void SettingsWindowController::show() {
    if (!window_) {
        buildWindow();
    }
    window_->show();
    window_->raise();
    window_->activateWindow();
}

void SettingsWindowController::buildWindow() {
    // A tool window: no task-bar entry, no minimise or maximise button.
    window_ =
        std::make_unique<QWidget>(nullptr, Qt::Tool | Qt::CustomizeWindowHint |
                                               Qt::WindowTitleHint | Qt::WindowCloseButtonHint);
    window_->setWindowTitle(QStringLiteral("Settings"));
    window_->setAccessibleName(QStringLiteral("Settings"));
    window_->setFixedSize(kContentSize);
    auto* layout = new QVBoxLayout(window_.get());
    layout->setContentsMargins(0, 0, 0, 0);
    view_ = new SettingsView(services_, window_.get());
    layout->addWidget(view_);
    connect(view_, &SettingsView::customBarIconChanged, this,
            &SettingsWindowController::customBarIconChanged);
    window_->installEventFilter(this);
    placeWindow();
}

void SettingsWindowController::placeWindow() {
    if (window_->restoreGeometry(services_.preferences.windowFrame(kFrameName))) {
        window_->setFixedSize(kContentSize);
        return;
    }
    QScreen* screen = QGuiApplication::screenAt(QCursor::pos());
    if (screen == nullptr) {
        screen = QGuiApplication::primaryScreen();
    }
    if (screen != nullptr) {
        QRect frame(QPoint(), kContentSize);
        frame.moveCenter(screen->availableGeometry().center());
        window_->move(frame.topLeft());
    }
}

void SettingsWindowController::rememberFrame() {
    services_.preferences.setWindowFrame(kFrameName, window_->saveGeometry());
}

bool SettingsWindowController::eventFilter(QObject* watched, QEvent* event) {
    if (watched == window_.get() && event->type() == QEvent::Hide) {
        rememberFrame();
    }
    return QObject::eventFilter(watched, event);
}
