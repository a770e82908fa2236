#include "annotation/annotation_sidebar.h"

#include <QEvent>
#include <QPainter>
#include <QVBoxLayout>

#include "annotation/annotation_toolbar.h"
#include "annotation/color_picker_bridge.h"

namespace {

constexpr int kColumnSpacing = 4;
constexpr int kColumnVerticalPadding = 10;
constexpr int kColumnHorizontalPadding = 7;
constexpr int kSwatchDiameter = 20;

QColor withOpacity(QColor color, qreal opacity) {
    color.setAlphaF(static_cast<float>(color.alphaF() * opacity));
    return color;
}

PaletteButtonLook sidebarLook(const QColor& primary) {
    PaletteButtonLook look;
    look.frame = QSize(28, 28);
    look.base = primary;
    look.activeOpacity = 1.0;
    look.hoveredOpacity = 0.7;
    look.idleOpacity = 0.35;
    look.activeFill = 0.12;
    look.hoveredFill = 0.06;
    return look;
}

}  // namespace

AnnotationSidebar::AnnotationSidebar(AnnotationState* state, QWidget* parent)
    : QWidget(parent), state_(state) {
    setFixedWidth(kWidth);
    setAccessibleName(QStringLiteral("Annotation tools"));
    buildColumn();
    if (state_) {
        connect(state_, &AnnotationState::activeToolChanged, this,
                &AnnotationSidebar::showActiveTool);
        connect(state_, &AnnotationState::drawingEnabledChanged, this,
                &AnnotationSidebar::showActiveTool);
        connect(state_, &AnnotationState::currentColorChanged, swatch_,
                &ColorSwatchButton::setColor);
    }
    showActiveTool();
}

void AnnotationSidebar::buildColumn() {
    auto* column = new QVBoxLayout(this);
    column->setSpacing(kColumnSpacing);
    column->setContentsMargins(kColumnHorizontalPadding, kColumnVerticalPadding,
                               kColumnHorizontalPadding, kColumnVerticalPadding);
    const PaletteButtonLook look = sidebarLook(palette().color(QPalette::WindowText));

    for (const AnnotationTool tool : kAllAnnotationTools) {
        auto* button = new PaletteToolButton(paletteIconName(tool), paletteLabel(tool), look, this);
        button->setToolTip(paletteToolTip(paletteLabel(tool), annotationToolKeyName(tool)));
        connect(button, &QAbstractButton::clicked, this, [this, tool] {
            if (state_) {
                state_->selectTool(tool);
            }
            showActiveTool();
        });
        toolButtons_[static_cast<size_t>(tool)] = button;
        column->addWidget(button, 0, Qt::AlignHCenter);
    }

    swatch_ = new ColorSwatchButton(kSwatchDiameter,
                                    withOpacity(palette().color(QPalette::WindowText), 0.2),
                                    QStringLiteral("Stroke color"), this);
    swatch_->setColor(state_ ? state_->currentColor() : AnnotationState::kInitialColor);
    connect(swatch_, &QAbstractButton::clicked, this, [this] {
        if (state_) {
            ColorPickerBridge::shared().open(state_, this);
        }
    });
    column->addWidget(swatch_, 0, Qt::AlignHCenter);

    undo_ = new PaletteToolButton(QStringLiteral("arrow.uturn.backward"), QStringLiteral("Undo"),
                                  look, this);
    undo_->setToolTip(paletteToolTip(undo_->label(), QStringLiteral("Ctrl+Z")));
    undo_->setCheckable(false);
    connect(undo_, &QAbstractButton::clicked, this, [this] {
        if (state_) {
            state_->undo();
        }
    });
    column->addWidget(undo_, 0, Qt::AlignHCenter);

    save_ = new PaletteToolButton(QStringLiteral("checkmark"), QStringLiteral("Save"), look, this);
    save_->setToolTip(paletteToolTip(save_->label(), QStringLiteral("Ctrl+S")));
    save_->setCheckable(false);
    connect(save_, &QAbstractButton::clicked, this, &AnnotationSidebar::saveRequested);
    column->addWidget(save_, 0, Qt::AlignHCenter);
    column->addStretch(1);
}

PaletteToolButton* AnnotationSidebar::toolButton(AnnotationTool tool) const {
    return toolButtons_[static_cast<size_t>(tool)];
}

void AnnotationSidebar::showActiveTool() {
    // As in the toolbar: no tool looks picked while drawing is off.
    const bool drawing = state_ && state_->isDrawingEnabled();
    for (const AnnotationTool tool : kAllAnnotationTools) {
        toolButton(tool)->setActive(drawing && tool == state_->activeTool());
    }
}

void AnnotationSidebar::applyPaletteColors() {
    const QColor primary = palette().color(QPalette::WindowText);
    const PaletteButtonLook look = sidebarLook(primary);
    for (PaletteToolButton* button : toolButtons_) {
        button->setLook(look);
    }
    undo_->setLook(look);
    save_->setLook(look);
    swatch_->setRingColor(withOpacity(primary, 0.2));
    update();
}

void AnnotationSidebar::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange && undo_) {
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
                     withOpacity(palette().color(QPalette::WindowText), 0.06));
}
