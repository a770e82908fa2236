// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "annotation/annotation_sidebar.h"

#include <QBoxLayout>
#include <QEvent>
#include <QPainter>

#include "annotation/tool_palette.h"
#include "widgets/widget_style.h"

using widget_style::withAlpha;

namespace {

PaletteButtonLook sidebarButtonLook(const QColor& primary) {
    return PaletteButtonLook{
        .frame = QSize(28, 28),
        .base = primary,
        .activeOpacity = 1.0,
        .hoveredOpacity = 0.7,
        .idleOpacity = 0.35,
        .activeFill = 0.12,
        .hoveredFill = 0.06,
    };
}

QColor swatchRing(const QColor& primary) {
    return withAlpha(primary, 0.2);
}

// One column of symbols in the window's text colour, its groups simply
// stacked.
ToolPaletteLook sidebarLook(const QColor& primary) {
    ToolPaletteLook look;
    look.orientation = Qt::Vertical;
    look.buttons = sidebarButtonLook(primary);
    look.spacing = 4;
    look.margins = QMargins(7, 10, 7, 10);
    look.swatchDiameter = 20;
    look.swatchRing = swatchRing(primary);
    look.swatchLabel = QStringLiteral("Stroke color");
    return look;
}

}  // namespace

AnnotationSidebar::AnnotationSidebar(AnnotationState* state, QWidget* parent) : QWidget(parent) {
    setFixedWidth(kWidth);
    setAccessibleName(QStringLiteral("Annotation tools"));
    tools_ = new ToolPalette(state, sidebarLook(widget_style::primary(palette())), this);
    connect(tools_->undoButton(), &QAbstractButton::clicked, this, [this] {
        if (AnnotationState* document = tools_->state()) {
            document->undo();
        }
    });
    save_ = tools_->addActionButton(QStringLiteral("checkmark"), QStringLiteral("Save"),
                                    QStringLiteral("Ctrl+S"));
    connect(save_, &QAbstractButton::clicked, this, &AnnotationSidebar::saveRequested);
    tools_->layout()->addStretch(1);
}

AnnotationState* AnnotationSidebar::state() const {
    return tools_->state();
}

PaletteToolButton* AnnotationSidebar::toolButton(AnnotationTool tool) const {
    return tools_->toolButton(tool);
}

ColorSwatchButton* AnnotationSidebar::colorSwatch() const {
    return tools_->colorSwatch();
}

PaletteToolButton* AnnotationSidebar::undoButton() const {
    return tools_->undoButton();
}

void AnnotationSidebar::applyPaletteColors() {
    const QColor primary = widget_style::primary(palette());
    tools_->setButtonLook(sidebarButtonLook(primary));
    tools_->colorSwatch()->setRingColor(swatchRing(primary));
    update();
}

void AnnotationSidebar::changeEvent(QEvent* event) {
    // A palette change can arrive while the buttons are still being built.
    if (event->type() == QEvent::PaletteChange && save_) {
        applyPaletteColors();
    }
    QWidget::changeEvent(event);
}

void AnnotationSidebar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), QColor(0, 0, 0, qRound(255 * 0.05)));
    // The hairline towards the image, on the trailing edge.
    const int edgeX = layoutDirection() == Qt::RightToLeft ? 0 : width() - 1;
    painter.fillRect(QRect(edgeX, 0, 1, height()),
                     withAlpha(widget_style::primary(palette()), 0.06));
}
