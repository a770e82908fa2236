#pragma once

#include <QAbstractButton>
#include <QColor>
#include <QPixmap>
#include <QPoint>
#include <QPointer>
#include <QRect>
#include <QRectF>
#include <QSize>
#include <QString>
#include <QWidget>
#include <array>

#include "annotation/annotation_state.h"
#include "annotation/annotation_tool.h"

class QVariantAnimation;

// How a palette's symbol button is drawn: the symbol and its highlight are
// `base` at the opacities given for the active, hovered and idle states.
struct PaletteButtonLook {
    QSize frame;
    QColor base;
    qreal activeOpacity = 1.0;
    qreal hoveredOpacity = 0.85;
    qreal idleOpacity = 0.55;
    qreal activeFill = 0.22;
    qreal hoveredFill = 0.1;
};

// A flat symbol button of the annotation palettes. Its accessible name is its
// label; its tooltip is the label too until the palette adds the key that
// does the same ("Pencil (P)"). "active" is the highlighted tool (exposed as
// checked).
// While hovered and not active it grows slightly, with a short springy
// animation.
class PaletteToolButton : public QAbstractButton {
    Q_OBJECT

public:
    static constexpr int kSymbolSize = 16;
    static constexpr qreal kHoverScale = 1.08;

    PaletteToolButton(const QString& symbolName, const QString& label,
                      const PaletteButtonLook& look, QWidget* parent = nullptr);

    QString symbolName() const { return symbolName_; }
    QString label() const { return label_; }
    bool isActive() const { return active_; }
    void setActive(bool active);
    bool isHovered() const { return hovered_; }
    void setLook(const PaletteButtonLook& look);

    QSize sizeHint() const override { return look_.frame; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    void setHovered(bool hovered);
    void animateScaleTo(qreal target);
    const QPixmap& symbol();

    QString symbolName_;
    QString label_;
    PaletteButtonLook look_;
    bool active_ = false;
    bool hovered_ = false;
    qreal scale_ = 1.0;
    QVariantAnimation* scaleAnimation_ = nullptr;
    QPixmap symbol_;  // the symbol in look_.base, at the last device pixel ratio
};

// A palette tooltip: the label followed by the key that does the same.
QString paletteToolTip(const QString& label, const QString& key);

// The round colour swatch of a palette: a filled circle with a thin ring.
class ColorSwatchButton : public QAbstractButton {
    Q_OBJECT

public:
    ColorSwatchButton(int diameter, const QColor& ring, const QString& label,
                      QWidget* parent = nullptr);

    QColor color() const { return color_; }
    void setColor(const QColor& color);
    void setRingColor(const QColor& ring);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int diameter_;
    QColor ring_;
    QColor color_;
};

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

    AnnotationState* state() const { return state_; }
    QColor accentColor() const { return accentColor_; }
    void setAccentColor(const QColor& color);

    PaletteToolButton* toolButton(AnnotationTool tool) const;
    ColorSwatchButton* colorSwatch() const { return swatch_; }
    PaletteToolButton* undoButton() const { return undo_; }
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
    void buildRow();
    void showActiveTool();

    QPointer<AnnotationState> state_;
    QColor accentColor_ = kEditorAccentColor;
    std::array<PaletteToolButton*, 8> toolButtons_{};
    ColorSwatchButton* swatch_ = nullptr;
    PaletteToolButton* undo_ = nullptr;
    QAbstractButton* save_ = nullptr;
};
