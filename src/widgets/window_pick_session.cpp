// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "widgets/window_pick_session.h"

#include <QGuiApplication>
#include <QLoggingCategory>
#include <QScreen>
#include <algorithm>

#include "platform/platform_services.h"
#include "platform/pointer_picker.h"

Q_LOGGING_CATEGORY(lcWindowPick, "quillix.windowpick")

namespace {

// Pointer moves come far faster than the screen changes: one look-up per
// frame follows the latest of them.
constexpr int kFrameMs = 16;

// A frame in desktop pixels in Qt's logical coordinates: a screen keeps its
// top left in device pixels and scales what lies beyond it.
QRect logicalFrame(const WindowInfo& window) {
    const QList<QScreen*> screens = QGuiApplication::screens();
    const auto named = std::find_if(screens.begin(), screens.end(), [&window](QScreen* screen) {
        return screen->name() == window.displayName;
    });
    if (named == screens.end()) {
        return window.frame;
    }
    const qreal ratio = (*named)->devicePixelRatio();
    const QPoint origin = (*named)->geometry().topLeft();
    return {origin + (window.frame.topLeft() - origin) / ratio,
            (QSizeF(window.frame.size()) / ratio).toSize()};
}

}  // namespace

WindowPickSession::WindowPickSession(const OutlineStyle& style, QObject* parent)
    : WindowPickSession(style, PlatformServices::instance().createPointerPicker(),
                        PlatformServices::instance().windowList(), parent) {}

WindowPickSession::WindowPickSession(const OutlineStyle& style,
                                     std::unique_ptr<PointerPicker> picker, WindowList* windows,
                                     QObject* parent)
    : QObject(parent), style_(style), picker_(std::move(picker)), windows_(windows) {
    hoverFrame_.setSingleShot(true);
    hoverFrame_.setInterval(kFrameMs);
    connect(&hoverFrame_, &QTimer::timeout, this, &WindowPickSession::updateHover);
    if (picker_) {
        // Queued: a receiver of picked() may delete this session, and with
        // it the picker, which must not happen while it reports an event.
        connect(picker_.get(), &PointerPicker::moved, this, &WindowPickSession::followPointer,
                Qt::QueuedConnection);
        connect(picker_.get(), &PointerPicker::clicked, this, &WindowPickSession::pickAt,
                Qt::QueuedConnection);
        connect(picker_.get(), &PointerPicker::escapePressed, this, &WindowPickSession::cancel,
                Qt::QueuedConnection);
        connect(picker_.get(), &PointerPicker::failed, this, &WindowPickSession::cancel,
                Qt::QueuedConnection);
    }
}

WindowPickSession::~WindowPickSession() {
    stop();
}

void WindowPickSession::start() {
    stop();
    if (!picker_ || windows_ == nullptr) {
        qCDebug(lcWindowPick) << "no way to pick a window on this display";
        Q_EMIT cancelled();
        return;
    }
    active_ = true;
    // Made afresh for every pick: a compositor may have started or stopped.
    outline_ = std::make_unique<WindowOutline>(style_);
    picker_->start();
}

void WindowPickSession::stop() {
    if (!active_) {
        return;
    }
    active_ = false;
    hoverFrame_.stop();
    picker_->stop();
    outline_.reset();
    hovered_.reset();
}

void WindowPickSession::followPointer(const QPoint& position) {
    if (!active_) {
        return;
    }
    pointer_ = position;
    if (!hoverFrame_.isActive()) {
        hoverFrame_.start();
    }
}

void WindowPickSession::updateHover() {
    if (!active_) {
        return;
    }
    hovered_ = windows_->windowAt(pointer_);
    if (hovered_) {
        outline_->showAround(logicalFrame(*hovered_));
    } else {
        outline_->hide();
    }
}

void WindowPickSession::pickAt(const QPoint& position) {
    if (!active_) {
        return;
    }
    // Where the click was, not where the last frame's look-up was.
    pointer_ = position;
    hoverFrame_.stop();
    updateHover();
    if (!hovered_) {
        return;
    }
    const WindowInfo window = *hovered_;
    stop();
    Q_EMIT picked(window);
}

void WindowPickSession::cancel() {
    if (!active_) {
        return;
    }
    stop();
    Q_EMIT cancelled();
}
