// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

// The drawing canvas driven with real mouse and key events on a shown widget:
// what each gesture commits, what it drops, Shift constraints in the preview
// and the commit, the text field and where its text lands, undo keys, presses
// left to the parent while drawing is off, and what the canvas paints.

#include "annotation/annotation_canvas_view.h"

#include <QApplication>
#include <QLineEdit>
#include <QRandomGenerator>
#include <QtTest>
#include <memory>

#include "annotation/annotated_image_renderer.h"
#include "annotation/annotation_state.h"
#include "image_statistics.h"

namespace {

QImage noiseImage(int width, int height) {
    QRandomGenerator random(7);
    QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const int v = random.bounded(256);
            image.setPixel(x, y, qRgb(v, v, v));
        }
    }
    return image;
}

// The smallest rectangle holding every pixel that is not (nearly) white.
QRect inkBounds(const QImage& image) {
    QRect ink;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor c = image.pixelColor(x, y);
            if (std::min({c.red(), c.green(), c.blue()}) < 200) {
                ink |= QRect(x, y, 1, 1);
            }
        }
    }
    return ink;
}

bool sameWithinOnePixel(const QRect& a, const QRect& b) {
    return !a.isEmpty() && !b.isEmpty() && qAbs(a.left() - b.left()) <= 1 &&
           qAbs(a.top() - b.top()) <= 1 && qAbs(a.right() - b.right()) <= 1 &&
           qAbs(a.bottom() - b.bottom()) <= 1;
}

QString describe(const QRect& before, const QRect& after) {
    QString text;
    QDebug(&text) << before << "then" << after;
    return text;
}

// Records the presses that reach it.
class PressRecorder : public QWidget {
public:
    int presses = 0;

protected:
    void mousePressEvent(QMouseEvent* event) override {
        ++presses;
        event->accept();
    }
};

}  // namespace

class AnnotationCanvasViewTest : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<AnnotationState> state;
    std::unique_ptr<AnnotationCanvasView> canvas;

    void drag(QPoint from, QPoint to, Qt::KeyboardModifiers releaseModifiers = {}) {
        QTest::mousePress(canvas.get(), Qt::LeftButton, {}, from);
        QTest::mouseMove(canvas.get(), (from + to) / 2);
        QTest::mouseMove(canvas.get(), to);
        QTest::mouseRelease(canvas.get(), Qt::LeftButton, releaseModifiers, to);
    }

    // The canvas as it shows now, over white.
    QImage shown() const {
        QImage image(canvas->size(), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::white);
        canvas->render(&image);
        return image;
    }

    // Where the open field's typed text lies, without the blinking cursor.
    QRect fieldTextInk() const {
        QLineEdit* field = canvas->textField();
        field->setReadOnly(true);  // a read-only field draws no cursor
        const QRect ink = inkBounds(shown());
        field->setReadOnly(false);
        return ink;
    }

    // Opens the text field with a click at `at` and types `text` into it.
    QLineEdit* typeAt(QPoint at, const QString& text) {
        QTest::mouseClick(canvas.get(), Qt::LeftButton, {}, at);
        QLineEdit* field = canvas->textField();
        if (field) {
            QTest::keyClicks(field, text);
        }
        return field;
    }

    bool activate() const {
        canvas->activateWindow();
        return QTest::qWaitForWindowActive(canvas.get());
    }

    template <typename Kind>
    const Kind* lastAs() const {
        if (state->annotations().isEmpty()) {
            return nullptr;
        }
        return std::get_if<Kind>(&state->annotations().last().kind);
    }

private Q_SLOTS:
    void init() {
        state = std::make_unique<AnnotationState>();
        canvas = std::make_unique<AnnotationCanvasView>(*state, noiseImage(400, 300));
        canvas->resize(400, 300);
        canvas->show();
        QVERIFY(QTest::qWaitForWindowExposed(canvas.get()));
    }

    void cleanup() {
        canvas.reset();
        state.reset();
    }

    void publishesItsSizeAndIgnoresTheMouseUntilAToolIsSelected() {
        QCOMPARE(state->canvasSize(), QSizeF(400, 300));
        QCOMPARE(canvas->accessibleName(), QStringLiteral("Annotation canvas"));
        drag({10, 10}, {100, 100});
        QVERIFY(state->annotations().isEmpty());
        state->selectTool(AnnotationTool::rectangle);
        state->reset();  // drawing goes off again
        drag({10, 10}, {100, 100});
        QVERIFY(state->annotations().isEmpty());
    }

    void pressesReachTheParentWhileDrawingIsOff() {
        PressRecorder host;
        host.resize(400, 300);
        AnnotationCanvasView child(*state, noiseImage(400, 300), &host);
        child.setGeometry(host.rect());
        host.show();
        QVERIFY(QTest::qWaitForWindowExposed(&host));

        QTest::mouseClick(&child, Qt::LeftButton, {}, QPoint(40, 40));
        QCOMPARE(host.presses, 1);

        state->selectTool(AnnotationTool::rectangle);
        QTest::mousePress(&child, Qt::LeftButton, {}, QPoint(40, 40));
        QTest::mouseMove(&child, QPoint(90, 90));
        QTest::mouseRelease(&child, Qt::LeftButton, {}, QPoint(90, 90));
        QCOMPARE(host.presses, 1);  // the canvas keeps what it draws with
        QCOMPARE(state->annotations().size(), 1);
    }

    // What each tool makes of a drag is ToolGestureTest's; here, that the
    // canvas hands it every point, the current colour and the modifiers at
    // the release, and files a crop as the document's crop.
    void dragsCommitTheToolsShapeInTheCurrentColour() {
        state->selectTool(AnnotationTool::pencil);
        drag({10, 10}, {50, 30});
        auto* pencil = lastAs<Annotation::Stroke>();
        QVERIFY(pencil);
        QCOMPARE(pencil->points.size(), 4);
        QCOMPARE(pencil->points.first(), QPointF(10, 10));
        QCOMPARE(pencil->points.last(), QPointF(50, 30));
        QCOMPARE(pencil->color, AnnotationState::kInitialColor);

        state->selectTool(AnnotationTool::highlighter);
        state->setCurrentColor(Qt::yellow);
        QTest::mouseClick(canvas.get(), Qt::LeftButton, {}, QPoint(70, 70));
        auto* highlight = lastAs<Annotation::Stroke>();
        QVERIFY(highlight);
        QCOMPARE(highlight->points, (QVector<QPointF>{{70, 70}, {70, 70}}));
        QCOMPARE(highlight->color, QColor(Qt::yellow));

        state->selectTool(AnnotationTool::rectangle);
        drag({10, 10}, {12, 60});  // too thin: nothing
        QCOMPARE(state->annotations().size(), 2);
        drag({200, 200}, {150, 120}, Qt::ShiftModifier);
        auto* square = lastAs<Annotation::Rectangle>();
        QVERIFY(square);
        QCOMPARE(square->rect, QRectF(150, 120, 50, 50));

        state->selectTool(AnnotationTool::crop);
        drag({20, 20}, {220, 120});
        QCOMPARE(state->cropRect(), std::optional<QRectF>(QRectF(20, 20, 200, 100)));
        QCOMPARE(state->annotations().size(), 3);  // the crop is the document's, not a shape
    }

    void shiftPreviewShowsWhatTheReleaseCommits_data() {
        QTest::addColumn<AnnotationTool>("tool");
        QTest::addRow("arrow") << AnnotationTool::arrow;
        QTest::addRow("rectangle") << AnnotationTool::rectangle;
    }

    void shiftPreviewShowsWhatTheReleaseCommits() {
        QFETCH(AnnotationTool, tool);
        state->selectTool(tool);
        const QPoint from(100, 100);
        const QPoint to(220, 150);
        QTest::mousePress(canvas.get(), Qt::LeftButton, {}, from);
        QTest::mouseMove(canvas.get(), to);
        const QImage free = shown();

        // Shift pressed during the drag: the preview snaps at once.
        QTest::keyPress(canvas.get(), Qt::Key_Shift, Qt::ShiftModifier);
        const QImage snapped = shown();
        QVERIFY(snapped != free);

        // Released again: back to following the pointer.
        QTest::keyRelease(canvas.get(), Qt::Key_Shift, {});
        QCOMPARE(shown(), free);

        QTest::keyPress(canvas.get(), Qt::Key_Shift, Qt::ShiftModifier);
        QTest::mouseRelease(canvas.get(), Qt::LeftButton, Qt::ShiftModifier, to);
        QCOMPARE(state->annotations().size(), 1);
        QCOMPARE(shown(), snapped);  // the committed shape is the one previewed
    }

    void previewOfATooSmallShapeShowsNothing() {
        state->selectTool(AnnotationTool::rectangle);
        const QImage empty = shown();
        QTest::mousePress(canvas.get(), Qt::LeftButton, {}, QPoint(10, 10));
        QTest::mouseMove(canvas.get(), QPoint(12, 80));
        QCOMPARE(shown(), empty);
        QTest::mouseMove(canvas.get(), QPoint(40, 80));
        QVERIFY(shown() != empty);
        QTest::mouseRelease(canvas.get(), Qt::LeftButton, {}, QPoint(40, 80));
    }

    void undoKeysTakeBackActionsInOrderCropsIncluded() {
        state->selectTool(AnnotationTool::rectangle);
        drag({10, 10}, {50, 50});
        drag({60, 60}, {90, 90});
        state->selectTool(AnnotationTool::crop);
        drag({0, 0}, {100, 100});
        QVERIFY(state->cropRect());

        QTest::keyClick(canvas.get(), Qt::Key_Z, Qt::ControlModifier);
        QVERIFY(!state->cropRect());  // the newest action goes first
        QCOMPARE(state->annotations().size(), 2);
        QTest::keyClick(canvas.get(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(state->annotations().size(), 2);  // no redo key, and it is not undo either
        QTest::keyClick(canvas.get(), Qt::Key_Z, Qt::MetaModifier);
        QCOMPARE(state->annotations().size(), 1);
        QTest::keyClick(canvas.get(), Qt::Key_Z, Qt::ControlModifier);
        QVERIFY(state->annotations().isEmpty());
    }

    void textFieldCommitsTrimmedTextOnReturnAndDropsBlankOrEscapedText() {
        state->selectTool(AnnotationTool::text);
        QTest::mouseClick(canvas.get(), Qt::LeftButton, {}, QPoint(50, 60));
        QLineEdit* field = canvas->textField();
        QVERIFY(field);
        QVERIFY(field->geometry().contains(QPoint(50, 60)));
        QCOMPARE(field->placeholderText(), QStringLiteral("Type here…"));
        QVERIFY(!field->accessibleName().isEmpty());
        QVERIFY(state->annotations().isEmpty());
        QTest::keyClicks(field, QStringLiteral("  hello  "));
        QTest::keyClick(field, Qt::Key_Return);
        QVERIFY(!canvas->textField());
        auto* text = lastAs<Annotation::Text>();
        QVERIFY(text);
        QCOMPARE(text->text, QStringLiteral("hello"));
        QCOMPARE(text->origin, QPointF(50, 60));  // the text starts where it was placed
        QCOMPARE(text->color, AnnotationState::kInitialColor);
        QCOMPARE(text->font.pixelSize(), 16);

        // Blank text and escaped text leave nothing.
        QTest::keyClick(typeAt({50, 60}, QStringLiteral("   ")), Qt::Key_Return);
        QVERIFY(!canvas->textField());
        QTest::keyClick(typeAt({50, 60}, QStringLiteral("gone")), Qt::Key_Escape);
        QVERIFY(!canvas->textField());
        QCOMPARE(state->annotations().size(), 1);
    }

    void pressElsewhereEndsTheTextField() {
        state->selectTool(AnnotationTool::text);
        QVERIFY(typeAt({50, 60}, QStringLiteral(" first ")));
        QTest::mouseClick(canvas.get(), Qt::LeftButton, {}, QPoint(150, 160));
        QVERIFY(!canvas->textField());  // the press only ended the text
        auto* first = lastAs<Annotation::Text>();
        QVERIFY(first);
        QCOMPARE(first->text, QStringLiteral("first"));

        // An empty field closes the same way, leaving nothing behind.
        QTest::mouseClick(canvas.get(), Qt::LeftButton, {}, QPoint(150, 160));
        QVERIFY(canvas->textField());
        QTest::mouseClick(canvas.get(), Qt::LeftButton, {}, QPoint(250, 200));
        QVERIFY(!canvas->textField());
        QCOMPARE(state->annotations().size(), 1);

        // Picking another tool ends the text too.
        QVERIFY(typeAt({150, 160}, QStringLiteral("second")));
        state->selectTool(AnnotationTool::rectangle);
        QVERIFY(!canvas->textField());
        QCOMPARE(state->annotations().size(), 2);
        auto* second = lastAs<Annotation::Text>();
        QVERIFY(second);
        QCOMPARE(second->text, QStringLiteral("second"));
    }

    void emptyTextFieldClosesWhenFocusLeaves() {
        QVERIFY(activate());
        auto* other = new QLineEdit(canvas.get());
        other->setAccessibleName(QStringLiteral("Other field"));
        other->setGeometry(300, 250, 80, 24);
        other->show();
        state->selectTool(AnnotationTool::text);
        QTest::mouseClick(canvas.get(), Qt::LeftButton, {}, QPoint(50, 60));
        QVERIFY(canvas->textField());
        QTRY_VERIFY(canvas->textField()->hasFocus());

        other->setFocus(Qt::TabFocusReason);
        QVERIFY(!canvas->textField());
        QVERIFY(state->annotations().isEmpty());

        // Text that was typed is kept when focus leaves.
        QTest::mouseClick(canvas.get(), Qt::LeftButton, {}, QPoint(50, 60));
        QTRY_VERIFY(canvas->textField() && canvas->textField()->hasFocus());
        QTest::keyClicks(canvas->textField(), QStringLiteral("kept"));
        other->setFocus(Qt::TabFocusReason);
        QVERIFY(!canvas->textField());
        QVERIFY(lastAs<Annotation::Text>());
    }

    void undoKeyReachesTheCanvasAfterTextIsConfirmed() {
        QVERIFY(activate());
        state->selectTool(AnnotationTool::text);
        QTest::mouseClick(canvas.get(), Qt::LeftButton, {}, QPoint(50, 60));
        QTRY_VERIFY(canvas->textField() && canvas->textField()->hasFocus());
        QTest::keyClicks(canvas->textField(), QStringLiteral("oops"));
        QTest::keyClick(canvas->textField(), Qt::Key_Return);
        QCOMPARE(state->annotations().size(), 1);
        QWidget* focused = QApplication::focusWidget();
        QVERIFY(focused);
        QTest::keyClick(focused, Qt::Key_Z, Qt::ControlModifier);
        QVERIFY(state->annotations().isEmpty());
    }

    void commitOpenTextKeepsTypedTextAndClosesTheField() {
        QVERIFY(!canvas->commitOpenText());  // no field: nothing to do
        state->selectTool(AnnotationTool::text);
        QVERIFY(typeAt({80, 90}, QStringLiteral(" unsaved note ")));
        QVERIFY(canvas->commitOpenText());
        QVERIFY(!canvas->textField());
        auto* text = lastAs<Annotation::Text>();
        QVERIFY(text);
        QCOMPARE(text->text, QStringLiteral("unsaved note"));
        QCOMPARE(text->origin, QPointF(80, 90));

        QVERIFY(typeAt({80, 150}, QStringLiteral("  ")));
        QVERIFY(!canvas->commitOpenText());
        QVERIFY(!canvas->textField());
        QCOMPARE(state->annotations().size(), 1);
        QVERIFY(!canvas->commitOpenText());
    }

    void textStaysPutWhenConfirmedAndInTheSavedImage() {
        state->selectTool(AnnotationTool::text);
        QVERIFY(typeAt({60, 3}, QStringLiteral("Typed Hjg")));  // near the top
        const QRect typed = fieldTextInk();
        QVERIFY(!typed.isEmpty());
        QTest::keyClick(canvas->textField(), Qt::Key_Return);
        QVERIFY(!canvas->textField());
        const QRect confirmed = inkBounds(shown());
        QVERIFY2(sameWithinOnePixel(typed, confirmed), qPrintable(describe(typed, confirmed)));

        QImage white(canvas->size(), QImage::Format_ARGB32_Premultiplied);
        white.fill(Qt::white);
        const QImage saved = renderAnnotatedImage(white, state->annotations(), std::nullopt);
        const QRect inSaved = inkBounds(saved);
        QVERIFY2(sameWithinOnePixel(confirmed, inSaved), qPrintable(describe(confirmed, inSaved)));
    }

    void passthroughLeavesPressesToTheHost() {
        state->selectTool(AnnotationTool::rectangle);
        canvas->setHitTestPassthrough([](const QPointF& p) { return p.x() < 20; });
        drag({10, 10}, {100, 100});
        QVERIFY(state->annotations().isEmpty());
        drag({30, 10}, {100, 100});
        QCOMPARE(state->annotations().size(), 1);
    }

    void paintsFilteredRegionsAndTheCropSurround() {
        state->add({Annotation::Blur{QRectF(100, 100, 100, 80)}});
        state->add({Annotation::Crop{QRectF(50, 50, 300, 200)}});
        const QImage painted = shown();
        const QImage& source = canvas->sourceImage();
        const QRect inner(110, 110, 80, 60);
        QVERIFY(greyVariance(painted, inner) < greyVariance(source, inner) / 20);
        QCOMPARE(painted.pixelColor(300, 150), QColor(Qt::white));  // inside the crop, no shape
        // Outside the crop: white dimmed by black at 0.4.
        QVERIFY(qAbs(painted.pixelColor(10, 10).red() - 153) <= 2);
        QVERIFY(qAbs(painted.pixelColor(380, 150).red() - 153) <= 2);
    }

    void newSourceImageRefiltersRegions() {
        state->add({Annotation::Pixelate{QRectF(100, 100, 60, 60)}});
        shown();  // filters the region over the first source
        QImage red(800, 600, QImage::Format_ARGB32_Premultiplied);  // twice the canvas size
        red.fill(Qt::red);
        canvas->setSourceImage(red);
        const QImage second = shown();
        QCOMPARE(second.pixelColor(130, 130), QColor(Qt::red));
        QCOMPARE(second.pixelColor(90, 130), QColor(Qt::white));
    }
};

QTEST_MAIN(AnnotationCanvasViewTest)
#include "annotation_canvas_view_test.moc"
