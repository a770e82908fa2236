// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QWidget>

#include "annotation/annotation_state.h"
#include "annotation/annotation_tool.h"

class ColorSwatchButton;
class PaletteToolButton;
class ToolPalette;

// The vertical tool palette of the preview window: the eight tools in their
// order, the stroke colour swatch, undo and save, 44 wide, drawn in the
// window's own text colour so it suits light and dark themes. Undo acts on
// the state directly; save is the host's (saveRequested). Like the toolbar,
// it shows a tool active only while drawing is on.
class AnnotationSidebar : public QWidget {
    Q_OBJECT

public:
    static constexpr int kWidth = 44;

    explicit AnnotationSidebar(AnnotationState* state, QWidget* parent = nullptr);

    AnnotationState* state() const;

    PaletteToolButton* toolButton(AnnotationTool tool) const;
    ColorSwatchButton* colorSwatch() const;
    PaletteToolButton* undoButton() const;
    PaletteToolButton* saveButton() const { return save_; }

Q_SIGNALS:
    void saveRequested();

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void applyPaletteColors();

    ToolPalette* tools_ = nullptr;
    PaletteToolButton* save_ = nullptr;
};
