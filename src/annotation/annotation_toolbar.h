// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QAbstractButton>
#include <QColor>
#include <QPoint>
#include <QRect>
#include <QRectF>
#include <QSize>
#include <QWidget>

#include "annotation/annotation_state.h"
#include "annotation/annotation_tool.h"
#include "annotation/tool_palette.h"

// The floating toolbar of the area editor: the eight tools in their order, the
// colour swatch, undo and save, in one row on a dark translucent rounded
// background. It changes only the tool, drawing switch and colour of its
// state; undo and save are the host's (undoRequested / saveRequested). A
// tool is shown active only while drawing is on: until one is picked, none
// is, and drags belong to the selection.
class AnnotationToolbar : public QWidget {
    Q_OBJECT

public:
    static constexpr int kMinimumPanelWidth = 400;
    static constexpr int kGapToSelection = 8;
    static constexpr int kScreenLeftMargin = 8;
    // The colour the area editor hands the toolbar.
    static inline const QColor kEditorAccentColor = QColor::fromRgbF(0.49f, 0.44f, 1.0f, 1.0f);

    explicit AnnotationToolbar(AnnotationState* state, QWidget* parent = nullptr);

    AnnotationState* state() const { return tools_->state(); }
    QColor accentColor() const { return accentColor_; }
    void setAccentColor(const QColor& color);

    PaletteToolButton* toolButton(AnnotationTool tool) const;
    ColorSwatchButton* colorSwatch() const { return tools_->colorSwatch(); }
    PaletteToolButton* undoButton() const { return tools_->undoButton(); }
    QAbstractButton* saveButton() const { return save_; }

    // The size of the panel that hosts a toolbar whose fitting size is
    // `fittingSize`: at least 400 wide, 2 taller than the row.
    static QSize panelSize(QSize fittingSize);

    // Where the host panel's top-left corner goes, in global coordinates, for
    // a selection given relative to the screen's top-left corner: 8 below the
    // selection when the panel fits above the bottom of the visible area,
    // else 8 above the selection's top; left-aligned with the selection, or
    // right-aligned when it would run off the screen's right edge; never
    // less than 8 from the screen's left edge.
    static QPoint placement(const QRectF& selection, const QRect& screenFrame,
                            const QRect& visibleFrame, QSize panelSize);
    // The same with the whole screen counted as visible.
    static QPoint placement(const QRectF& selection, const QRect& screen, QSize panelSize) {
        return placement(selection, screen, screen, panelSize);
    }

Q_SIGNALS:
    void undoRequested();
    void saveRequested();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    ToolPalette* tools_ = nullptr;
    QColor accentColor_ = kEditorAccentColor;
    QAbstractButton* save_ = nullptr;
};
