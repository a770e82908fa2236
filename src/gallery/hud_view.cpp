// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "gallery/hud_view.h"

#include <QGraphicsEffect>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>
#include <QVariantAnimation>
#include <array>

#include "gallery/hud_row.h"
#include "widgets/symbol_icon.h"
#include "widgets/widget_style.h"

namespace {

constexpr int kMargin = 6;
constexpr int kHeaderHeight = 18;
constexpr int kHeaderPaddingX = 8;
constexpr int kTitlePixelSize = 13;
constexpr int kCloseSize = 16;
constexpr int kCloseSymbolSize = 9;
constexpr int kDividerHeight = 5;

struct RowLook {
    HUDView::Row row;
    const char* icon;
    const char* label;
    const char* shortcut;  // the default binding, ⌘ standing for Super
    QColor tint;
    bool dividerAfter;
};

// The system palette's blue, purple, teal, red and orange.
const std::array<RowLook, 5> kRows{{
    {HUDView::Row::captureArea, "rectangle.dashed", QT_TR_NOOP("Capture area"), "⌘2",
     QColor(0, 122, 255), false},
    {HUDView::Row::captureWindow, "macwindow", QT_TR_NOOP("Capture window"), "⌘3",
     QColor(175, 82, 222), false},
    {HUDView::Row::fullScreen, "display", QT_TR_NOOP("Full screen"), "⌘4", QColor(48, 176, 199),
     true},
    {HUDView::Row::recordWindow, "record.circle", QT_TR_NOOP("Record window"), "⌘6",
     QColor(255, 59, 48), true},
    {HUDView::Row::clipboardHistory, "doc.on.clipboard", QT_TR_NOOP("Clipboard history"), "⌘5",
     QColor(255, 149, 0), false},
}};

// Draws the content scaled about its centre and faded by `progress` (0 to 1)
// while the HUD comes in.
class AppearEffect : public QGraphicsEffect {
public:
    using QGraphicsEffect::QGraphicsEffect;

    void setProgress(qreal progress) {
        progress_ = progress;
        update();
    }

protected:
    void draw(QPainter* painter) override {
        QPoint offset;
        const QPixmap content = sourcePixmap(Qt::DeviceCoordinates, &offset);
        const qreal scale = HUDView::kAppearScale + (1 - HUDView::kAppearScale) * progress_;
        const QRectF area(offset, content.deviceIndependentSize());
        painter->save();
        painter->setWorldTransform(QTransform());
        painter->setOpacity(progress_);
        painter->setRenderHint(QPainter::SmoothPixmapTransform);
        painter->translate(area.center());
        painter->scale(scale, scale);
        painter->translate(-area.center());
        painter->drawPixmap(offset, content);
        painter->restore();
    }

private:
    qreal progress_ = 0;
};

// A thin line between groups of rows.
class Divider : public QWidget {
public:
    explicit Divider(QWidget* parent) : QWidget(parent) {
        setFixedHeight(kDividerHeight);
        setAccessibleName(QObject::tr("Separator"));
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.fillRect(QRect(kHeaderPaddingX, height() / 2, width() - 2 * kHeaderPaddingX, 1),
                         widget_style::withAlpha(widget_style::primary(palette()), 0.25));
    }
};

// The close button: a small cross on a faint circle.
class CloseButton : public QAbstractButton {
public:
    explicit CloseButton(QWidget* parent) : QAbstractButton(parent) {
        setFixedSize(kCloseSize, kCloseSize);
        setFocusPolicy(Qt::NoFocus);
        setToolTip(tr("Close"));
        setAccessibleName(tr("Close"));
    }

protected:
    void paintEvent(QPaintEvent*) override {
        using namespace widget_style;
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(withAlpha(primary(palette()), 0.15));
        painter.drawEllipse(rect());
        const QPixmap cross =
            symbolPixmap(QStringLiteral("xmark"), secondary(palette()),
                         QSize(kCloseSymbolSize, kCloseSymbolSize), devicePixelRatioF());
        painter.drawPixmap((kCloseSize - kCloseSymbolSize) / 2, (kCloseSize - kCloseSymbolSize) / 2,
                           cross);
    }
};

}  // namespace

HUDView::HUDView(const std::function<void(Row)>& onChoose, std::function<void()> onDismiss,
                 QWidget* parent)
    : QWidget(parent), onDismiss_(std::move(onDismiss)) {
    setAccessibleName(tr("Capture actions"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    layout->setSpacing(0);

    auto* header = new QHBoxLayout;
    header->setContentsMargins(kHeaderPaddingX, 0, kHeaderPaddingX - 2, 0);
    auto* title = new QLabel(QStringLiteral("Quillix"), this);
    title->setFont(widget_style::font(font(), kTitlePixelSize, QFont::DemiBold));
    title->setFixedHeight(kHeaderHeight);
    header->addWidget(title);
    header->addStretch();
    closeButton_ = new CloseButton(this);
    connect(closeButton_, &QAbstractButton::clicked, this, [this] {
        if (onDismiss_) {
            onDismiss_();
        }
    });
    header->addWidget(closeButton_);
    layout->addLayout(header);
    addRows(onChoose);
    layout->addStretch();
}

void HUDView::addRows(const std::function<void(Row)>& onChoose) {
    auto* layout = static_cast<QVBoxLayout*>(this->layout());
    for (const RowLook& look : kRows) {
        auto* row = new HUDRow(
            QLatin1String(look.icon), tr(look.label), QString::fromUtf8(look.shortcut), look.tint,
            [onChoose, which = look.row] { onChoose(which); }, this);
        rows_.append(row);
        layout->addWidget(row);
        if (look.dividerAfter) {
            layout->addWidget(new Divider(this));
        }
    }
}

void HUDView::appear() {
    if (appeared_) {
        return;
    }
    appeared_ = true;
    auto* effect = new AppearEffect(this);
    setGraphicsEffect(effect);
    auto* entrance = new QVariantAnimation(this);
    entrance->setStartValue(0.0);
    entrance->setEndValue(1.0);
    entrance->setDuration(kAppearMs);
    entrance->setEasingCurve(QEasingCurve::OutCubic);
    connect(entrance, &QVariantAnimation::valueChanged, effect,
            [effect](const QVariant& value) { effect->setProgress(value.toReal()); });
    // Once in, the content is drawn directly again.
    connect(entrance, &QVariantAnimation::finished, this, [this] { setGraphicsEffect(nullptr); });
    entrance->start(QAbstractAnimation::DeleteWhenStopped);
}
