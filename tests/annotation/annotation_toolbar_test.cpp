// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "annotation/annotation_toolbar.h"

#include <QImage>
#include <QSignalSpy>
#include <QtTest>
#include <cstdlib>

#include "annotation/annotation_sidebar.h"
#include "widgets/symbol_icon.h"

namespace {

const QStringList kToolLabels{"Pencil", "Arrow",    "Rectangle", "Text",
                              "Blur",   "Pixelate", "Crop",      "Highlight"};
const QStringList kToolTips{"Pencil (P)", "Arrow (A)",    "Rectangle (R)", "Text (T)",
                            "Blur (B)",   "Pixelate (X)", "Crop (C)",      "Highlight (H)"};

Annotation someRectangle() {
    return Annotation{Annotation::Rectangle{QRectF(1, 2, 30, 40), Qt::red}};
}

// One text of each button, in the order a screen reader meets them.
QStringList inLayoutOrder(QWidget& palette, QString (QWidget::*text)() const) {
    QStringList texts;
    for (QAbstractButton* button : palette.findChildren<QAbstractButton*>()) {
        texts << (button->*text)();
    }
    return texts;
}

// The tools a palette shows as picked.
template <typename Palette>
QList<AnnotationTool> activeTools(Palette& palette) {
    QList<AnnotationTool> active;
    for (const AnnotationTool tool : kAllAnnotationTools) {
        if (palette.toolButton(tool)->isActive()) {
            active << tool;
        }
    }
    return active;
}
using Tools = QList<AnnotationTool>;

// How many of a widget's drawn pixels are close to `color`, and how many are
// drawn at all.
struct InkCount {
    int drawn = 0;
    int matching = 0;
};

InkCount inkOf(QWidget& widget, const QColor& color) {
    // Rendered without the window's background, so only the widget's own ink
    // shows.
    QImage image(widget.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    widget.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    image = image.convertToFormat(QImage::Format_ARGB32);
    InkCount count;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor pixel = image.pixelColor(x, y);
            if (pixel.alpha() < 64) {
                continue;
            }
            ++count.drawn;
            const int distance = std::abs(pixel.red() - color.red()) +
                                 std::abs(pixel.green() - color.green()) +
                                 std::abs(pixel.blue() - color.blue());
            if (distance < 90) {
                ++count.matching;
            }
        }
    }
    return count;
}

}  // namespace

class AnnotationToolbarTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // Names are the plain labels; tooltips add the key that does the same,
    // as Linux keyboards spell it; the sidebar's keys and swatch differ.
    void palettesShowToolsSwatchUndoAndSaveInOrderWithTheirTooltips() {
        AnnotationState state;
        AnnotationSidebar sidebar(&state);
        QCOMPARE(inLayoutOrder(sidebar, &QWidget::accessibleName),
                 (kToolLabels + QStringList{"Stroke color", "Undo", "Save"}));
        QCOMPARE(inLayoutOrder(sidebar, &QWidget::toolTip),
                 (kToolTips + QStringList{"Stroke color", "Undo (Ctrl+Z)", "Save (Ctrl+S)"}));
        QCOMPARE(sidebar.width(), 44);

        AnnotationToolbar toolbar(&state);
        QCOMPARE(inLayoutOrder(toolbar, &QWidget::accessibleName),
                 (kToolLabels + QStringList{"Color", "Undo", "Save"}));
        QCOMPARE(inLayoutOrder(toolbar, &QWidget::toolTip),
                 (kToolTips + QStringList{"Color", "Undo (Ctrl+Z)", "Save (Return)"}));
        // Left to right on screen as well.
        toolbar.show();
        QVERIFY(QTest::qWaitForWindowExposed(&toolbar));
        int previousRight = -1;
        for (QAbstractButton* button : toolbar.findChildren<QAbstractButton*>()) {
            QVERIFY2(button->x() > previousRight, qPrintable(button->accessibleName()));
            previousRight = button->geometry().right();
        }
    }

    // In either palette; after a reset the pencil is the active tool with
    // drawing off, and pressing it must switch drawing on, not toggle it off.
    void clickingEachToolSelectsItAndSwitchesDrawingOn() {
        AnnotationState state;
        AnnotationToolbar toolbar(&state);
        AnnotationSidebar sidebar(&state);
        toolbar.show();
        sidebar.show();
        QVERIFY(QTest::qWaitForWindowExposed(&toolbar) && QTest::qWaitForWindowExposed(&sidebar));
        for (const AnnotationTool tool : kAllAnnotationTools) {
            for (PaletteToolButton* button : {toolbar.toolButton(tool), sidebar.toolButton(tool)}) {
                state.reset();
                QVERIFY(!state.isDrawingEnabled());
                QVERIFY(!button->isActive() && !button->isChecked());
                QTest::mouseClick(button, Qt::LeftButton);
                QCOMPARE(state.activeTool(), tool);
                QVERIFY(state.isDrawingEnabled());
                QVERIFY(button->isActive() && button->isChecked());
            }
        }
    }

    // The highlighted tool is the one a drag draws with, so none is
    // highlighted until drawing is switched on by picking one. The swatches
    // show the current colour.
    void highlightAndSwatchFollowTheState() {
        AnnotationState state;
        AnnotationToolbar toolbar(&state);
        AnnotationSidebar sidebar(&state);
        QCOMPARE(toolbar.colorSwatch()->color(), AnnotationState::kInitialColor);
        state.setCurrentColor(QColor(10, 200, 30));
        QCOMPARE(toolbar.colorSwatch()->color(), QColor(10, 200, 30));
        QCOMPARE(sidebar.colorSwatch()->color(), QColor(10, 200, 30));
        QCOMPARE(activeTools(toolbar), Tools{});
        QCOMPARE(activeTools(sidebar), Tools{});
        state.selectTool(AnnotationTool::highlighter);
        QCOMPARE(activeTools(toolbar), Tools{AnnotationTool::highlighter});
        QCOMPARE(activeTools(sidebar), Tools{AnnotationTool::highlighter});
        // A click in one palette shows in the other.
        QTest::mouseClick(toolbar.toolButton(AnnotationTool::crop), Qt::LeftButton);
        QCOMPARE(activeTools(sidebar), Tools{AnnotationTool::crop});
        state.reset();
        QCOMPARE(activeTools(toolbar), Tools{});
        QCOMPARE(activeTools(sidebar), Tools{});
        QVERIFY(!toolbar.undoButton()->isChecked());
        // Picking the tool that was active before the reset shows it again.
        state.selectTool(AnnotationTool::pencil);
        QCOMPARE(activeTools(toolbar), Tools{AnnotationTool::pencil});
        QCOMPARE(activeTools(sidebar), Tools{AnnotationTool::pencil});
    }

    void undoAndSaveReachTheirTargets() {
        AnnotationState state;
        state.add(someRectangle());
        state.add(someRectangle());
        AnnotationToolbar toolbar(&state);
        // The toolbar's undo is the host's; the editor binds it to the document.
        connect(&toolbar, &AnnotationToolbar::undoRequested, &state, &AnnotationState::undo);
        QSignalSpy saves(&toolbar, &AnnotationToolbar::saveRequested);
        QTest::mouseClick(toolbar.undoButton(), Qt::LeftButton);
        QCOMPARE(state.annotations().size(), 1);
        QTest::mouseClick(toolbar.saveButton(), Qt::LeftButton);
        QCOMPARE(saves.count(), 1);
        QCOMPARE(state.annotations().size(), 1);

        // The sidebar undoes on the document directly, newest step first.
        AnnotationSidebar sidebar(&state);
        state.add(Annotation{Annotation::Crop{QRectF(0, 0, 5, 5)}});
        QTest::mouseClick(sidebar.undoButton(), Qt::LeftButton);
        QVERIFY(!state.cropRect().has_value());
        QCOMPARE(state.annotations().size(), 1);
        QTest::mouseClick(sidebar.undoButton(), Qt::LeftButton);
        QCOMPARE(state.annotations().size(), 0);
        QSignalSpy sidebarSaves(&sidebar, &AnnotationSidebar::saveRequested);
        QTest::mouseClick(sidebar.saveButton(), Qt::LeftButton);
        QCOMPARE(sidebarSaves.count(), 1);
    }

    void paletteOutlivingItsStateStaysQuiet() {
        auto* state = new AnnotationState;
        AnnotationSidebar sidebar(state);
        delete state;
        QTest::mouseClick(sidebar.toolButton(AnnotationTool::arrow), Qt::LeftButton);
        QTest::mouseClick(sidebar.undoButton(), Qt::LeftButton);
        QTest::mouseClick(sidebar.colorSwatch(), Qt::LeftButton);
        QVERIFY(sidebar.state() == nullptr);
    }

    // The sidebar draws in the window's text colour, so a theme change must
    // reach every symbol button it shows, save included.
    void sidebarRetintsItsButtonsWhenTheThemeChanges() {
        AnnotationState state;
        state.selectTool(AnnotationTool::arrow);
        AnnotationSidebar sidebar(&state);
        const QColor red(220, 20, 20);
        QPalette themed = sidebar.palette();
        themed.setColor(QPalette::WindowText, red);
        sidebar.setPalette(themed);
        const QList<QWidget*> buttons{sidebar.toolButton(AnnotationTool::arrow),
                                      sidebar.toolButton(AnnotationTool::text),
                                      sidebar.undoButton(), sidebar.saveButton()};
        for (QWidget* button : buttons) {
            const InkCount ink = inkOf(*button, red);
            QVERIFY2(ink.drawn > 20, qPrintable(button->accessibleName()));
            QVERIFY2(ink.matching * 10 > ink.drawn * 9, qPrintable(button->accessibleName()));
        }
    }

    // The toolbar sets its swatch, undo and save apart from the tools; the
    // sidebar stacks them evenly, centred across its width.
    void toolbarSpacesItsGroupsAndSidebarCentresItsColumn() {
        AnnotationState state;
        AnnotationToolbar toolbar(&state);
        toolbar.show();
        QVERIFY(QTest::qWaitForWindowExposed(&toolbar));
        const auto gapAfter = [](QWidget* left, QWidget* right) {
            return right->x() - left->geometry().right();
        };
        const int toolGap = gapAfter(toolbar.toolButton(AnnotationTool::pencil),
                                     toolbar.toolButton(AnnotationTool::arrow));
        QVERIFY(gapAfter(toolbar.toolButton(AnnotationTool::highlighter), toolbar.colorSwatch()) >
                toolGap);
        QVERIFY(gapAfter(toolbar.colorSwatch(), toolbar.undoButton()) > toolGap);
        QVERIFY(gapAfter(toolbar.undoButton(), toolbar.saveButton()) > toolGap);

        AnnotationSidebar sidebar(&state);
        sidebar.resize(AnnotationSidebar::kWidth, 600);
        sidebar.show();
        QVERIFY(QTest::qWaitForWindowExposed(&sidebar));
        const auto gapBelow = [](QWidget* above, QWidget* below) {
            return below->y() - above->geometry().bottom();
        };
        const int rowGap = gapBelow(sidebar.toolButton(AnnotationTool::pencil),
                                    sidebar.toolButton(AnnotationTool::arrow));
        QCOMPARE(gapBelow(sidebar.toolButton(AnnotationTool::highlighter), sidebar.colorSwatch()),
                 rowGap);
        QCOMPARE(gapBelow(sidebar.undoButton(), sidebar.saveButton()), rowGap);
        for (QAbstractButton* button : sidebar.findChildren<QAbstractButton*>()) {
            const int centre = button->x() + button->width() / 2;
            QVERIFY2(std::abs(centre - sidebar.width() / 2) <= 1,
                     qPrintable(button->accessibleName()));
        }
    }

    void everySymbolIsDrawnAndTinted() {
        QStringList names{"arrow.uturn.backward", "checkmark"};
        for (const AnnotationTool tool : kAllAnnotationTools) {
            names << paletteIconName(tool);
        }
        for (const QString& name : names) {
            const QImage image =
                symbolPixmap(name, QColor(0, 0, 255), QSize(24, 24), 2.0).toImage();
            QCOMPARE(image.size(), QSize(48, 48));
            int drawn = 0;
            for (int y = 0; y < image.height(); ++y) {
                for (int x = 0; x < image.width(); ++x) {
                    const QColor pixel = image.pixelColor(x, y);
                    if (pixel.alpha() == 255) {
                        ++drawn;
                        QCOMPARE(pixel.rgb(), QColor(0, 0, 255).rgb());
                    }
                }
            }
            QVERIFY2(drawn > 40, qPrintable(name));
        }
        // An unknown symbol is blank, not an error.
        const QImage blank = symbolPixmap("no.such.symbol", Qt::red, QSize(8, 8)).toImage();
        QCOMPARE(blank.pixelColor(4, 4).alpha(), 0);
    }

    void panelIsAtLeast400WideAndTwoTallerThanTheRow() {
        QCOMPARE(AnnotationToolbar::panelSize(QSize(300, 42)), QSize(400, 44));
        QCOMPARE(AnnotationToolbar::panelSize(QSize(520, 42)), QSize(520, 44));
    }

    // Under the selection when there is room (exactly fitting counts), else
    // over it; right-aligned near the right edge; never closer than 8 to the
    // left edge; in global coordinates of a second screen.
    void placementKeepsThePanelBesideTheSelectionOnScreen_data() {
        QTest::addColumn<QRectF>("selection");
        QTest::addColumn<QRect>("screen");
        QTest::addColumn<QRect>("visible");
        QTest::addColumn<QPoint>("expected");
        const QRect full(0, 0, 1920, 1080);
        const QRect second(1920, 120, 1280, 1024);
        const QRect narrow(0, 0, 500, 400);
        QTest::newRow("below") << QRectF(100, 200, 300, 150) << full << full << QPoint(100, 358);
        QTest::newRow("just fits below")
            << QRectF(100, 200, 300, 1080 - 44 - 8 - 200) << full << full << QPoint(100, 1036);
        QTest::newRow("above") << QRectF(100, 500, 300, 580) << full << full << QPoint(100, 448);
        // A panel at the bottom of the screen (outside the visible area) counts.
        QTest::newRow("above a bottom panel")
            << QRectF(100, 200, 300, 800) << full << QRect(0, 0, 1920, 1040) << QPoint(100, 148);
        QTest::newRow("right edge")
            << QRectF(1700, 100, 200, 100) << full << full << QPoint(1900 - 460, 208);
        QTest::newRow("left edge") << QRectF(0, 100, 200, 100) << full << full << QPoint(8, 208);
        QTest::newRow("narrow screen")
            << QRectF(100, 10, 300, 50) << narrow << narrow << QPoint(8, 68);
        QTest::newRow("second screen")
            << QRectF(0, 0, 300, 200) << second << second << QPoint(1920 + 8, 120 + 208);
        QTest::newRow("second screen, above") << QRectF(1000, 900, 200, 124) << second << second
                                              << QPoint(1920 + 1200 - 460, 120 + 900 - 52);
    }
    void placementKeepsThePanelBesideTheSelectionOnScreen() {
        QFETCH(QRectF, selection);
        QFETCH(QRect, screen);
        QFETCH(QRect, visible);
        QFETCH(QPoint, expected);
        QCOMPARE(AnnotationToolbar::placement(selection, screen, visible, QSize(460, 44)),
                 expected);
    }
};

QTEST_MAIN(AnnotationToolbarTest)
#include "annotation_toolbar_test.moc"
