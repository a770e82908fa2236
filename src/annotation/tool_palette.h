// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QAbstractButton>
#include <QColor>
#include <QList>
#include <QMargins>
#include <QObject>
#include <QPixmap>
#include <QPointer>
#include <QSize>
#include <QString>
#include <QWidget>
#include <array>
#include <functional>

#include "annotation/annotation_state.h"
#include "annotation/annotation_tool.h"

class QBoxLayout;
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
    static constexpr qreal kCornerRadius = 7.0;

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

// What tells one annotation palette from another: the direction it runs in,
// its buttons, spacing and swatch, and what stands between its groups.
struct ToolPaletteLook {
    Qt::Orientation orientation = Qt::Horizontal;
    PaletteButtonLook buttons;
    int spacing = 0;
    QMargins margins;
    int swatchDiameter = 0;
    QColor swatchRing;
    QString swatchLabel;
    // Makes what goes between the tools, the swatch and each later group;
    // groups simply follow one another when it is empty.
    std::function<QWidget*(QWidget* parent)> makeSeparator;
};

// Builds the part every annotation palette shares inside its host widget:
// the eight tools in their order, the colour swatch and undo, laid out in one
// row or column. It keeps them in step with the state: clicking a tool picks
// it, a tool looks active only while drawing is on, the swatch shows the
// current colour and opens the shared colour dialog. What undo does is left
// to the host; so are the buttons the host adds after undo.
class ToolPalette : public QObject {
    Q_OBJECT

public:
    ToolPalette(AnnotationState* state, const ToolPaletteLook& look, QWidget* host);

    AnnotationState* state() const { return state_; }
    PaletteToolButton* toolButton(AnnotationTool tool) const;
    ColorSwatchButton* colorSwatch() const { return swatch_; }
    PaletteToolButton* undoButton() const { return undo_; }
    QBoxLayout* layout() const { return layout_; }

    // A symbol button in the palette's look that acts once rather than
    // staying picked, added as the next group.
    PaletteToolButton* addActionButton(const QString& symbolName, const QString& label,
                                       const QString& key);
    // A button of the host's own making, added as the next group.
    void addGroup(QWidget* widget);

    // Redraws every symbol button the palette made, say after a theme change.
    void setButtonLook(const PaletteButtonLook& look);

private:
    void addToolButtons();
    void addSwatch();
    void add(QWidget* widget);
    void showActiveTool();

    QPointer<AnnotationState> state_;
    ToolPaletteLook look_;
    QWidget* host_;
    QBoxLayout* layout_ = nullptr;
    std::array<PaletteToolButton*, 8> toolButtons_{};
    QList<PaletteToolButton*> actionButtons_;
    ColorSwatchButton* swatch_ = nullptr;
    PaletteToolButton* undo_ = nullptr;
};
