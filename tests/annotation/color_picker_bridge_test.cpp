// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "annotation/color_picker_bridge.h"

#include <QColorDialog>
#include <QSignalSpy>
#include <QtTest>

#include "annotation/annotation_sidebar.h"
#include "annotation/annotation_toolbar.h"

// Drives the real shared QColorDialog; a colour change is what the dialog
// reports while the user drags, so it is triggered through setCurrentColor.
class ColorPickerBridgeTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void swatchOpensTheSharedDialogOnTheStatesColor() {
        AnnotationState state;
        state.setCurrentColor(QColor(12, 34, 56));
        AnnotationToolbar toolbar(&state);
        toolbar.show();
        QVERIFY(QTest::qWaitForWindowExposed(&toolbar));
        QTest::mouseClick(toolbar.colorSwatch(), Qt::LeftButton);

        QColorDialog* dialog = ColorPickerBridge::shared().dialog();
        QVERIFY(dialog);
        QVERIFY(dialog->isVisible());
        QCOMPARE(dialog->currentColor(), QColor(12, 34, 56));
        QVERIFY(!dialog->accessibleName().isEmpty());
        // Opening again reuses the one dialog.
        QTest::mouseClick(toolbar.colorSwatch(), Qt::LeftButton);
        QCOMPARE(ColorPickerBridge::shared().dialog(), dialog);
    }

    void everyReportedChangeBecomesTheCurrentColor() {
        AnnotationState state;
        AnnotationToolbar toolbar(&state);
        QTest::mouseClick(toolbar.colorSwatch(), Qt::LeftButton);
        QColorDialog* dialog = ColorPickerBridge::shared().dialog();
        // A drag reports a run of colours; each lands at once, not only the last.
        QList<QColor> seen;
        connect(&state, &AnnotationState::currentColorChanged, this,
                [&seen](const QColor& color) { seen << color; });
        for (int green = 0; green <= 200; green += 50) {
            dialog->setCurrentColor(QColor(255, green, 0));
            QCOMPARE(state.currentColor(), QColor(255, green, 0));
        }
        QCOMPARE(seen.size(), 5);
        QCOMPARE(toolbar.colorSwatch()->color(), QColor(255, 200, 0));
    }

    void changesGoOnlyToThePaletteThatOpenedItLast() {
        AnnotationState editorState;
        AnnotationState previewState;
        editorState.setCurrentColor(QColor(1, 2, 3));
        previewState.setCurrentColor(QColor(200, 100, 50));
        AnnotationToolbar toolbar(&editorState);
        AnnotationSidebar sidebar(&previewState);

        QTest::mouseClick(toolbar.colorSwatch(), Qt::LeftButton);
        QTest::mouseClick(sidebar.colorSwatch(), Qt::LeftButton);
        QCOMPARE(ColorPickerBridge::shared().target(), &previewState);
        QColorDialog* dialog = ColorPickerBridge::shared().dialog();
        // Showing the preview's colour did not leak into the editor's document.
        QCOMPARE(dialog->currentColor(), QColor(200, 100, 50));
        QCOMPARE(editorState.currentColor(), QColor(1, 2, 3));

        dialog->setCurrentColor(QColor(0, 128, 255));
        QCOMPARE(previewState.currentColor(), QColor(0, 128, 255));
        QCOMPARE(editorState.currentColor(), QColor(1, 2, 3));

        // And back: the toolbar reopens it and takes over.
        QTest::mouseClick(toolbar.colorSwatch(), Qt::LeftButton);
        dialog->setCurrentColor(QColor(9, 9, 9));
        QCOMPARE(editorState.currentColor(), QColor(9, 9, 9));
        QCOMPARE(previewState.currentColor(), QColor(0, 128, 255));
    }

    void changesAfterTheDocumentIsGoneAreDropped() {
        auto* state = new AnnotationState;
        {
            AnnotationSidebar sidebar(state);
            QTest::mouseClick(sidebar.colorSwatch(), Qt::LeftButton);
        }
        delete state;
        QVERIFY(ColorPickerBridge::shared().target() == nullptr);
        ColorPickerBridge::shared().dialog()->setCurrentColor(QColor(4, 5, 6));
        QCOMPARE(ColorPickerBridge::shared().dialog()->currentColor(), QColor(4, 5, 6));
    }

    // Windows that bypass the window manager take the keyboard back when
    // the dialog goes, however it goes.
    void closingTheDialogIsAnnounced() {
        AnnotationState state;
        ColorPickerBridge& bridge = ColorPickerBridge::shared();
        QSignalSpy hidden(&bridge, &ColorPickerBridge::dialogHidden);
        bridge.open(&state);
        QVERIFY(QTest::qWaitForWindowExposed(bridge.dialog()));
        QCOMPARE(hidden.count(), 0);
        QTest::keyClick(bridge.dialog(), Qt::Key_Escape);
        QVERIFY(!bridge.dialog()->isVisible());
        QCOMPARE(hidden.count(), 1);

        bridge.open(&state);
        QVERIFY(QTest::qWaitForWindowExposed(bridge.dialog()));
        bridge.dialog()->close();
        QCOMPARE(hidden.count(), 2);
    }

    void cleanupTestCase() {
        // The dialog is the process's for good; close it so the run ends tidily.
        if (QColorDialog* dialog = ColorPickerBridge::shared().dialog()) {
            dialog->close();
        }
    }
};

QTEST_MAIN(ColorPickerBridgeTest)
#include "color_picker_bridge_test.moc"
