// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "onboarding/slide_container.h"

#include <QImage>
#include <QLabel>
#include <QPainter>
#include <QShowEvent>
#include <QSvgRenderer>
#include <QVBoxLayout>

#include "onboarding/entrance_animation.h"
#include "widgets/symbol_icon.h"
#include "widgets/widget_style.h"

// The logo lives in the application's resources, which a static library
// must register itself.
static void registerApplicationResources() {
    Q_INIT_RESOURCE(quillix);
}

namespace {

constexpr int kTitlePixels = 22;
constexpr int kTextPixels = 13;
constexpr int kSideMargin = 40;

// The program's picture at `size`, sharp at the screen's density; blank if it
// cannot be read.
QPixmap imagePixmap(const QString& path, int size, qreal ratio) {
    registerApplicationResources();
    QImage image(QSize(size, size) * ratio, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QSvgRenderer renderer;
    if (renderer.load(path)) {
        QPainter painter(&image);
        renderer.render(&painter);
    }
    QPixmap pixmap = QPixmap::fromImage(image);
    pixmap.setDevicePixelRatio(ratio);
    return pixmap;
}

QLabel* centredLabel(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    label->setTextFormat(Qt::PlainText);
    return label;
}

}  // namespace

SlideContainer::SlideContainer(const SlideContent& content, QWidget* parent) : QWidget(parent) {
    setAccessibleName(content.title);
    const qreal ratio = devicePixelRatioF();

    symbol_ = new QLabel(this);
    symbol_->setAlignment(Qt::AlignCenter);
    if (content.imagePath.isEmpty()) {
        symbol_->setPixmap(symbolPixmap(content.symbol, widget_style::accent(palette()),
                                        QSize(kSymbolSize, kSymbolSize), ratio));
        symbol_->setAccessibleName(content.title + QStringLiteral(" symbol"));
    } else {
        symbol_->setPixmap(imagePixmap(content.imagePath, kImageSize, ratio));
        symbol_->setAccessibleName(QStringLiteral("Quillix icon"));
    }

    title_ = centredLabel(content.title, this);
    title_->setFont(widget_style::font(font(), kTitlePixels, QFont::Bold));
    title_->setAccessibleName(content.title);

    text_ = centredLabel(content.text, this);
    text_->setFont(widget_style::font(font(), kTextPixels, QFont::Normal));
    text_->setAccessibleName(QString(content.text).replace(QLatin1Char('\n'), QLatin1Char(' ')));
    QPalette textPalette = text_->palette();
    textPalette.setColor(QPalette::WindowText, widget_style::secondary(palette()));
    text_->setPalette(textPalette);

    layout_ = new QVBoxLayout(this);
    layout_->setContentsMargins(kSideMargin, 0, kSideMargin, 0);
    layout_->setSpacing(0);
    layout_->addStretch(1);
    layout_->addWidget(symbol_);
    layout_->addSpacing(16);
    layout_->addWidget(title_);
    layout_->addSpacing(8);
    layout_->addWidget(text_);
    layout_->addStretch(1);
}

QString SlideContainer::title() const {
    return title_->text();
}

void SlideContainer::setExtra(QWidget* extra) {
    extra_ = extra;
    // Between the text and the bottom stretch.
    layout_->insertSpacing(layout_->count() - 1, 20);
    layout_->insertWidget(layout_->count() - 1, extra, 0, Qt::AlignHCenter);
}

void SlideContainer::replayExtraEntrance() {
    if (entrance_ != nullptr && extra_ != nullptr && isVisible()) {
        entrance_->replay(extra_);
    }
}

void SlideContainer::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    // A window coming back from being minimised does not replay the entrance.
    if (event->spontaneous()) {
        return;
    }
    if (entrance_ == nullptr) {
        entrance_ = new EntranceAnimation({symbol_, title_, text_, extra_}, this);
    }
    entrance_->play();
}
