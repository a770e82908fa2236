// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QImage>
#include <QObject>
#include <QPixmap>
#include <QPointer>
#include <QRectF>
#include <QScreen>
#include <functional>
#include <memory>

#include "annotation/annotation_canvas_view.h"
#include "annotation/annotation_state.h"

class QKeyEvent;
class QWidget;
class SelectionOverlayView;
struct NewCaptureFile;

// The area editor: freezes the screen under the pointer, covers it with a
// borderless overlay showing the frozen picture, lets the user drag and
// adjust a selection (and annotate it), and on Return writes the selection
// as a PNG in the save folder and runs the capture follow-up, at the
// screen's full pixel resolution. Escape leaves without writing. The controller owns itself while
// its overlay is up and is deleted when the overlay goes. GUI thread only.
class AnnotationOverlayController : public QObject {
    Q_OBJECT

public:
    using OpenedCallback = std::function<void(AnnotationOverlayController&)>;

    // Queues the capture: freeze the screen under the pointer, then open the
    // editor on it. Returns at once. `onOpened` (for measurements and tests)
    // sees the controller before its overlay is shown.
    static void start(const OpenedCallback& onOpened = {});
    // Whether an editor is open, or queued by start() and about to open.
    static bool isEditorOpen();
    // One throw-away grab: the first grab of a process sets up shared memory
    // and is several times slower than later ones.
    static void warmUp();

    // `desktopImage` is the frozen screen (device pixels); a null pixmap
    // shows an empty picture. With `selectWholeScreen` the whole screen starts
    // out selected and confirmed.
    AnnotationOverlayController(QScreen* screen, bool selectWholeScreen,
                                const QPixmap& desktopImage);
    ~AnnotationOverlayController() override;

    // Shows the overlay and keeps the controller alive until dismiss().
    void show();
    // Writes the selection (with its annotations) and runs the follow-up.
    void saveSelection();
    // Takes the overlay off the screen and releases the controller.
    void dismiss();
    void undo();

    AnnotationState& annotationState() { return annotationState_; }
    QWidget* overlayWindow() const;

    // The selection cut out of the frozen screen at device-pixel resolution;
    // its device pixel ratio makes its size in points the selection's.
    static QImage cropToSelection(const QImage& image, const QRectF& selection,
                                  const QSizeF& viewSize);

Q_SIGNALS:
    // The overlay is exposed and its first frame, frozen screen included,
    // has been painted.
    void firstFramePainted();
    // A capture file was written (before the follow-up runs).
    void saved(const QString& path);
    // The overlay left the screen; the controller is deleted next.
    void closed();

private:
    void onSelectionConfirmed(const QRectF& selection);
    void onNewSelectionStarted();
    void createCanvas();
    // Gives the overlay the keyboard: it bypasses the window manager, which
    // therefore never hands it back after another window had it.
    void takeKeyboardFocus();
    // The same after the colour dialog left, checked again a few times until
    // the overlay has the keyboard.
    void takeKeyboardFocusBack(int retries);
    // Takes the keyboard back when something other than the colour dialog
    // took it.
    void keepKeyboardFocus();
    // Return saves, Escape leaves, Ctrl+Z undoes, a tool's key picks it.
    bool handleEditorKey(const QKeyEvent& key);
    void showToolbar(const QRectF& selection);
    bool eventFilter(QObject* watched, QEvent* event) override;
    void finishSaving(const NewCaptureFile& file, const QImage& image, const QByteArray& pngData);

    QPointer<QScreen> screen_;
    AnnotationState annotationState_;
    QPixmap desktopImage_;
    std::unique_ptr<SelectionOverlayView> selectionView_;
    // Created when a selection is confirmed: the annotation canvas over the
    // whole overlay, and the floating panel that hosts the toolbar.
    QPointer<AnnotationCanvasView> canvasView_;
    QPointer<QWidget> toolbarPanel_;
    // Set while the overlay is up: nobody else owns the controller.
    bool selfRetain_ = false;
    bool saving_ = false;
    bool gripDragThroughCanvas_ = false;
    // Identity only (never dereferenced): the key press the text field saw
    // last, so that its Return does not also save when it reaches the canvas.
    const QEvent* keyTakenByTextField_ = nullptr;
};
