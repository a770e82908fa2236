// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "updates/update_toast_view.h"

#include <QAbstractButton>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QVBoxLayout>
#include <utility>

#include "widgets/symbol_icon.h"

namespace {

// A plain button (no bezel) of a symbol and an optional label that lightens
// while the pointer is over it.
class ToastButton : public QAbstractButton {
public:
    ToastButton(QString symbol, QSize symbolSize, const QString& label, QWidget* parent)
        : QAbstractButton(parent), symbol_(std::move(symbol)), symbolSize_(symbolSize) {
        setText(label);
        setAccessibleName(label);
        setCursor(Qt::PointingHandCursor);
        setFocusPolicy(Qt::NoFocus);
        setAttribute(Qt::WA_Hover);
        QFont labelFont = font();
        labelFont.setPixelSize(12);
        labelFont.setWeight(QFont::Medium);
        setFont(labelFont);
    }

    void setPrimary(bool primary) { primary_ = primary; }

    QSize sizeHint() const override {
        if (text().isEmpty()) {
            return symbolSize_ + QSize(10, 10);
        }
        const int textWidth = fontMetrics().horizontalAdvance(text());
        return {kPadding * 2 + symbolSize_.width() + kGap + textWidth, 28};
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const bool hovered = underMouse();
        if (primary_) {
            // The accent fill brightens on hover.
            painter.setPen(Qt::NoPen);
            painter.setBrush(hovered ? QColor(74, 150, 255) : QColor(10, 120, 245));
            painter.drawRoundedRect(QRectF(rect()), 8, 8);
        } else if (hovered) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(QColor(255, 255, 255, 40));
            painter.drawEllipse(QRectF(rect()));
        }
        const QColor ink = primary_ || hovered ? Qt::white : QColor(255, 255, 255, 140);
        const QPixmap symbol = symbolPixmap(symbol_, ink, symbolSize_, devicePixelRatioF());
        if (text().isEmpty()) {
            painter.drawPixmap(QRect(QPoint(), symbolSize_)
                                   .translated((width() - symbolSize_.width()) / 2,
                                               (height() - symbolSize_.height()) / 2),
                               symbol);
            return;
        }
        const int top = (height() - symbolSize_.height()) / 2;
        painter.drawPixmap(QRect(QPoint(kPadding, top), symbolSize_), symbol);
        painter.setPen(ink);
        const QRect textRect = rect().adjusted(kPadding + symbolSize_.width() + kGap, 0, 0, 0);
        painter.drawText(textRect, Qt::AlignVCenter | Qt::AlignLeft, text());
    }

private:
    static constexpr int kPadding = 12;
    static constexpr int kGap = 6;
    QString symbol_;
    QSize symbolSize_;
    bool primary_ = false;
};

QLabel* makeLabel(const QString& text, int pixelSize, QFont::Weight weight, const QColor& color,
                  QWidget* parent) {
    auto* label = new QLabel(text, parent);
    QFont font = label->font();
    font.setPixelSize(pixelSize);
    font.setWeight(weight);
    label->setFont(font);
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, color);
    label->setPalette(palette);
    label->setAccessibleName(text);
    return label;
}

}  // namespace

UpdateToastView::UpdateToastView(AppcastRelease release, std::function<void()> onUpdate,
                                 std::function<void()> onDismiss, QWidget* parent)
    : QWidget(parent), release_(std::move(release)) {
    setAccessibleName(QStringLiteral("Quillix update"));
    const QString title =
        QStringLiteral("Quillix ") + release_.version + QStringLiteral(" available");
    auto* titleLabel = makeLabel(title, 13, QFont::DemiBold, Qt::white, this);
    auto* subtitle = makeLabel(QStringLiteral("A new version is ready to install"), 11,
                               QFont::Normal, QColor(255, 255, 255, 115), this);

    auto* close = new ToastButton(QStringLiteral("xmark"), QSize(9, 9), QString(), this);
    close->setAccessibleName(QStringLiteral("Close"));
    closeButton_ = close;
    auto* update = new ToastButton(QStringLiteral("arrow.down.circle.fill"), QSize(12, 12),
                                   QStringLiteral("Update & Restart"), this);
    update->setPrimary(true);
    updateButton_ = update;
    connect(close, &QAbstractButton::clicked, this, std::move(onDismiss));
    connect(update, &QAbstractButton::clicked, this, std::move(onUpdate));

    auto* header = new QHBoxLayout;
    auto* texts = new QVBoxLayout;
    texts->setSpacing(2);
    texts->addWidget(titleLabel);
    texts->addWidget(subtitle);
    header->addLayout(texts, 1);
    header->addWidget(close, 0, Qt::AlignTop);
    auto* footer = new QHBoxLayout;
    footer->addStretch(1);
    footer->addWidget(update);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 14, 12, 14);
    layout->addLayout(header);
    layout->addStretch(1);
    layout->addLayout(footer);
}

void UpdateToastView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath card;
    card.addRoundedRect(QRectF(rect()), kCornerRadius, kCornerRadius);
    painter.fillPath(card, QColor(18, 18, 20, 242));
}
