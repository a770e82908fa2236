// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "recording/window_picker.h"

#include <QLoggingCategory>
#include <QPointer>
#include <QTimer>

#include "library/capture_service.h"
#include "platform/window_list.h"
#include "widgets/window_pick_session.h"

Q_DECLARE_LOGGING_CATEGORY(lcRecording)

namespace {

WindowPicker::Dependencies programDependencies() {
    return {[] { return std::make_unique<WindowPickSession>(OutlineStyle::captureTarget()); },
            [](quint32 windowId) { CaptureService::shared().captureWindow(windowId); }};
}

}  // namespace

WindowPicker& WindowPicker::shared() {
    // Never destroyed: a pick ends with the program's event loop.
    static auto* picker = new WindowPicker(programDependencies());
    return *picker;
}

WindowPicker::WindowPicker(Dependencies dependencies, QObject* parent)
    : QObject(parent), dependencies_(std::move(dependencies)) {}

WindowPicker::~WindowPicker() = default;

void WindowPicker::startPicking() {
    stopPicking();
    qCDebug(lcRecording) << "picking a window to capture";
    session_ = dependencies_.createPickSession();
    connect(session_.get(), &WindowPickSession::picked, this,
            [this](const WindowInfo& window) { capture(window.windowId); });
    connect(session_.get(), &WindowPickSession::cancelled, this, &WindowPicker::stopPicking);
    session_->start();
}

void WindowPicker::stopPicking() {
    if (session_ != nullptr) {
        session_->stop();
        endSession();
    }
}

void WindowPicker::capturePick() {
    if (const std::optional<quint32> windowId = hoveredWindowID()) {
        capture(*windowId);
    }
}

std::optional<quint32> WindowPicker::hoveredWindowID() const {
    if (session_ == nullptr || !session_->hoveredWindow()) {
        return std::nullopt;
    }
    return session_->hoveredWindow()->windowId;
}

void WindowPicker::capture(quint32 windowId) {
    stopPicking();
    qCDebug(lcRecording) << "capturing window" << windowId;
    QTimer::singleShot(kCaptureDelayMs, this,
                       [this, windowId] { dependencies_.captureWindow(windowId); });
}

void WindowPicker::endSession() {
    // The session may be inside the signal that brought us here.
    session_->disconnect(this);
    session_.release()->deleteLater();
}
