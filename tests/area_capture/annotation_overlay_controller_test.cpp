// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

// The area editor on the real X server: a full-screen window paints a known
// pattern, the editor freezes it, QTest drags out selections on the overlay
// window, and the PNG files that land in a custom save folder are checked
// pixel by pixel. Also run with QT_SCALE_FACTOR=2, where the files keep
// every screen pixel of the selection and the shapes grow with them.

#include "area_capture/annotation_overlay_controller.h"

#include <QApplication>
#include <QDir>
#include <QLineEdit>
#include <QPainter>
#include <QPointer>
#include <QRegularExpression>
#include <QScreen>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThreadPool>
#include <QWindow>

#include "annotation/annotation_canvas_view.h"
#include "annotation/annotation_toolbar.h"
#include "annotation/color_picker_bridge.h"
#include "storage/preferences.h"

namespace {

// A colour that differs from pixel to pixel, so a shifted cut shows.
QRgb patternAt(int x, int y) {
    return qRgb(x & 255, y & 255, (((x >> 8) * 16) + ((y >> 8) * 64)) & 255);
}

// Covers the screen with the pattern, in device pixels.
class PatternWindow : public QWidget {
public:
    PatternWindow()
        : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                               Qt::X11BypassWindowManagerHint) {
        setAttribute(Qt::WA_OpaquePaintEvent);
        setAccessibleName(QStringLiteral("Pattern"));
        QScreen* screen = QGuiApplication::primaryScreen();
        setGeometry(screen->geometry());
        const qreal ratio = screen->devicePixelRatio();
        image_ = QImage(screen->geometry().size() * ratio, QImage::Format_RGB32);
        for (int y = 0; y < image_.height(); ++y) {
            auto* line = reinterpret_cast<QRgb*>(image_.scanLine(y));
            for (int x = 0; x < image_.width(); ++x) {
                line[x] = patternAt(x, y);
            }
        }
        image_.setDevicePixelRatio(ratio);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.drawImage(QPointF(0, 0), image_);
    }

private:
    QImage image_;
};

QString g_saveFolder;

bool isRed(QRgb c) {
    return qRed(c) > 200 && qGreen(c) < 130 && qBlue(c) < 130;
}

// How many pixels of row `y` between `fromX` and `toX` (excluded) are red.
int redPixelsInRow(const QImage& image, int y, int fromX, int toX) {
    int count = 0;
    for (int x = std::max(fromX, 0); x < std::min(toX, image.width()); ++x) {
        count += isRed(image.pixel(x, y)) ? 1 : 0;
    }
    return count;
}

// The visible toolbar window of the editor, if any.
QWidget* shownToolbar() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->accessibleName() == QStringLiteral("Annotation toolbar") &&
            window->isVisible()) {
            return window;
        }
    }
    return nullptr;
}

}  // namespace

class AnnotationOverlayControllerTest : public QObject {
    Q_OBJECT

private:
    PatternWindow* pattern_ = nullptr;

    qreal ratio() const { return QGuiApplication::primaryScreen()->devicePixelRatio(); }

    QPointer<AnnotationOverlayController> openEditor() {
        QPointer<AnnotationOverlayController> controller;
        bool painted = false;
        AnnotationOverlayController::start([&](AnnotationOverlayController& opened) {
            controller = &opened;
            connect(&opened, &AnnotationOverlayController::firstFramePainted, this,
                    [&painted] { painted = true; });
        });
        if (!QTest::qWaitFor([&] { return painted; }, 5000)) {
            return nullptr;
        }
        return controller;
    }

    // An open editor with the selection (200, 150)–(500, 350) confirmed.
    QPointer<AnnotationOverlayController> openEditorWithSelection() {
        QPointer<AnnotationOverlayController> controller = openEditor();
        if (controller) {
            dragOn(controller->overlayWindow()->windowHandle(), {200, 150}, {500, 350});
        }
        return controller;
    }

    static void dragOn(QWindow* window, QPoint from, QPoint to) {
        QTest::mousePress(window, Qt::LeftButton, {}, from);
        QTest::mouseMove(window, (from + to) / 2);
        QTest::mouseMove(window, to);
        QTest::mouseRelease(window, Qt::LeftButton, {}, to);
    }

    static QStringList savedFiles() {
        return QDir(g_saveFolder).entryList({QStringLiteral("*.png")}, QDir::Files);
    }

    static QImage savedImage() { return QImage(QDir(g_saveFolder).filePath(savedFiles().first())); }

    // Presses `key` on the overlay, or on `target` if given, and waits until
    // the editor has closed.
    static bool closesOn(AnnotationOverlayController* controller, Qt::Key key,
                         QWindow* target = nullptr) {
        QSignalSpy closed(controller, &AnnotationOverlayController::closed);
        QTest::keyClick(target ? target : controller->overlayWindow()->windowHandle(), key);
        return QTest::qWaitFor([&] { return closed.count() == 1; }, 5000);
    }

    static QImage saveWithReturn(AnnotationOverlayController* controller) {
        if (!closesOn(controller, Qt::Key_Return) || savedFiles().size() != 1) {
            return {};
        }
        return savedImage();
    }

    // Every pixel of `saved` is the screen's at `topLeft` (points).
    void expectScreenPixels(const QImage& saved, QPoint topLeft) {
        const int r = int(ratio());
        int off = 0;
        for (int y = 0; y < saved.height(); ++y) {
            for (int x = 0; x < saved.width(); ++x) {
                off += saved.pixel(x, y) != patternAt(topLeft.x() * r + x, topLeft.y() * r + y);
            }
        }
        QCOMPARE(off, 0);
    }

private Q_SLOTS:
    void initTestCase() {
        pattern_ = new PatternWindow;
        pattern_->show();
        QVERIFY(QTest::qWaitForWindowExposed(pattern_));
        QTest::qWait(300);  // let the server settle the first frame
        AnnotationOverlayController::warmUp();
    }

    void init() {
        for (const QString& name : savedFiles()) {
            QFile::remove(QDir(g_saveFolder).filePath(name));
        }
    }

    void cleanupTestCase() { delete pattern_; }

    void returnSavesTheSelectionWithTheScreensPixels() {
        QPointer<AnnotationOverlayController> controller = openEditor();
        QVERIFY(controller);
        QPointer<QWidget> overlay = controller->overlayWindow();
        QCOMPARE(overlay->accessibleName(), QStringLiteral("Area selection"));
        QCOMPARE(overlay->geometry(), QGuiApplication::primaryScreen()->geometry());

        dragOn(overlay->windowHandle(), {200, 150}, {500, 350});
        const auto pixels = [this](int points) { return QString::number(int(points * ratio())); };
        QCOMPARE(overlay->accessibleDescription(),
                 pixels(300) + QStringLiteral(" \u00D7 ") + pixels(200));

        // Confirmed: the canvas covers the overlay, the grips show their cursors,
        // and the toolbar sits 8 below the selection.
        auto* canvas = overlay->findChild<AnnotationCanvasView*>();
        QVERIFY(canvas);
        // Until a tool is picked the mouse goes through the canvas to the
        // overlay, whose cursor shows what a press would do.
        QTest::mouseMove(overlay->windowHandle(), {200, 150});
        QCOMPARE(overlay->cursor().shape(), Qt::ArrowCursor);
        QTest::mouseMove(overlay->windowHandle(), {350, 150});
        QCOMPARE(overlay->cursor().shape(), Qt::SizeVerCursor);
        QTest::mouseMove(overlay->windowHandle(), {350, 250});
        QCOMPARE(overlay->cursor().shape(), Qt::OpenHandCursor);
        QPointer<QWidget> toolbar = shownToolbar();
        QVERIFY(toolbar);
        QCOMPARE(toolbar->geometry().topLeft(), QPoint(200, 358));

        QSignalSpy closed(controller.data(), &AnnotationOverlayController::closed);
        QTest::keyClick(overlay->windowHandle(), Qt::Key_Return);  // to the focus widget
        QVERIFY(overlay.isNull() || !overlay->isVisible());        // leaves the screen at once
        QTRY_COMPARE_WITH_TIMEOUT(closed.count(), 1, 5000);
        QTRY_VERIFY(controller.isNull());
        QTRY_VERIFY(toolbar.isNull());  // dropped with the controller

        const QStringList files = savedFiles();
        QCOMPARE(files.size(), 1);
        QVERIFY(QRegularExpression(
                    QStringLiteral(R"(^Screenshot_\d{4}-\d\d-\d\dT\d\d-\d\d-\d\dZ\.png$)"))
                    .match(files.first())
                    .hasMatch());
        const QImage saved = savedImage();
        // The size its label promised: every screen pixel, at any pixel ratio.
        const int r = int(ratio());
        QCOMPARE(saved.size(), QSize(300 * r, 200 * r));
        expectScreenPixels(saved, {200, 150});
    }

    void annotationsAreBurntIntoTheCut() {
        QPointer<AnnotationOverlayController> controller = openEditorWithSelection();
        QVERIFY(controller);
        controller->annotationState().selectTool(AnnotationTool::rectangle);
        // Starts inside the selection and ends outside: cut at the border.
        dragOn(controller->overlayWindow()->windowHandle(), {250, 200}, {600, 260});
        QCOMPARE(controller->annotationState().annotations().size(), 1);

        const QImage saved = saveWithReturn(controller);
        const int r = int(ratio());
        QCOMPARE(saved.size(), QSize(300 * r, 200 * r));
        QVERIFY(isRed(saved.pixel(50 * r, 80 * r)));    // left edge of the rectangle
        QVERIFY(isRed(saved.pixel(200 * r, 50 * r)));   // top edge, right of the start
        QVERIFY(!isRed(saved.pixel(150 * r, 80 * r)));  // inside stays the screen's
        // The outline is as thick as on the screen: 2.5 points, in pixels.
        const int outline = redPixelsInRow(saved, 80 * r, 40 * r, 60 * r);
        QVERIFY2(std::abs(outline - 2.5 * r) <= 1.5,
                 qPrintable(QStringLiteral("outline %1 pixels wide").arg(outline)));
    }

    // Return in the text field only ends the text; the toolbar's Save saves
    // text still being typed as it shows.
    void textIsEndedByReturnAndSavedStillOpen() {
        QPointer<AnnotationOverlayController> controller = openEditorWithSelection();
        QVERIFY(controller);
        QPointer<QWidget> overlay = controller->overlayWindow();
        controller->annotationState().selectTool(AnnotationTool::text);
        auto* canvas = overlay->findChild<AnnotationCanvasView*>();
        QVERIFY(canvas);
        // Well away from where the second text is looked for.
        QTest::mouseClick(overlay->windowHandle(), Qt::LeftButton, {}, {400, 300});
        QVERIFY(canvas->textField());
        QTest::keyClicks(canvas->textField(), QStringLiteral("hi"));
        QTest::keyClick(canvas->textField(), Qt::Key_Return);
        QCOMPARE(controller->annotationState().annotations().size(), 1);
        QTest::qWait(200);
        QVERIFY(controller && overlay->isVisible());
        QVERIFY(savedFiles().isEmpty());

        QTest::mouseClick(overlay->windowHandle(), Qt::LeftButton, {}, {250, 200});
        QVERIFY(canvas->textField());
        QTest::keyClicks(canvas->textField(), QStringLiteral("WWWW"));

        // The toolbar's Save, with the text still open: what shows is saved.
        QWidget* toolbar = shownToolbar();
        QVERIFY(toolbar);
        auto* palette = toolbar->findChild<AnnotationToolbar*>();
        QVERIFY(palette);
        QSignalSpy closed(controller.data(), &AnnotationOverlayController::closed);
        palette->saveButton()->click();
        QTRY_COMPARE_WITH_TIMEOUT(closed.count(), 1, 5000);
        QCOMPARE(savedFiles().size(), 1);
        const QImage saved = savedImage();
        // Red where the screen has none, around where the text was typed.
        const int r = int(ratio());
        int red = 0;
        for (int y = 30 * r; y < 80 * r; ++y) {
            for (int x = 50 * r; x < 130 * r; ++x) {
                red += isRed(saved.pixel(x, y)) && !isRed(patternAt(200 * r + x, 150 * r + y));
            }
        }
        QVERIFY2(red > 40 * r * r, qPrintable(QStringLiteral("%1 red pixels").arg(red)));
    }

    void dragsMoveOrRedrawTheSelectionUntilAToolIsPicked() {
        QPointer<AnnotationOverlayController> controller = openEditorWithSelection();
        QVERIFY(controller);
        QWindow* window = controller->overlayWindow()->windowHandle();
        AnnotationState& state = controller->annotationState();
        QVERIFY(!state.isDrawingEnabled());

        // A drag outside starts over: the new selection is the one kept.
        dragOn(window, {600, 400}, {700, 480});
        QVERIFY(shownToolbar());
        QCOMPARE(shownToolbar()->geometry().top(), 488);
        // A drag inside moves it, shapes or not: nothing is drawn.
        dragOn(window, {650, 440}, {550, 400});
        QVERIFY(state.annotations().isEmpty());
        QCOMPARE(shownToolbar()->geometry().topLeft(), QPoint(500, 448));

        // Once a tool is picked, a drag inside draws and the selection stays.
        state.selectTool(AnnotationTool::rectangle);
        dragOn(window, {520, 380}, {580, 420});
        QCOMPARE(state.annotations().size(), 1);
        const QImage saved = saveWithReturn(controller);
        const int r = int(ratio());
        QCOMPARE(saved.size(), QSize(100 * r, 80 * r));
        QVERIFY(isRed(saved.pixel(20 * r, 40 * r)));  // the rectangle's left edge
        expectScreenPixels(saved.copy(0, 0, 10 * r, 80 * r), {500, 360});
    }

    void toolKeysPickToolsOnceThereIsASelection() {
        QPointer<AnnotationOverlayController> controller = openEditor();
        QVERIFY(controller);
        QPointer<QWidget> overlay = controller->overlayWindow();
        QWindow* window = overlay->windowHandle();
        AnnotationState& state = controller->annotationState();
        QTest::keyClick(window, Qt::Key_R);  // nothing to draw on yet
        QVERIFY(!state.isDrawingEnabled());

        dragOn(window, {200, 150}, {500, 350});
        QTest::keyClick(window, Qt::Key_R);
        QVERIFY(state.isDrawingEnabled());
        QCOMPARE(state.activeTool(), AnnotationTool::rectangle);
        QTest::keyClick(window, Qt::Key_A);
        QCOMPARE(state.activeTool(), AnnotationTool::arrow);
        QTest::keyClick(window, Qt::Key_P, Qt::ControlModifier);  // not with a modifier
        QCOMPARE(state.activeTool(), AnnotationTool::arrow);

        // While typing, letters are text.
        QTest::keyClick(window, Qt::Key_T);
        QTest::mouseClick(window, Qt::LeftButton, {}, {250, 200});
        auto* canvas = overlay->findChild<AnnotationCanvasView*>();
        QVERIFY(canvas && canvas->textField());
        for (const char letter : {'b', 'a', 'r'}) {
            QTest::keyClick(window, letter);  // to whatever has the keyboard
        }
        QCOMPARE(canvas->textField()->text(), QStringLiteral("bar"));
        QCOMPARE(state.activeTool(), AnnotationTool::text);

        QTest::keyClick(canvas->textField(), Qt::Key_Escape);  // drops the text
        QVERIFY(closesOn(controller, Qt::Key_Escape));
    }

    void keyboardComesBackWhenTheColourDialogCloses() {
        QPointer<AnnotationOverlayController> controller = openEditorWithSelection();
        QVERIFY(controller);
        QPointer<QWidget> overlay = controller->overlayWindow();
        QTRY_COMPARE(QGuiApplication::focusWindow(), overlay->windowHandle());

        QWidget* toolbar = shownToolbar();
        QVERIFY(toolbar);
        auto* palette = toolbar->findChild<AnnotationToolbar*>();
        palette->colorSwatch()->click();
        QColorDialog* dialog = ColorPickerBridge::shared().dialog();
        QVERIFY(dialog && dialog->isVisible());
        QTRY_COMPARE(QGuiApplication::focusWindow(), dialog->windowHandle());

        dialog->close();
        QTRY_COMPARE(QGuiApplication::focusWindow(), overlay->windowHandle());
        QVERIFY(closesOn(controller, Qt::Key_Escape, QGuiApplication::focusWindow()));
    }

    // Escape at the end: the overlay goes at once and nothing is written.
    void thinSelectionIsNotConfirmed() {
        QPointer<AnnotationOverlayController> controller = openEditor();
        QVERIFY(controller);
        QPointer<QWidget> overlay = controller->overlayWindow();
        dragOn(overlay->windowHandle(), {100, 100}, {110, 300});
        QVERIFY(!overlay->findChild<AnnotationCanvasView*>());  // no canvas, no grips
        QTest::mouseMove(overlay->windowHandle(), {100, 100});
        QCOMPARE(overlay->cursor().shape(), Qt::CrossCursor);

        // A fresh drag over it confirms normally.
        dragOn(overlay->windowHandle(), {100, 100}, {111, 111});
        QVERIFY(overlay->findChild<AnnotationCanvasView*>());

        // Grips reach through the canvas. On so small a selection they overlap
        // and the first in order wins: at the bottom-right corner that is the
        // right edge's grip, and the drag then enforces the minimum height of 20.
        dragOn(overlay->windowHandle(), {111, 111}, {311, 211});
        const int r = int(ratio());
        QCOMPARE(overlay->accessibleDescription(),
                 QString::number(211 * r) + QStringLiteral(" \u00D7 ") + QString::number(20 * r));

        QSignalSpy closed(controller.data(), &AnnotationOverlayController::closed);
        QTest::keyClick(overlay->windowHandle(), Qt::Key_Escape);
        QVERIFY(overlay.isNull() || !overlay->isVisible());
        QTRY_COMPARE_WITH_TIMEOUT(closed.count(), 1, 5000);
        QTRY_VERIFY(controller.isNull());
        QTest::qWait(300);
        QVERIFY(savedFiles().isEmpty());
    }
};

int main(int argc, char** argv) {
    // The shared stores read HOME and the XDG folders on first use: point
    // them at a throw-away folder before anything starts.
    QTemporaryDir home;
    for (const char* name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"}) {
        const QString folder = home.filePath(QString::fromLatin1(name).toLower());
        QDir().mkpath(folder);
        qputenv(name, folder.toUtf8());
    }
    qputenv("HOME", home.path().toUtf8());
    QApplication app(argc, argv);
    g_saveFolder = home.filePath(QStringLiteral("captures/nested"));  // created on save
    Preferences::shared().setCustomSaveFolder(g_saveFolder);
    AnnotationOverlayControllerTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "annotation_overlay_controller_test.moc"
