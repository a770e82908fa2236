#pragma once

#include <QObject>
#include <QPointer>
#include <functional>

#include "capture/screenshot_item.h"

class QPropertyAnimation;
class QWidget;
class ScreenshotMetadataStore;
class ScreenshotPreviewView;

// Opens the preview window of one capture file. Each window owns its
// controller: the controller fades the window in when it opens and out when
// it is closed, after which the window and everything in it are deleted.
// Nothing stops two windows for the same file. GUI thread only.
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

    // The entry point of the gallery and the shelves: asks the popover to
    // close at once and opens the window for `item` 0.15 s later, with the
    // shared metadata store and the shared screenshot library.
    static void show(const ScreenshotItem& item);

    // Opens the window now, shown and fading in, with explicit
    // collaborators; `refreshLibrary` is called after the file changed. The
    // window deletes itself once closed and faded out.
    static QWidget* open(const ScreenshotItem& item, ScreenshotMetadataStore& metaStore,
                         std::function<void()> refreshLibrary);

    // The controller of a window made by open(), or null.
    static ScreenshotPreviewWindowController* of(const QWidget* window);

    QWidget* window() const { return window_; }
    ScreenshotPreviewView* view() const { return view_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    ScreenshotPreviewWindowController(QWidget* window, ScreenshotPreviewView* view);
    void fadeIn();
    void fadeOut();

    QWidget* window_;
    ScreenshotPreviewView* view_;
    QPointer<QPropertyAnimation> fade_;
    bool closing_ = false;
    bool faded_ = false;
};
