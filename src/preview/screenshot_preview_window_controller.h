// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QList>
#include <QMessageBox>
#include <QObject>
#include <QPointer>
#include <QRect>
#include <QSize>
#include <functional>

#include "library/screenshot_item.h"

class QPropertyAnimation;
class QWidget;
class ScreenshotMetadataStore;
class ScreenshotPreviewView;
class ScreenshotStore;

// Opens the preview window of one capture file. Each window owns its
// controller: the controller fades the window in when it opens and out when
// it is closed, after which the window and everything in it are deleted.
// Nothing stops two windows for the same file. GUI thread only.
//
// Drawing is never thrown away without a question: closing a window (its
// close button, Escape, Ctrl+W) whose picture has unsaved annotations asks
// "Save", "Discard" or "Cancel" first, and so does quitting through
// settleUnsavedChanges. A window whose file the library moved to the trash
// closes by itself when nothing is unsaved; otherwise it stays, says so, and
// its question offers no "Save".
class ScreenshotPreviewWindowController : public QObject {
    Q_OBJECT

public:
    static constexpr int kOpenDelayMs = 150;
    static constexpr int kFadeInMs = 250;
    static constexpr int kFadeOutMs = 180;
    static constexpr int kWidth = 960;
    static constexpr int kHeight = 640;
    static constexpr int kMinimumWidth = 600;
    static constexpr int kMinimumHeight = 400;
    // Kept free between a window and the edges of the screen's free area,
    // so the window manager's frame and title bar stay on screen.
    static constexpr int kScreenMargin = 24;
    static inline const QString kQuestionTitle = QStringLiteral("Unsaved Annotations");

    // How the shell gets its popover and pill out of the way, which preview
    // windows (and their questions) must never open under. Set once by the
    // shell; nothing is closed while it is unset.
    static void setPopoverCloser(std::function<void()> closePopover);

    // The entry point of the gallery and the shelves: asks the popover to
    // close at once and opens the window for `item` 0.15 s later, with the
    // shared metadata store and the shared screenshot library.
    static void show(const ScreenshotItem& item);

    // Opens the window now, shown and fading in, with explicit
    // collaborators. The window deletes itself once closed and faded out.
    static QWidget* open(const ScreenshotItem& item, ScreenshotMetadataStore& metaStore,
                         ScreenshotStore& library);

    // The controller of a window made by open(), or null.
    static ScreenshotPreviewWindowController* of(const QWidget* window);

    // The window's size and place on a screen whose free area (without
    // panels) is `available`: 960 × 640, or less so that it fits inside the
    // area less the margin, centred there. The minimum size (600 × 400)
    // shrinks the same way.
    static QRect fittedGeometry(const QRect& available);
    static QSize fittedMinimumSize(const QRect& available);

    // Asks about every preview window with unsaved annotations, one after
    // the other, then calls `proceed`; nothing is called when the user
    // cancels one of the questions or a save fails.
    static void settleUnsavedChanges(std::function<void()> proceed);

    QWidget* window() const { return window_; }
    ScreenshotPreviewView* view() const { return view_; }
    // The question while it is shown, else null.
    QMessageBox* question() const { return question_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    enum class Reason { closing, quitting };

    ScreenshotPreviewWindowController(QWidget* window, ScreenshotPreviewView* view);
    static void askInTurn(QList<QPointer<ScreenshotPreviewWindowController>> pending,
                          std::function<void()> proceed);
    void requestClose();
    // Asks what to do with the unsaved annotations; `done` learns whether
    // the caller may go on (saved or discarded) or not (cancelled, failed).
    void askAboutUnsavedChanges(Reason reason, const std::function<void(bool)>& done);
    void saveThen(const std::function<void(bool)>& done);
    void followTrash();
    void fadeIn();
    void fadeOut();

    QWidget* window_;
    ScreenshotPreviewView* view_;
    QPointer<QPropertyAnimation> fade_;
    QPointer<QMessageBox> question_;
    bool closing_ = false;
    bool faded_ = false;
};
