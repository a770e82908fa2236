// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "annotation/annotation_toolbar.h"

#include <QBoxLayout>
#include <QFont>
#include <QFontMetrics>
#include <QPainter>
#include <algorithm>

#include "widgets/symbol_icon.h"
#include "widgets/widget_style.h"

using widget_style::withAlpha;

namespace {

constexpr qreal kBackgroundCornerRadius = 14.0;

// A 1 × 16 bar in faint white with 2 of padding either side.
class ToolbarSeparator : public QWidget {
public:
    explicit ToolbarSeparator(QWidget* parent) : QWidget(parent) { setFixedSize(5, 16); }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.fillRect(QRect(2, 0, 1, height()), withAlpha(Qt::white, 0.12));
    }
};

// The checkmark and "Save" on a light pill.
class ToolbarSaveButton : public QAbstractButton {
public:
    explicit ToolbarSaveButton(QWidget* parent) : QAbstractButton(parent) {
        setText(QStringLiteral("Save"));
        setToolTip(paletteToolTip(text(), QStringLiteral("Return")));
        setAccessibleName(text());
        setCursor(Qt::ArrowCursor);
        QFont labelFont = font();
        labelFont.setPixelSize(12);
        labelFont.setWeight(QFont::DemiBold);
        setFont(labelFont);
    }

    QSize sizeHint() const override {
        const int textWidth = QFontMetrics(font()).horizontalAdvance(text());
        return QSize(kPadding + kCheckSize + kSpacing + textWidth + kPadding, 28);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(withAlpha(Qt::white, isDown() ? 0.26 : 0.18));
        painter.drawRoundedRect(QRectF(rect()), PaletteToolButton::kCornerRadius,
                                PaletteToolButton::kCornerRadius);
        const QPixmap check = symbolPixmap(QStringLiteral("checkmark"), Qt::white,
                                           QSize(kCheckSize, kCheckSize), devicePixelRatioF());
        painter.drawPixmap(kPadding, (height() - kCheckSize) / 2, check);
        painter.setPen(Qt::white);
        painter.drawText(QRect(kPadding + kCheckSize + kSpacing, 0, width(), height()),
                         Qt::AlignLeft | Qt::AlignVCenter, text());
    }

private:
    static constexpr int kPadding = 10;
    static constexpr int kCheckSize = 11;
    static constexpr int kSpacing = 4;
};

PaletteButtonLook toolbarButtonLook() {
    return PaletteButtonLook{
        .frame = QSize(30, 28),
        .base = Qt::white,
        .activeOpacity = 1.0,
        .hoveredOpacity = 0.85,
        .idleOpacity = 0.55,
        .activeFill = 0.22,
        .hoveredFill = 0.1,
    };
}

// One row of white symbols on the dark panel, its groups set apart by bars.
ToolPaletteLook toolbarLook() {
    ToolPaletteLook look;
    look.orientation = Qt::Horizontal;
    look.buttons = toolbarButtonLook();
    look.spacing = 4;
    look.margins = QMargins(10, 7, 10, 7);
    look.swatchDiameter = 18;
    look.swatchRing = withAlpha(Qt::white, 0.3);
    look.swatchLabel = QStringLiteral("Color");
    look.makeSeparator = [](QWidget* parent) { return new ToolbarSeparator(parent); };
    return look;
}

}  // namespace

AnnotationToolbar::AnnotationToolbar(AnnotationState* state, QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_TranslucentBackground);
    setAccessibleName(QStringLiteral("Annotation toolbar"));
    tools_ = new ToolPalette(state, toolbarLook(), this);
    tools_->layout()->setSizeConstraint(QLayout::SetMinimumSize);
    connect(tools_->undoButton(), &QAbstractButton::clicked, this,
            &AnnotationToolbar::undoRequested);
    save_ = new ToolbarSaveButton(this);
    save_->setFixedSize(save_->sizeHint());
    connect(save_, &QAbstractButton::clicked, this, &AnnotationToolbar::saveRequested);
    tools_->addGroup(save_);
}

void AnnotationToolbar::setAccentColor(const QColor& color) {
    accentColor_ = color;
    // Keyboard focus is the one place the accent shows.
    QPalette accented = palette();
    accented.setColor(QPalette::Highlight, color);
    setPalette(accented);
}

PaletteToolButton* AnnotationToolbar::toolButton(AnnotationTool tool) const {
    return tools_->toolButton(tool);
}

void AnnotationToolbar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    // No blur of what lies behind is available to a plain X11 window, so the
    // material is a dark translucent fill with a hairline edge.
    const QRectF body = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.setPen(QPen(withAlpha(Qt::white, 0.15), 1.0));
    painter.setBrush(QColor(28, 28, 32, 224));
    painter.drawRoundedRect(body, kBackgroundCornerRadius, kBackgroundCornerRadius);
}

QSize AnnotationToolbar::panelSize(QSize fittingSize) {
    return QSize(std::max(fittingSize.width(), kMinimumPanelWidth), fittingSize.height() + 2);
}

QPoint AnnotationToolbar::placement(const QRectF& selection, const QRect& screenFrame,
                                    const QRect& visibleFrame, QSize panelSize) {
    const qreal frameLeft = screenFrame.x();
    const qreal frameTop = screenFrame.y();
    const qreal visibleBottom = visibleFrame.y() + visibleFrame.height();
    const qreal frameRight = screenFrame.x() + screenFrame.width();

    qreal top = frameTop + selection.bottom() + kGapToSelection;
    if (top + panelSize.height() > visibleBottom) {
        top = frameTop + selection.top() - kGapToSelection - panelSize.height();
    }
    qreal left = frameLeft + selection.left();
    if (frameRight < left + panelSize.width()) {
        left = frameLeft + selection.right() - panelSize.width();
    }
    left = std::max(left, frameLeft + kScreenLeftMargin);
    return QPointF(left, top).toPoint();
}
