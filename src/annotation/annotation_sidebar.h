#pragma once

#include <QPointer>
#include <QWidget>
#include <array>

#include "annotation/annotation_state.h"
#include "annotation/annotation_tool.h"

class ColorSwatchButton;
class PaletteToolButton;

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

    AnnotationState* state() const { return state_; }

    PaletteToolButton* toolButton(AnnotationTool tool) const;
    ColorSwatchButton* colorSwatch() const { return swatch_; }
    PaletteToolButton* undoButton() const { return undo_; }
    PaletteToolButton* saveButton() const { return save_; }

Q_SIGNALS:
    void saveRequested();

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void buildColumn();
    void showActiveTool();
    void applyPaletteColors();

    QPointer<AnnotationState> state_;
    std::array<PaletteToolButton*, 8> toolButtons_{};
    ColorSwatchButton* swatch_ = nullptr;
    PaletteToolButton* undo_ = nullptr;
    PaletteToolButton* save_ = nullptr;
};
