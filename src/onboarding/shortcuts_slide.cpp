// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "onboarding/shortcuts_slide.h"

#include <QFontDatabase>
#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

#include "widgets/widget_style.h"

namespace {

constexpr int kRowPixels = 13;
constexpr int kCaptionPixels = 11;
constexpr int kListWidth = 260;

// The rows on a faint rounded card.
class ShortcutCard : public QWidget {
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(widget_style::withAlpha(Qt::white, 0.06));
        painter.drawRoundedRect(QRectF(rect()), 8, 8);
    }
};

QLabel* rowLabel(const QString& text, const QFont& font, const QColor& colour, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setFont(font);
    label->setTextFormat(Qt::PlainText);
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, colour);
    label->setPalette(palette);
    return label;
}

}  // namespace

QList<ShortcutsSlide::Row> ShortcutsSlide::rows() {
    return {
        {QStringLiteral("Open Quillix"), QStringLiteral("⌘⇧1")},
        {QStringLiteral("Capture area"), QStringLiteral("⌘2")},
        {QStringLiteral("Capture window"), QStringLiteral("⌘3")},
        {QStringLiteral("Full screen"), QStringLiteral("⌘4")},
    };
}

ShortcutsSlide::ShortcutsSlide(QWidget* parent)
    : SlideContainer({.symbol = QStringLiteral("keyboard"),
                      .imagePath = {},
                      .title = QStringLiteral("Shortcuts"),
                      .text = QStringLiteral("Customise in\nSettings → Hotkeys.")},
                     parent) {
    auto* extra = new QWidget(this);
    extra->setAccessibleName(QStringLiteral("Default shortcuts"));
    auto* extraLayout = new QVBoxLayout(extra);
    extraLayout->setContentsMargins(0, 0, 0, 0);
    extraLayout->setSpacing(6);

    auto* card = new ShortcutCard(extra);
    card->setFixedWidth(kListWidth);
    auto* grid = new QGridLayout(card);
    grid->setContentsMargins(14, 8, 14, 8);
    grid->setVerticalSpacing(4);
    const QFont actionFont = widget_style::font(font(), kRowPixels, QFont::Normal);
    QFont keysFont = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    keysFont.setPixelSize(kRowPixels);
    const QColor primary = widget_style::withAlpha(widget_style::primary(palette()), 0.85);
    const QColor secondary = widget_style::secondary(palette());
    int line = 0;
    for (const Row& row : rows()) {
        grid->addWidget(rowLabel(row.action, actionFont, primary, card), line, 0, Qt::AlignLeft);
        QLabel* keys = rowLabel(row.keys, keysFont, secondary, card);
        // Screen readers say the keys, not the glyphs.
        keys->setAccessibleName(QString(row.keys)
                                    .replace(QStringLiteral("⌘"), QStringLiteral("Super "))
                                    .replace(QStringLiteral("⇧"), QStringLiteral("Shift ")));
        grid->addWidget(keys, line, 1, Qt::AlignRight);
        ++line;
    }
    extraLayout->addWidget(card, 0, Qt::AlignHCenter);

    QLabel* caption = rowLabel(QStringLiteral("⌘ is the Super key"),
                               widget_style::font(font(), kCaptionPixels, QFont::Normal),
                               widget_style::tertiary(palette()), extra);
    caption->setAccessibleName(QStringLiteral("The command symbol is the Super key"));
    extraLayout->addWidget(caption, 0, Qt::AlignHCenter);

    setExtra(extra);
}
