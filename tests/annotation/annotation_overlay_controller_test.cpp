// The area editor on the real X server: a full-screen window paints a known
// pattern, the editor freezes it, QTest drags out selections on the overlay
// window, and the PNG files that land in a custom save folder are checked
// pixel by pixel. Also run with QT_SCALE_FACTOR=2.

#include "annotation/annotation_overlay_controller.h"

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
#include "storage/user_defaults.h"

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

}  // namespace

class AnnotationOverlayControllerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanupTestCase();
    void returnSavesTheSelectionWithTheScreensPixels();
    void annotationsAreBurntIntoTheCut();
    void returnInTheTextFieldOnlyEndsTheText();
    void escapeWritesNothing();
    void thinSelectionIsNotConfirmed();

private:
    QPointer<AnnotationOverlayController> openEditor();
    void dragOn(QWindow* window, QPoint from, QPoint to);
    QStringList savedFiles() const;
    qreal ratio() const { return QGuiApplication::primaryScreen()->devicePixelRatio(); }

    PatternWindow* pattern_ = nullptr;
};

void AnnotationOverlayControllerTest::initTestCase() {
    pattern_ = new PatternWindow;
    pattern_->show();
    QVERIFY(QTest::qWaitForWindowExposed(pattern_));
    QTest::qWait(300);  // let the server settle the first frame
    AnnotationOverlayController::warmUp();
}

void AnnotationOverlayControllerTest::init() {
    for (const QString& name : savedFiles()) {
        QFile::remove(QDir(g_saveFolder).filePath(name));
    }
}

void AnnotationOverlayControllerTest::cleanupTestCase() {
    delete pattern_;
}

QPointer<AnnotationOverlayController> AnnotationOverlayControllerTest::openEditor() {
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

void AnnotationOverlayControllerTest::dragOn(QWindow* window, QPoint from, QPoint to) {
    QTest::mousePress(window, Qt::LeftButton, {}, from);
    QTest::mouseMove(window, (from + to) / 2);
    QTest::mouseMove(window, to);
    QTest::mouseRelease(window, Qt::LeftButton, {}, to);
}

QStringList AnnotationOverlayControllerTest::savedFiles() const {
    return QDir(g_saveFolder).entryList({QStringLiteral("*.png")}, QDir::Files);
}

void AnnotationOverlayControllerTest::returnSavesTheSelectionWithTheScreensPixels() {
    QPointer<AnnotationOverlayController> controller = openEditor();
    QVERIFY(controller);
    QPointer<QWidget> overlay = controller->overlayWindow();
    QCOMPARE(overlay->accessibleName(), QStringLiteral("Area selection"));
    QCOMPARE(overlay->geometry(), QGuiApplication::primaryScreen()->geometry());

    dragOn(overlay->windowHandle(), {200, 150}, {500, 350});
    const auto pixels = [this](int points) { return QString::number(int(points * ratio())); };
    QCOMPARE(overlay->accessibleDescription(),
             pixels(300) + QStringLiteral(" \u00D7 ") + pixels(200));

    // Confirmed: the canvas covers the overlay, its grips show their cursors,
    // and the toolbar sits 8 below the selection.
    auto* canvas = overlay->findChild<AnnotationCanvasView*>();
    QVERIFY(canvas);
    QTest::mouseMove(overlay->windowHandle(), {200, 150});
    QCOMPARE(canvas->cursor().shape(), Qt::ArrowCursor);
    QTest::mouseMove(overlay->windowHandle(), {350, 150});
    QCOMPARE(canvas->cursor().shape(), Qt::SizeVerCursor);
    QPointer<QWidget> toolbar;
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->accessibleName() == QStringLiteral("Annotation toolbar") &&
            window->isVisible()) {
            toolbar = window;
        }
    }
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
    QVERIFY(
        QRegularExpression(QStringLiteral(R"(^Screenshot_\d{4}-\d\d-\d\dT\d\d-\d\d-\d\dZ\.png$)"))
            .match(files.first())
            .hasMatch());
    const QImage saved(QDir(g_saveFolder).filePath(files.first()));
    QCOMPARE(saved.size(), QSize(300, 200));  // points, whatever the pixel ratio

    // Every pixel is the screen's (averaged over 2 × 2 on a doubled screen).
    const int r = int(ratio());
    int off = 0;
    for (int y = 0; y < saved.height(); ++y) {
        for (int x = 0; x < saved.width(); ++x) {
            const QRgb expected = patternAt((200 + x) * r, (150 + y) * r);
            const QRgb got = saved.pixel(x, y);
            const int distance = std::abs(qRed(got) - qRed(expected)) +
                                 std::abs(qGreen(got) - qGreen(expected)) +
                                 std::abs(qBlue(got) - qBlue(expected));
            off += distance > (r == 1 ? 0 : 4);
        }
    }
    if (r == 1) {
        QCOMPARE(off, 0);
    } else {
        QVERIFY2(off < saved.width() * saved.height() / 20, qPrintable(QString::number(off)));
    }
}

void AnnotationOverlayControllerTest::annotationsAreBurntIntoTheCut() {
    QPointer<AnnotationOverlayController> controller = openEditor();
    QVERIFY(controller);
    QWindow* window = controller->overlayWindow()->windowHandle();
    dragOn(window, {200, 150}, {500, 350});
    controller->annotationState().selectTool(AnnotationTool::rectangle);
    // Starts inside the selection and ends outside: cut at the border.
    dragOn(window, {250, 200}, {600, 260});
    QCOMPARE(controller->annotationState().annotations().size(), 1);

    QSignalSpy closed(controller.data(), &AnnotationOverlayController::closed);
    QTest::keyClick(controller->overlayWindow()->windowHandle(), Qt::Key_Return);
    QTRY_COMPARE_WITH_TIMEOUT(closed.count(), 1, 5000);
    QCOMPARE(savedFiles().size(), 1);
    const QImage saved(QDir(g_saveFolder).filePath(savedFiles().first()));
    QCOMPARE(saved.size(), QSize(300, 200));
    const auto isRed = [](QRgb c) { return qRed(c) > 200 && qGreen(c) < 130 && qBlue(c) < 130; };
    QVERIFY(isRed(saved.pixel(50, 80)));    // left edge of the rectangle
    QVERIFY(isRed(saved.pixel(200, 50)));   // top edge, right of the start
    QVERIFY(!isRed(saved.pixel(150, 80)));  // inside stays the screen's
}

void AnnotationOverlayControllerTest::returnInTheTextFieldOnlyEndsTheText() {
    QPointer<AnnotationOverlayController> controller = openEditor();
    QVERIFY(controller);
    QPointer<QWidget> overlay = controller->overlayWindow();
    dragOn(overlay->windowHandle(), {200, 150}, {500, 350});
    controller->annotationState().selectTool(AnnotationTool::text);
    QTest::mouseClick(overlay->windowHandle(), Qt::LeftButton, {}, {250, 200});
    auto* canvas = overlay->findChild<AnnotationCanvasView*>();
    QVERIFY(canvas && canvas->textField());
    QTest::keyClicks(canvas->textField(), QStringLiteral("hi"));
    QTest::keyClick(canvas->textField(), Qt::Key_Return);
    QCOMPARE(controller->annotationState().annotations().size(), 1);
    QTest::qWait(200);
    QVERIFY(controller && overlay->isVisible());
    QVERIFY(savedFiles().isEmpty());

    QSignalSpy closed(controller.data(), &AnnotationOverlayController::closed);
    QTest::keyClick(overlay->windowHandle(), Qt::Key_Escape);
    QTRY_COMPARE_WITH_TIMEOUT(closed.count(), 1, 5000);
}

void AnnotationOverlayControllerTest::escapeWritesNothing() {
    QPointer<AnnotationOverlayController> controller = openEditor();
    QVERIFY(controller);
    QPointer<QWidget> overlay = controller->overlayWindow();
    dragOn(overlay->windowHandle(), {100, 100}, {400, 300});
    QSignalSpy closed(controller.data(), &AnnotationOverlayController::closed);
    QTest::keyClick(overlay->windowHandle(), Qt::Key_Escape);
    QVERIFY(overlay.isNull() || !overlay->isVisible());
    QTRY_COMPARE_WITH_TIMEOUT(closed.count(), 1, 5000);
    QTRY_VERIFY(controller.isNull());
    QTest::qWait(300);
    QVERIFY(savedFiles().isEmpty());
}

void AnnotationOverlayControllerTest::thinSelectionIsNotConfirmed() {
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
    QTRY_COMPARE_WITH_TIMEOUT(closed.count(), 1, 5000);
    QVERIFY(savedFiles().isEmpty());
}

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
    UserDefaults::shared().setCustomSaveFolder(g_saveFolder);
    AnnotationOverlayControllerTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "annotation_overlay_controller_test.moc"
