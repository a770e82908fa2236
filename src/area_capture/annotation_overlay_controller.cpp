// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "area_capture/annotation_overlay_controller.h"

#include <QChildEvent>
#include <QCoreApplication>
#include <QCursor>
#include <QFile>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QScreen>
#include <QTimer>
#include <QVariantAnimation>
#include <QWidget>
#include <QWindow>
#include <QtConcurrent>
#include <utility>

#include "annotation/annotated_image_renderer.h"
#include "annotation/annotation_canvas_view.h"
#include "annotation/annotation_toolbar.h"
#include "annotation/color_picker_bridge.h"
#include "area_capture/area_selection_geometry.h"
#include "area_capture/selection_overlay_view.h"
#include "library/capture_file_writer.h"
#include "library/capture_service.h"
#include "library/captures_in_flight.h"
#include "library/png_encoding.h"
#include "platform/platform_services.h"
#include "platform/screen_grabber.h"
#include "widgets/window_corners.h"

namespace {

// The toolbar's painted corner radius, for its window shape.
constexpr qreal kToolbarCornerRadius = 14.0;
// How often, and how far apart, the overlay checks that it got the keyboard
// back after the colour dialog left.
constexpr int kKeyboardRetries = 10;
constexpr int kKeyboardRetryMs = 100;

// Editors queued by start() and not yet shown, and editors shown and not yet
// dismissed: one area editor at a time.
int editorsStarting = 0;
int editorsOpen = 0;

struct WrittenCapture {
    NewCaptureFile file;
    QImage image;
    QByteArray pngData;
};

// Flattens, encodes and writes one capture; runs on a worker thread.
WrittenCapture writeCapture(const QImage& cut, const QVector<Annotation>& annotations,
                            const std::optional<QRectF>& crop,
                            const CaptureDestination& destination) {
    WrittenCapture result;
    // At the cut's own density: every screen pixel of the selection is kept,
    // and the shapes grow with it, as they looked over those pixels.
    result.image = renderAnnotatedImage(cut, annotations, crop, cut.devicePixelRatio());
    result.image.setDevicePixelRatio(cut.devicePixelRatio());
    result.pngData = encodePng(result.image);
    if (result.pngData.isEmpty()) {
        result.file.saveFolderProblem = QStringLiteral("the image could not be encoded as PNG");
        return result;
    }
    result.file = writeNewCaptureFile(result.pngData, destination);
    return result;
}

}  // namespace

void AnnotationOverlayController::start(const OpenedCallback& onOpened) {
    ++editorsStarting;
    QTimer::singleShot(0, qApp, [onOpened] {
        --editorsStarting;
        QScreen* screen = QGuiApplication::screenAt(QCursor::pos());
        if (!screen) {
            screen = QGuiApplication::primaryScreen();
        }
        if (!screen) {
            return;
        }
        // The freeze comes first: nothing of ours is on the screen yet.
        const QPixmap frozen = PlatformServices::instance().screenGrabber().grab(*screen);
        auto* controller = new AnnotationOverlayController(screen, false, frozen);
        if (onOpened) {
            onOpened(*controller);
        }
        controller->show();
    });
}

bool AnnotationOverlayController::isEditorOpen() {
    return editorsStarting > 0 || editorsOpen > 0;
}

void AnnotationOverlayController::warmUp() {
    if (QScreen* screen = QGuiApplication::primaryScreen()) {
        PlatformServices::instance().screenGrabber().warmUp(*screen);
    }
}

AnnotationOverlayController::AnnotationOverlayController(QScreen* screen, bool selectWholeScreen,
                                                         const QPixmap& desktopImage)
    : screen_(screen) {
    const QRect frame = screen->geometry();
    desktopImage_ = desktopImage;
    if (desktopImage_.isNull() || frame.width() <= 0) {
        // A failed freeze still opens the editor, over an empty picture.
        desktopImage_ = QPixmap(frame.size() * screen->devicePixelRatio());
        desktopImage_.fill(Qt::black);
    }
    if (frame.width() > 0) {
        desktopImage_.setDevicePixelRatio(qreal(desktopImage_.width()) / frame.width());
    }

    QPointer<AnnotationOverlayController> self(this);
    SelectionOverlayView::Callbacks callbacks{
        .selectionConfirmed =
            [self](const QRectF& selection) {
                if (self) {
                    self->onSelectionConfirmed(selection);
                }
            },
        .newSelectionStarted =
            [self] {
                if (self) {
                    self->onNewSelectionStarted();
                }
            },
        .cancel =
            [self] {
                if (self) {
                    self->dismiss();
                }
            },
        .key = [self](const QKeyEvent& key) { return self && self->handleEditorKey(key); },
        .pressed =
            [self] {
                if (self) {
                    self->takeKeyboardFocus();
                }
            },
        .lostKeyboard =
            [self] {
                if (self) {
                    self->keepKeyboardFocus();
                }
            },
        .firstFramePainted =
            [self] {
                if (self) {
                    Q_EMIT self->firstFramePainted();
                }
            },
    };
    selectionView_ = std::make_unique<SelectionOverlayView>(desktopImage_, annotationState_, frame,
                                                            std::move(callbacks));
    // The colour dialog is a window the window manager gives the keyboard
    // to; the overlay bypasses it and must take the keyboard back itself.
    connect(&ColorPickerBridge::shared(), &ColorPickerBridge::dialogHidden, this,
            [this] { takeKeyboardFocusBack(kKeyboardRetries); });
    if (selectWholeScreen) {
        selectionView_->selectWholeScreen();
        onSelectionConfirmed(selectionView_->selection().selection());
    }
}

AnnotationOverlayController::~AnnotationOverlayController() {
    if (selfRetain_) {
        --editorsOpen;
    }
    delete toolbarPanel_;
    delete canvasView_;
}

QWidget* AnnotationOverlayController::overlayWindow() const {
    return selectionView_.get();
}

void AnnotationOverlayController::show() {
    if (!selfRetain_) {
        ++editorsOpen;
    }
    selfRetain_ = true;
    selectionView_->show();
    selectionView_->raise();
    // The overlay bypasses the window manager, so it takes the focus itself
    // for Return and Escape.
    takeKeyboardFocus();
    if (toolbarPanel_) {  // already there for a whole-screen selection
        toolbarPanel_->raise();
    }
}

void AnnotationOverlayController::takeKeyboardFocus() {
    if (!selectionView_ || !selectionView_->isVisible()) {
        return;
    }
    if (!selectionView_->isActiveWindow()) {
        selectionView_->activateWindow();
    }
    // The widget that had the keyboard last (an open text field) keeps it.
    if (!selectionView_->focusWidget()) {
        QWidget* target = canvasView_ ? static_cast<QWidget*>(canvasView_) : selectionView_.get();
        target->setFocus(Qt::ActiveWindowFocusReason);
    }
}

void AnnotationOverlayController::takeKeyboardFocusBack(int retries) {
    const QColorDialog* dialog = ColorPickerBridge::shared().dialog();
    if (!selectionView_ || !selectionView_->isVisible() || (dialog && dialog->isVisible()) ||
        selectionView_->isActiveWindow()) {
        return;
    }
    takeKeyboardFocus();
    // The window manager hands the keyboard on to one of its windows once
    // the dialog has gone, and that can land after this request and win
    // (the server drops a focus request older than the last change). Look
    // again shortly, when the request carries a newer time.
    if (retries > 0) {
        QTimer::singleShot(kKeyboardRetryMs, this,
                           [this, retries] { takeKeyboardFocusBack(retries - 1); });
    }
}

void AnnotationOverlayController::keepKeyboardFocus() {
    // Only the colour dialog may hold the keyboard while the editor is up.
    // Anything else that takes it (the window manager handing it on when the
    // dialog leaves, after the overlay took it back) gives it back, once the
    // change in progress is over.
    const QColorDialog* dialog = ColorPickerBridge::shared().dialog();
    if (dialog && dialog->isVisible()) {
        return;
    }
    QTimer::singleShot(0, this, &AnnotationOverlayController::takeKeyboardFocus);
}

bool AnnotationOverlayController::handleEditorKey(const QKeyEvent& key) {
    const Qt::KeyboardModifiers modifiers =
        key.modifiers() & (Qt::ControlModifier | Qt::MetaModifier | Qt::AltModifier);
    switch (key.key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            saveSelection();
            return true;
        case Qt::Key_Escape:
            dismiss();
            return true;
        case Qt::Key_Z:
            if (modifiers == Qt::ControlModifier || modifiers == Qt::MetaModifier) {
                undo();
                return true;
            }
            break;
        default:
            break;
    }
    // Tool keys pick a tool once there is a selection to draw on.
    const std::optional<AnnotationTool> tool = annotationToolForKey(key.key());
    if (tool && canvasView_ && (key.modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier) {
        annotationState_.selectTool(*tool);
        return true;
    }
    return false;
}

void AnnotationOverlayController::onSelectionConfirmed(const QRectF& selection) {
    if (!canvasView_) {
        createCanvas();
    }
    showToolbar(selection);
}

void AnnotationOverlayController::createCanvas() {
    // The canvas covers the whole overlay, so shapes may start outside the
    // selection; the save cuts them at its border. Presses on the grips pass
    // through to the overlay underneath.
    auto* canvas =
        new AnnotationCanvasView(annotationState_, desktopImage_.toImage(), selectionView_.get());
    canvas->setGeometry(selectionView_->rect());
    QPointer<SelectionOverlayView> view(selectionView_.get());
    canvas->setHitTestPassthrough(
        [view](const QPointF& p) { return view && view->selection().isOnGrip(p); });
    canvas->installEventFilter(this);
    canvas->setMouseTracking(true);  // for the grips' cursors
    canvas->setCursor(Qt::CrossCursor);
    // Until a tool is picked, drags belong to the selection underneath: one
    // inside moves it, one outside starts a new selection.
    const auto followDrawing = [canvas](bool drawing) {
        canvas->setAttribute(Qt::WA_TransparentForMouseEvents, !drawing);
    };
    followDrawing(annotationState_.isDrawingEnabled());
    connect(&annotationState_, &AnnotationState::drawingEnabledChanged, canvas, followDrawing);
    canvas->show();
    canvas->setFocus(Qt::OtherFocusReason);
    canvasView_ = canvas;
}

bool AnnotationOverlayController::eventFilter(QObject* watched, QEvent* event) {
    // Only input events are looked at: others also arrive while the canvas
    // is being destroyed, when it must not be touched as a canvas any more.
    const QEvent::Type type = event->type();
    if (type == QEvent::ChildAdded && watched == canvasView_.data()) {
        // The text tool's field: its Return ends the text, not the editor.
        static_cast<QChildEvent*>(event)->child()->installEventFilter(this);
        return false;
    }
    if (type == QEvent::KeyPress && watched != canvasView_.data()) {
        keyTakenByTextField_ = event;  // it travels on to the canvas as ignored
        return false;
    }
    const bool input = type == QEvent::MouseButtonPress || type == QEvent::MouseMove ||
                       type == QEvent::MouseButtonRelease || type == QEvent::KeyPress;
    if (!input || !selectionView_ || watched != canvasView_.data()) {
        return QObject::eventFilter(watched, event);
    }
    switch (type) {
        case QEvent::MouseButtonPress: {
            takeKeyboardFocus();
            // A press on a grip belongs to the overlay underneath, and so does
            // the rest of that drag (the canvas would keep the mouse grab).
            const auto* press = static_cast<QMouseEvent*>(event);
            if (selectionView_->selection().isOnGrip(press->position())) {
                gripDragThroughCanvas_ = true;
                QCoreApplication::sendEvent(selectionView_.get(), event);
                return true;
            }
            break;
        }
        case QEvent::MouseMove:
        case QEvent::MouseButtonRelease: {
            const auto* mouse = static_cast<QMouseEvent*>(event);
            if (gripDragThroughCanvas_) {
                if (event->type() == QEvent::MouseButtonRelease) {
                    gripDragThroughCanvas_ = false;
                }
                QCoreApplication::sendEvent(selectionView_.get(), event);
                return true;
            }
            // The cursor still tells what a press would do.
            canvasView_->setCursor(selectionView_->selection().cursorAt(
                mouse->position(), annotationState_.isDrawingEnabled()));
            break;
        }
        case QEvent::KeyPress: {
            // The editor's keys, unless the text tool's field is taking them.
            const auto* key = static_cast<QKeyEvent*>(event);
            const bool editing = canvasView_->textField() != nullptr ||
                                 std::exchange(keyTakenByTextField_, nullptr) == event;
            if (editing) {
                // Return ends the text only: not passed on to the overlay.
                return key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
            }
            if (handleEditorKey(*key)) {
                return true;
            }
            break;
        }
        default:
            break;
    }
    return QObject::eventFilter(watched, event);
}

void AnnotationOverlayController::showToolbar(const QRectF& selection) {
    delete toolbarPanel_;
    auto* panel =
        new QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                                 Qt::X11BypassWindowManagerHint | Qt::WindowDoesNotAcceptFocus);
    panel->setWindowTitle(QStringLiteral("Annotation toolbar"));
    panel->setAccessibleName(panel->windowTitle());
    panel->setAttribute(Qt::WA_TranslucentBackground);
    panel->setAttribute(Qt::WA_ShowWithoutActivating);
    auto* layout = new QHBoxLayout(panel);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* toolbar = new AnnotationToolbar(&annotationState_, panel);
    toolbar->setAccentColor(AnnotationToolbar::kEditorAccentColor);
    layout->addWidget(toolbar);
    QPointer<AnnotationOverlayController> self(this);
    connect(toolbar, &AnnotationToolbar::saveRequested, this, [self] {
        if (self) {
            self->saveSelection();
        }
    });
    connect(toolbar, &AnnotationToolbar::undoRequested, this, [self] {
        if (self) {
            self->undo();
        }
    });

    const QSize size = AnnotationToolbar::panelSize(toolbar->sizeHint());
    const QRect frame = selectionView_->geometry();
    const QRect visible = screen_ ? screen_->availableGeometry() : frame;
    panel->setGeometry(QRect(AnnotationToolbar::placement(selection, frame, visible, size), size));
    WindowCorners::apply(*panel, kToolbarCornerRadius);
    panel->setWindowOpacity(0.0);
    panel->show();
    panel->raise();
    auto* fadeIn = new QVariantAnimation(panel);
    fadeIn->setStartValue(0.0);
    fadeIn->setEndValue(1.0);
    fadeIn->setDuration(200);
    fadeIn->setEasingCurve(QEasingCurve::OutCubic);
    connect(fadeIn, &QVariantAnimation::valueChanged, panel,
            [panel](const QVariant& value) { panel->setWindowOpacity(value.toReal()); });
    fadeIn->start(QAbstractAnimation::DeleteWhenStopped);
    toolbarPanel_ = panel;
}

void AnnotationOverlayController::onNewSelectionStarted() {
    // Called from the overlay's own press: the canvas is its child, not the
    // receiver, so it may go at once.
    delete canvasView_;
    delete toolbarPanel_;
    annotationState_.reset();
}

void AnnotationOverlayController::undo() {
    annotationState_.undo();
    if (selectionView_) {
        selectionView_->update();
    }
    if (canvasView_) {
        canvasView_->update();
    }
}

QImage AnnotationOverlayController::cropToSelection(const QImage& image, const QRectF& selection,
                                                    const QSizeF& viewSize) {
    const QRect pixels =
        AreaSelectionGeometry::pixelRectForSelection(selection, viewSize, image.size());
    QImage cut = pixels.isEmpty() ? image : image.copy(pixels);
    if (cut.isNull()) {
        cut = image;
    }
    const qreal pixelsPerPoint = viewSize.width() > 0 ? image.width() / viewSize.width() : 1.0;
    cut.setDevicePixelRatio(pixelsPerPoint > 0 ? pixelsPerPoint : 1.0);
    return cut;
}

void AnnotationOverlayController::saveSelection() {
    if (!selectionView_ || saving_) {
        return;
    }
    // Typed text not yet confirmed is on the screen, so it is saved too.
    if (canvasView_) {
        canvasView_->commitOpenText();
    }
    AreaSelectionGeometry& geometry = selectionView_->selection();
    if (!geometry.canSave()) {
        dismiss();
        return;
    }
    saving_ = true;
    const QRectF selection = geometry.selection();
    const QImage cut = cropToSelection(desktopImage_.toImage(), selection, geometry.bounds());
    const QSizeF cutPoints = cut.deviceIndependentSize();
    const QVector<Annotation> annotations = AreaSelectionGeometry::annotationsInCut(
        annotationState_.annotations(), selection, cutPoints);
    const std::optional<QRectF> crop =
        AreaSelectionGeometry::cropInCut(annotationState_.cropRect(), selection, cutPoints);
    const CaptureDestination destination = CaptureService::shared().newCaptureDestination();
    // Quitting waits for the capture until its follow-up has run.
    const CaptureInFlightToken inFlight = startCaptureInFlight();

    // The overlay leaves at once; flattening, encoding and writing happen on
    // a worker, and the follow-up runs back here when the file is on disk.
    selectionView_->hide();
    if (toolbarPanel_) {
        toolbarPanel_->hide();
    }
    QPointer<AnnotationOverlayController> self(this);
    QtConcurrent::run(writeCapture, cut, annotations, crop, destination)
        .then(this, [self, inFlight](const WrittenCapture& written) {
            if (!self) {
                return;
            }
            self->saving_ = false;
            self->finishSaving(written.file, written.image, written.pngData);
            self->dismiss();
        });
}

void AnnotationOverlayController::finishSaving(const NewCaptureFile& file, const QImage& image,
                                               const QByteArray& pngData) {
    if (file.written()) {
        Q_EMIT saved(file.path);
    }
    CaptureService::shared().finishNewCapture(file, image, pngData);
}

void AnnotationOverlayController::dismiss() {
    if (toolbarPanel_) {
        toolbarPanel_->hide();
    }
    if (selectionView_) {
        selectionView_->hide();
    }
    // A write in flight finishes first; it dismisses again when done.
    if (saving_ || !selfRetain_) {
        return;
    }
    selfRetain_ = false;
    --editorsOpen;
    Q_EMIT closed();
    deleteLater();
}
