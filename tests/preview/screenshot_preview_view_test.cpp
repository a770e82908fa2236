// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

// The preview window on the virtual desktop with real files in a temporary
// folder and a real metadata store: annotating and saving over the file,
// the save and undo keys, unreadable pictures, renaming, events and colour
// labels, and the window's own life from opening to deletion.

#include "preview/screenshot_preview_view.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QImageReader>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QScreen>
#include <QSignalSpy>
#include <QToolButton>
#include <QtTest>
#include <memory>

#include "annotation/annotation_canvas_view.h"
#include "annotation/annotation_sidebar.h"
#include "annotation/annotation_toolbar.h"
#include "preview/preview_sidebar.h"
#include "preview/screenshot_preview_window_controller.h"
#include "storage/screenshot_metadata_store.h"
#include "support/temporary_library.h"
#include "support/test_support.h"

namespace {

const QColor kBackground(200, 220, 240);

bool isRed(QRgb pixel) {
    return qRed(pixel) > 180 && qGreen(pixel) < 120 && qBlue(pixel) < 120;
}

int countRed(const QImage& image) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            count += isRed(image.pixel(x, y)) ? 1 : 0;
        }
    }
    return count;
}

bool isPng(const QByteArray& bytes) {
    return bytes.startsWith(QByteArray("\x89PNG\r\n\x1a\n", 8));
}

ScreenshotItem itemAt(const QString& path) {
    return ScreenshotItem(path, QDateTime::currentDateTime(), QDateTime::currentDateTime());
}

// Closes a window as its title bar button does; it fades out, then goes.
void closeUntilGone(QPointer<QWidget>& window) {
    window->close();
    QTRY_VERIFY_WITH_TIMEOUT(window.isNull(), 5000);
}

}  // namespace

class ScreenshotPreviewViewTest : public QObject {
    Q_OBJECT

private:
    // Its scan folder holds no pictures, so every scan it publishes was
    // asked for.
    std::unique_ptr<TemporaryLibrary> library;
    std::unique_ptr<ScreenshotPreviewView> view;

    // Rescans asked for so far (once the store is idle).
    int refreshes() {
        library->store().waitForIdle(10000);
        return library->store().publishedScanCount() - 1;
    }

    QString filePath(const QString& name) const { return library->path(name); }

    QString writePicture(const QString& name, QSize size = {800, 600}, const char* format = "PNG") {
        QImage image(size, QImage::Format_RGB32);
        image.fill(kBackground);
        const QString path = filePath(name);
        image.save(path, format);
        return path;
    }

    // Opens a view on `path` sized so that an 800 × 600 picture is shown at
    // exactly half size, and waits until the picture is read.
    void openView(const QString& path) {
        view = std::make_unique<ScreenshotPreviewView>(itemAt(path), library->metadata,
                                                       library->store());
        const int besideImage = AnnotationSidebar::kWidth + 1 + PreviewSidebar::kWidth;
        view->resize(besideImage + 448, 348);
        view->show();
        QVERIFY(QTest::qWaitForWindowExposed(view.get()));
        QTRY_VERIFY_WITH_TIMEOUT(view->hasFinishedLoading(), 10000);
    }

    void drag(QPointF from, QPointF to) {
        QWidget* canvas = view->canvas();
        const QPoint a = from.toPoint();
        const QPoint b = to.toPoint();
        QTest::mousePress(canvas, Qt::LeftButton, {}, a);
        for (int i = 1; i <= 4; ++i) {
            QTest::mouseMove(canvas, a + (b - a) * i / 4);
        }
        QTest::mouseRelease(canvas, Qt::LeftButton, {}, b);
    }

    // A preview window as the gallery opens it, with its picture read.
    QPointer<QWidget> openWindow(const QString& path) {
        QPointer<QWidget> window = ScreenshotPreviewWindowController::open(
            itemAt(path), library->metadata, library->store());
        [&] {
            QVERIFY(QTest::qWaitForWindowExposed(window));
            QTRY_VERIFY_WITH_TIMEOUT(
                ScreenshotPreviewWindowController::of(window)->view()->hasFinishedLoading(), 10000);
        }();
        return window;
    }

    static QStringList buttonTexts(QMessageBox* box) {
        QStringList texts;
        for (QAbstractButton* button : box->buttons()) {
            texts << button->text();
        }
        texts.sort();
        return texts;
    }

    static void answer(QMessageBox* box, const QString& text) {
        for (QAbstractButton* button : box->buttons()) {
            if (button->text() == text) {
                QCOMPARE(button->accessibleName(), text);
                button->click();
                return;
            }
        }
        QFAIL(qPrintable(QStringLiteral("no button %1").arg(text)));
    }

    QImage saveAndRead() {
        QSignalSpy saved(view.get(), &ScreenshotPreviewView::saved);
        QTest::keyClick(view.get(), Qt::Key_S, Qt::ControlModifier);
        if (!saved.wait(10000)) {
            return {};
        }
        return QImage(view->item().path(), "PNG");
    }

private Q_SLOTS:
    void init() {
        library = std::make_unique<TemporaryLibrary>();
        QVERIFY(library->openUntilIdle(10000));
    }

    void cleanup() {
        view.reset();
        // Windows opened through the controller go with their deferred
        // deletion before the stores they use.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        library.reset();
    }

    // Shapes drawn with the sidebar's tools on a picture shown at half size
    // are saved into the file by Ctrl+S.
    void shapesDrawnAtHalfSizeAreSavedByTheSaveKey() {
        openView(writePicture(QStringLiteral("shot.png")));
        const QRectF shown = view->imageDisplayRect();
        QCOMPARE(shown.size(), QSizeF(400, 300));
        QCOMPARE(view->loadedImage()->size(), QSize(800, 600));

        // A pencil line across the middle and a rectangle, both drawn with
        // the mouse after picking the tools in the palette.
        QTest::mouseClick(view->annotationSidebar()->toolButton(AnnotationTool::pencil),
                          Qt::LeftButton);
        QVERIFY(view->annotationState().isDrawingEnabled());
        const QPointF o = shown.topLeft();
        drag(o + QPointF(50, 150), o + QPointF(350, 150));
        QTest::mouseClick(view->annotationSidebar()->toolButton(AnnotationTool::rectangle),
                          Qt::LeftButton);
        drag(o + QPointF(100, 30), o + QPointF(200, 80));
        QCOMPARE(view->annotationState().annotations().size(), 2);

        // Where they land and how thick they are is PreviewFlattening's
        // (preview_image_space_test); here, that the keys write them.
        const QImage saved = saveAndRead();
        QCOMPARE(saved.size(), QSize(800, 600));
        QVERIFY(isRed(saved.pixel(400, 300)));  // the line, at y = 300 from x = 100 to 700
        QVERIFY(isRed(saved.pixel(200, 110)));  // the rectangle's left edge
        QVERIFY(!isRed(saved.pixel(300, 110)));

        // The document is emptied; tool and drawing stay; the library rescans.
        QVERIFY(view->annotationState().annotations().isEmpty());
        QCOMPARE(view->annotationState().activeTool(), AnnotationTool::rectangle);
        QVERIFY(view->annotationState().isDrawingEnabled());
        QCOMPARE(refreshes(), 1);
        QCOMPARE(view->loadedImage()->pixel(400, 300), saved.pixel(400, 300));
    }

    // Text still being typed is saved by Ctrl+S and the sidebar's Save; a
    // tool's key picks the tool, except while typing; Escape in the text
    // field drops the text and leaves the window open.
    void toolKeysAndTextStillBeingTypedInTheWindow() {
        const QString path = writePicture(QStringLiteral("typed.png"));
        QPointer<QWidget> window = openWindow(path);
        ScreenshotPreviewView* shown = ScreenshotPreviewWindowController::of(window)->view();
        AnnotationState& state = shown->annotationState();
        QTest::keyClick(window, Qt::Key_R);
        QVERIFY(state.isDrawingEnabled());
        QCOMPARE(state.activeTool(), AnnotationTool::rectangle);
        QTest::keyClick(window, Qt::Key_T);
        QCOMPARE(state.activeTool(), AnnotationTool::text);

        const QRectF display = shown->imageDisplayRect();
        const QPoint at = (display.topLeft() + QPointF(40, 40)).toPoint();
        QTest::mouseClick(shown->canvas(), Qt::LeftButton, {}, at);
        QLineEdit* field = shown->canvas()->textField();
        QVERIFY(field);
        QTest::keyClicks(field, QStringLiteral("bar"));
        QCOMPARE(field->text(), QStringLiteral("bar"));
        QCOMPARE(state.activeTool(), AnnotationTool::text);
        QTest::keyClick(field, Qt::Key_Escape);
        QTest::qWait(200);
        QVERIFY(window && window->isVisible());
        QVERIFY(!ScreenshotPreviewWindowController::of(window)->question());
        QVERIFY(state.annotations().isEmpty());

        // Ctrl+S while the text is open saves it as it shows.
        QTest::mouseClick(shown->canvas(), Qt::LeftButton, {}, at);
        QVERIFY(shown->canvas()->textField());
        QTest::keyClicks(shown->canvas()->textField(), QStringLiteral("WWWW"));
        QSignalSpy saved(shown, &ScreenshotPreviewView::saved);
        QTest::keyClick(shown->canvas()->textField(), Qt::Key_S, Qt::ControlModifier);
        QVERIFY(saved.wait(10000));
        const QImage written(path);
        // Around the text's place in the picture.
        const qreal k = 800 / display.width();
        const auto textArea = [&](QPoint typedAt) {
            const QPointF inPicture = (typedAt - display.topLeft()) * k;
            return QRectF(inPicture - QPointF(0, 30 * k), QSizeF(110 * k, 60 * k)).toRect();
        };
        QVERIFY2(countRed(written.copy(textArea(at))) > 100,
                 qPrintable(QString::number(countRed(written.copy(textArea(at))))));

        // The sidebar's Save does the same.
        QTest::mouseClick(shown->canvas(), Qt::LeftButton, {}, at + QPoint(0, 100));
        QVERIFY(shown->canvas()->textField());
        QTest::keyClicks(shown->canvas()->textField(), QStringLiteral("WWWW"));
        QTest::mouseClick(shown->annotationSidebar()->saveButton(), Qt::LeftButton);
        QVERIFY(saved.wait(10000));
        QVERIFY(countRed(QImage(path).copy(textArea(at + QPoint(0, 100)))) > 100);
        closeUntilGone(window);
    }

    void shapesOutsideThePictureAreCutAwayAndCropApplies() {
        openView(writePicture(QStringLiteral("edge.png")));
        const QRectF shown = view->imageDisplayRect();
        view->annotationState().selectTool(AnnotationTool::rectangle);
        // Half in the left margin: only the part over the picture remains.
        drag(shown.topLeft() + QPointF(-20, 40), shown.topLeft() + QPointF(30, 90));
        // Wholly in the margin below the picture.
        drag(shown.bottomLeft() + QPointF(10, 4), shown.bottomLeft() + QPointF(60, 20));
        QCOMPARE(view->annotationState().annotations().size(), 2);
        QImage saved = saveAndRead();
        QCOMPARE(saved.size(), QSize(800, 600));
        QVERIFY(isRed(saved.pixel(60, 130)));   // right edge, inside
        QVERIFY(isRed(saved.pixel(20, 80)));    // top edge, inside part
        QVERIFY(!isRed(saved.pixel(60, 598)));  // the margin shape left nothing

        // A crop of the displayed quarter gives a quarter of the picture.
        view->annotationState().add({Annotation::Crop{QRectF(shown.topLeft(), shown.size() / 2)}});
        saved = saveAndRead();
        QCOMPARE(saved.size(), QSize(400, 300));
        QVERIFY(!view->annotationState().cropRect());
        QCOMPARE(view->loadedImage()->size(), QSize(400, 300));
        QCOMPARE(refreshes(), 2);
    }

    void saveKeyRewritesAJpegAsPngAndUndoKeyTakesBack() {
        const QString path = writePicture(QStringLiteral("photo.jpg"), {800, 600}, "JPG");
        QVERIFY(!isPng(readFileBytes(path)));
        openView(path);
        QVERIFY(view->loadedImage().has_value());

        // Undo with Ctrl+Z and Super+Z, the newest shape first.
        for (int i = 0; i < 3; ++i) {
            view->annotationState().add({Annotation::Rectangle{QRectF(i, i, 10, 10), Qt::red}});
        }
        QTest::keyClick(view.get(), Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(view->annotationState().annotations().size(), 2);
        QTest::keyClick(view.get(), Qt::Key_Z, Qt::MetaModifier);
        QCOMPARE(view->annotationState().annotations().size(), 1);
        view->annotationState().undo();

        // Ctrl+S with no annotations still writes the file, as PNG, in place.
        QSignalSpy saved(view.get(), &ScreenshotPreviewView::saved);
        QTest::keyClick(view.get(), Qt::Key_S, Qt::ControlModifier);
        QVERIFY(saved.wait(10000));
        const QByteArray bytes = readFileBytes(path);
        QVERIFY(isPng(bytes));
        QCOMPARE(QImage::fromData(bytes).size(), QSize(800, 600));
        QCOMPARE(refreshes(), 1);
        QCOMPARE(QDir(library->path()).entryList(QDir::Files), QStringList{"photo.jpg"});

        // Super+S saves too; other keys with Ctrl are left alone.
        QTest::keyClick(view.get(), Qt::Key_S, Qt::MetaModifier);
        QVERIFY(saved.wait(10000));
        QCOMPARE(refreshes(), 2);
    }

    void unreadablePictureLeavesTheAreaEmptyAndSaveDoesNothing() {
        const QString path = filePath(QStringLiteral("broken.png"));
        writeFileBytes(path, "this is not a picture");
        openView(path);
        QVERIFY(!view->loadedImage());
        QVERIFY(view->imageDisplayRect().isEmpty());
        view->annotationState().add({Annotation::Rectangle{QRectF(0, 0, 10, 10), Qt::red}});
        QSignalSpy saved(view.get(), &ScreenshotPreviewView::saved);
        view->save();
        QTest::keyClick(view.get(), Qt::Key_S, Qt::ControlModifier);
        QVERIFY(!saved.wait(500));
        QCOMPARE(readFileBytes(path), QByteArray("this is not a picture"));
        QCOMPARE(refreshes(), 0);
        QCOMPARE(view->annotationState().annotations().size(), 1);
    }

    void renameMovesTheFileAndRetitlesTheWindow() {
        const QString path = writePicture(QStringLiteral("shot.png"));
        writePicture(QStringLiteral("taken.png"));
        library->metadata.setColorLabel(ColorLabel::blue, path);
        QPointer<QWidget> window = openWindow(path);
        QCOMPARE(window->windowTitle(), QStringLiteral("shot"));
        QCOMPARE(window->size(), QSize(960, 640));
        QCOMPARE(window->minimumSize(), QSize(600, 400));
        QVERIFY(window->windowFlags().testFlag(Qt::Tool));
        ScreenshotPreviewWindowController* controller =
            ScreenshotPreviewWindowController::of(window);
        QVERIFY(controller);
        PreviewSidebar* panel = controller->view()->previewSidebar();
        QCOMPARE(panel->fileNameLabel()->text(), QStringLiteral("shot.png"));
        QVERIFY(panel->fileSizeLabel()->text().endsWith(QStringLiteral(" KB")));

        // A name that is taken: the message shows, the editor stays open.
        QTest::mouseClick(panel->renameButton(), Qt::LeftButton);
        QVERIFY(panel->nameField()->isVisible());
        QCOMPARE(panel->nameField()->text(), QStringLiteral("shot"));
        panel->nameField()->setText(QStringLiteral("taken"));
        QTest::mouseClick(panel->nameConfirmButton(), Qt::LeftButton);
        QTRY_VERIFY_WITH_TIMEOUT(panel->renameError().has_value(), 5000);
        QVERIFY(panel->renameErrorLabel()->isVisible());
        QVERIFY(!panel->renameErrorLabel()->text().isEmpty());
        QVERIFY(panel->isEditingName());
        QVERIFY(QFile::exists(path));
        QCOMPARE(refreshes(), 0);

        // Spaces only just close the editor.
        panel->nameField()->setText(QStringLiteral("   "));
        QTest::keyClick(panel->nameField(), Qt::Key_Return);
        QVERIFY(!panel->isEditingName());
        QVERIFY(!panel->renameErrorLabel()->isVisible());
        QVERIFY(QFile::exists(path));

        // A free name, confirmed with Return: moved, retitled, rescanned.
        QTest::mouseClick(panel->renameButton(), Qt::LeftButton);
        panel->nameField()->setText(QStringLiteral("  Bug report "));
        QTest::keyClick(panel->nameField(), Qt::Key_Return);
        QTRY_VERIFY_WITH_TIMEOUT(!panel->isEditingName(), 5000);
        const QString renamed = filePath(QStringLiteral("Bug report.png"));
        QVERIFY(QFile::exists(renamed));
        QVERIFY(!QFile::exists(path));
        QCOMPARE(window->windowTitle(), QStringLiteral("Bug report"));
        QCOMPARE(panel->nameLabel()->text(), QStringLiteral("Bug report.png"));
        QCOMPARE(refreshes(), 1);
        // The label stays with the old name; the renamed file has none.
        QCOMPARE(library->metadata.recordFor(path).colorLabel, ColorLabel::blue);
        QVERIFY(!panel->metadata().colorLabel);
        // A save now writes the renamed file, not the old name.
        QTRY_VERIFY_WITH_TIMEOUT(controller->view()->hasFinishedLoading(), 10000);
        QSignalSpy saved(controller->view(), &ScreenshotPreviewView::saved);
        controller->view()->save();
        QVERIFY(saved.wait(10000));
        QVERIFY(!QFile::exists(path));
        closeUntilGone(window);
    }

    void colourSwatchesAndEventsWriteTheMetadata() {
        const QString path = writePicture(QStringLiteral("tagged.png"), {40, 30});
        openView(path);
        PreviewSidebar* panel = view->previewSidebar();
        QStringList names;
        for (const ColorLabel label : kAllColorLabels) {
            names << panel->swatch(label)->accessibleName();
        }
        QCOMPARE(names, (QStringList{"Red", "Orange", "Yellow", "Green", "Blue", "Purple"}));
        QCOMPARE(panel->clearColorButton()->accessibleName(), QStringLiteral("No color"));

        QTest::mouseClick(panel->swatch(ColorLabel::green), Qt::LeftButton);
        QCOMPARE(library->metadata.recordFor(path).colorLabel, ColorLabel::green);
        QCOMPARE(panel->swatch(ColorLabel::green)->accessibleDescription(),
                 QStringLiteral("Selected"));
        QTest::mouseClick(panel->swatch(ColorLabel::purple), Qt::LeftButton);
        QCOMPARE(library->metadata.recordFor(path).colorLabel, ColorLabel::purple);
        QTest::mouseClick(panel->swatch(ColorLabel::purple), Qt::LeftButton);  // second tap clears
        QVERIFY(!library->metadata.recordFor(path).colorLabel);
        QTest::mouseClick(panel->swatch(ColorLabel::red), Qt::LeftButton);
        QTest::mouseClick(panel->clearColorButton(), Qt::LeftButton);
        QVERIFY(!library->metadata.recordFor(path).colorLabel);

        // Events: an empty draft adds nothing; a trimmed title is stored.
        QVERIFY(panel->addEventButton()->isVisible());
        QCOMPARE(panel->addEventButton()->accessibleName(), QStringLiteral("Add event…"));
        QTest::mouseClick(panel->addEventButton(), Qt::LeftButton);
        QCOMPARE(panel->eventField()->placeholderText(), QStringLiteral("e.g. Design review…"));
        QTest::keyClick(panel->eventField(), Qt::Key_Return);
        QVERIFY(!panel->isEditingEvent());
        QVERIFY(!library->metadata.recordFor(path).event);
        QTest::mouseClick(panel->addEventButton(), Qt::LeftButton);
        QTest::keyClicks(panel->eventField(), QStringLiteral("  Launch day  "));
        QTest::mouseClick(panel->eventConfirmButton(), Qt::LeftButton);
        QCOMPARE(library->metadata.recordFor(path).event,
                 (ScreenshotEvent{QStringLiteral("Launch day"), QString()}));
        QVERIFY(panel->eventTitleLabel()->isVisible());
        QCOMPARE(panel->eventTitleLabel()->text(), QStringLiteral("Launch day"));
        QVERIFY(!panel->addEventButton()->isVisible());

        // Written to disk: a fresh store reads the same record.
        ScreenshotMetadataStore reread(library->path(QStringLiteral("data/Quillix")));
        QCOMPARE(reread.recordFor(path).event->title, QStringLiteral("Launch day"));

        // A change made elsewhere shows in the panel.
        library->metadata.setColorLabel(ColorLabel::orange, path);
        QCOMPARE(panel->swatch(ColorLabel::orange)->accessibleDescription(),
                 QStringLiteral("Selected"));

        QCOMPARE(panel->removeEventButton()->accessibleName(), QStringLiteral("Remove event"));
        QTest::mouseClick(panel->removeEventButton(), Qt::LeftButton);
        QVERIFY(!library->metadata.recordFor(path).event);
        QVERIFY(panel->addEventButton()->isVisible());
        // The tiny picture is enlarged to fill the area.
        QCOMPARE(view->imageDisplayRect().height(), 348.0 - 48.0);
    }

    // Closing with drawing: Cancel keeps it, Discard closes without
    // writing, Save writes and closes; Escape and Ctrl+W close like the
    // window's button; Escape in a text field does not; no drawing, no
    // question.
    void unsavedAnnotationsAreNeverLostWithoutAQuestion() {
        const QString path = writePicture(QStringLiteral("drawn.png"), {200, 150});
        const QByteArray original = readFileBytes(path);
        QPointer<QWidget> window = openWindow(path);
        ScreenshotPreviewWindowController* controller =
            ScreenshotPreviewWindowController::of(window);
        controller->view()->annotationState().add({Annotation::Rectangle{
            controller->view()->imageDisplayRect().adjusted(10, 10, -10, -10), Qt::red}});
        QVERIFY(controller->view()->hasUnsavedChanges());

        window->close();
        QMessageBox* question = controller->question();
        QVERIFY(question);
        QTRY_VERIFY(question->isVisible());
        QCOMPARE(question->windowTitle(), QStringLiteral("Unsaved Annotations"));
        QCOMPARE(buttonTexts(question), (QStringList{"Cancel", "Discard", "Save"}));
        answer(question, QStringLiteral("Cancel"));
        QTest::qWait(300);
        QVERIFY(window && window->isVisible());
        QCOMPARE(controller->view()->annotationState().annotations().size(), 1);

        // Escape from the window asks the same; Discard closes unwritten.
        QTest::keyClick(window, Qt::Key_Escape);
        QTRY_VERIFY(controller->question());
        answer(controller->question(), QStringLiteral("Discard"));
        QTRY_VERIFY_WITH_TIMEOUT(window.isNull(), 5000);
        QCOMPARE(readFileBytes(path), original);

        // Ctrl+W asks; Save writes the drawing, then closes.
        window = openWindow(path);
        controller = ScreenshotPreviewWindowController::of(window);
        controller->view()->annotationState().add({Annotation::Rectangle{
            controller->view()->imageDisplayRect().adjusted(10, 10, -10, -10), Qt::red}});
        // While the name is being edited, Escape belongs to the field.
        QTest::mouseClick(controller->view()->previewSidebar()->renameButton(), Qt::LeftButton);
        QTest::keyClick(controller->view()->previewSidebar()->nameField(), Qt::Key_Escape);
        QTest::qWait(100);
        QVERIFY(!controller->question());
        QTest::keyClick(window, Qt::Key_W, Qt::ControlModifier);
        QTRY_VERIFY(controller->question());
        answer(controller->question(), QStringLiteral("Save"));
        QTRY_VERIFY_WITH_TIMEOUT(window.isNull(), 10000);
        QVERIFY(countRed(QImage(path)) > 100);

        // Nothing drawn: Escape closes at once.
        window = openWindow(path);
        QTest::keyClick(window, Qt::Key_Escape);
        QTRY_VERIFY_WITH_TIMEOUT(window.isNull(), 5000);
    }

    // Renamed or trashed through the library (as the gallery does), the open
    // preview follows: new name, title and save target; a trashed file with
    // drawing keeps its window, says so, refuses to save and asks before
    // closing without offering "Save"; one without drawing closes.
    void previewFollowsItsFileThroughTheLibrary() {
        const QString path = writePicture(QStringLiteral("moved.png"), {200, 150});
        QPointer<QWidget> window = openWindow(path);
        ScreenshotPreviewView* view = ScreenshotPreviewWindowController::of(window)->view();
        const QString renamed = filePath(QStringLiteral("Renamed.png"));
        QFuture<CaptureRenameResult> rename = library->store().renameFile(path, renamed);
        QTRY_VERIFY_WITH_TIMEOUT(rename.isFinished(), 10000);
        QVERIFY(rename.result().succeeded());
        QCOMPARE(view->item().path(), renamed);
        QCOMPARE(window->windowTitle(), QStringLiteral("Renamed"));
        QCOMPARE(view->previewSidebar()->nameLabel()->text(), QStringLiteral("Renamed.png"));
        view->annotationState().add({Annotation::Rectangle{QRectF(5, 5, 20, 20), Qt::red}});
        QSignalSpy saved(view, &ScreenshotPreviewView::saved);
        QVERIFY(view->save());
        QVERIFY(saved.wait(10000));
        QVERIFY(!QFile::exists(path));
        QVERIFY(QFile::exists(renamed));

        // Trashed with drawing: stays, says so, refuses to save.
        view->annotationState().add({Annotation::Rectangle{QRectF(5, 5, 20, 20), Qt::red}});
        QSignalSpy trashed(view, &ScreenshotPreviewView::fileTrashed);
        library->store().moveToTrash(ScreenshotItem(renamed, {}, {}));
        QVERIFY(trashed.wait(10000));
        QVERIFY(view->isFileGone());
        QVERIFY(view->message().contains(QStringLiteral("trash")));
        QVERIFY(!view->save());
        QTest::qWait(200);
        QVERIFY(window && window->isVisible());
        window->close();
        QTRY_VERIFY(ScreenshotPreviewWindowController::of(window)->question());
        QMessageBox* question = ScreenshotPreviewWindowController::of(window)->question();
        QCOMPARE(buttonTexts(question), (QStringList{"Cancel", "Discard"}));
        answer(question, QStringLiteral("Discard"));
        QTRY_VERIFY_WITH_TIMEOUT(window.isNull(), 5000);
        QVERIFY(!QFile::exists(renamed));
        QVERIFY(QFile::exists(library->trashed(QStringLiteral("Renamed.png"))));

        // Trashed without drawing: the window closes by itself.
        const QString other = writePicture(QStringLiteral("other.png"), {200, 150});
        window = openWindow(other);
        library->store().moveToTrash(ScreenshotItem(other, {}, {}));
        QTRY_VERIFY_WITH_TIMEOUT(window.isNull(), 10000);
    }

    // 960 × 640 centred on a large screen; shrunk with its minimum to the
    // free area less the margin on a small (or scaled) one.
    void windowSizeFitsTheScreen() {
        using Controller = ScreenshotPreviewWindowController;
        QCOMPARE(Controller::fittedGeometry(QRect(0, 24, 1920, 1056)), QRect(480, 232, 960, 640));
        QCOMPARE(Controller::fittedMinimumSize(QRect(0, 24, 1920, 1056)), QSize(600, 400));
        // 1920 × 1080 at 200 % under a 24-pixel panel.
        QCOMPARE(Controller::fittedGeometry(QRect(0, 12, 960, 528)), QRect(24, 36, 912, 480));
        QCOMPARE(Controller::fittedMinimumSize(QRect(0, 12, 960, 528)), QSize(600, 400));
        QCOMPARE(Controller::fittedGeometry(QRect(100, 0, 500, 300)), QRect(124, 24, 452, 252));
        QCOMPARE(Controller::fittedMinimumSize(QRect(100, 0, 500, 300)), QSize(452, 252));

        QPointer<QWidget> window = openWindow(writePicture(QStringLiteral("sized.png")));
        const QRect available = window->screen()->availableGeometry();
        QCOMPARE(window->size(), Controller::fittedGeometry(available).size());
        QVERIFY(available.contains(window->frameGeometry()));
        closeUntilGone(window);
    }

    // A picture beyond what the program may allocate for one image says so
    // instead of staying blank.
    void pictureBeyondTheAllocationLimitSaysItIsTooLarge() {
        const QString path = writePicture(QStringLiteral("big.png"), {1024, 1024});
        const int limit = QImageReader::allocationLimit();
        QImageReader::setAllocationLimit(1);  // MB; the picture needs 4
        openView(path);
        QImageReader::setAllocationLimit(limit);
        QVERIFY(!view->loadedImage());
        QCOMPARE(view->message(),
                 QStringLiteral("This picture is too large to show (1024 × 1024 pixels)."));
        // Under the limit the program sets, it shows.
        openView(path);
        QCOMPARE(view->loadedImage()->size(), QSize(1024, 1024));
        QVERIFY(view->message().isEmpty());
    }

    void delayedShowClosesThePopoverFirst() {
        const QString path = writePicture(QStringLiteral("later.png"), {64, 48});
        int closeRequests = 0;
        ScreenshotPreviewWindowController::setPopoverCloser([&closeRequests] { ++closeRequests; });
        ScreenshotPreviewWindowController::show(itemAt(path));
        QCOMPARE(closeRequests, 1);
        QWidget* opened = nullptr;
        QTRY_VERIFY_WITH_TIMEOUT(
            [&opened] {
                for (QWidget* top : QApplication::topLevelWidgets()) {
                    if (top->windowTitle() == QStringLiteral("later") && top->isVisible()) {
                        opened = top;
                    }
                }
                return opened != nullptr;
            }(),
            5000);
        ScreenshotPreviewWindowController::setPopoverCloser({});
        QPointer<QWidget> window = opened;
        closeUntilGone(window);
    }
};

QTEST_MAIN(ScreenshotPreviewViewTest)
#include "screenshot_preview_view_test.moc"
