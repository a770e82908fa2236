// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "preview/preview_sidebar.h"

#include <QAbstractButton>
#include <QEnterEvent>
#include <QEvent>
#include <QFileInfo>
#include <QFuture>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPainter>
#include <QPainterPath>
#include <QPointer>
#include <QToolButton>
#include <QVBoxLayout>
#include <QVariantAnimation>
#include <cmath>

#include "library/capture_file_rename.h"
#include "storage/screenshot_metadata_store.h"
#include "widgets/symbol_icon.h"
#include "widgets/widget_style.h"

namespace {

constexpr int kPadding = 14;
constexpr int kSectionSpacing = 14;
constexpr QSize kButtonSymbolSize(14, 14);
constexpr qreal kSwatchHoverScale = 1.08;

using widget_style::withAlpha;

QFont fontOfSize(const QFont& base, int pixelSize, QFont::Weight weight = QFont::Normal) {
    QFont font = base;
    font.setPixelSize(pixelSize);
    font.setWeight(weight);
    return font;
}

QLabel* makeLabel(const QString& text, const QFont& font, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setFont(font);
    label->setAccessibleName(text);
    return label;
}

QToolButton* makeSymbolButton(const QString& symbol, const QString& label, QWidget* parent) {
    auto* button = new QToolButton(parent);
    button->setProperty("symbolName", symbol);
    button->setAutoRaise(true);
    button->setIconSize(kButtonSymbolSize);
    button->setToolTip(label);
    button->setAccessibleName(label);
    button->setCursor(Qt::PointingHandCursor);
    button->setFocusPolicy(Qt::NoFocus);
    return button;
}

QWidget* makeRow(QWidget* parent, QHBoxLayout** layout) {
    auto* row = new QWidget(parent);
    *layout = new QHBoxLayout(row);
    (*layout)->setContentsMargins(0, 0, 0, 0);
    (*layout)->setSpacing(4);
    return row;
}

// A round colour-label swatch that grows slightly while hovered; the current
// label carries a white tick.
class LabelSwatchButton : public QAbstractButton {
public:
    LabelSwatchButton(std::optional<ColorLabel> label, QWidget* parent)
        : QAbstractButton(parent), label_(label) {
        const QString title = label ? colorLabelTitle(*label) : QStringLiteral("No color");
        setToolTip(title);
        setAccessibleName(title);
        setCheckable(false);
        setCursor(Qt::PointingHandCursor);
        setFocusPolicy(Qt::NoFocus);
        const int side =
            static_cast<int>(std::ceil(PreviewSidebar::kSwatchDiameter * kSwatchHoverScale));
        setFixedSize(side, side);
        scaleAnimation_ = new QVariantAnimation(this);
        scaleAnimation_->setDuration(120);
        scaleAnimation_->setEasingCurve(QEasingCurve::OutCubic);
        connect(scaleAnimation_, &QVariantAnimation::valueChanged, this,
                [this](const QVariant& value) {
                    scale_ = value.toReal();
                    update();
                });
    }

    void setCurrent(bool current) {
        if (current_ != current) {
            current_ = current;
            setAccessibleDescription(current ? QStringLiteral("Selected") : QString());
            update();
        }
    }
    bool isCurrent() const { return current_; }

protected:
    void enterEvent(QEnterEvent* event) override {
        QAbstractButton::enterEvent(event);
        animateTo(kSwatchHoverScale);
    }
    void leaveEvent(QEvent* event) override {
        QAbstractButton::leaveEvent(event);
        animateTo(1.0);
    }

    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const qreal diameter = PreviewSidebar::kSwatchDiameter * scale_;
        const QRectF circle(QPointF(width() - diameter, height() - diameter) / 2,
                            QSizeF(diameter, diameter));
        const QColor primary = palette().color(QPalette::WindowText);
        if (label_) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(colorLabelColor(*label_));
            painter.drawEllipse(circle);
            if (current_) {
                // A bold white tick, 9 across.
                const QPointF c = circle.center();
                QPainterPath tick;
                tick.moveTo(c + QPointF(-4.0, 0.2));
                tick.lineTo(c + QPointF(-1.2, 3.0));
                tick.lineTo(c + QPointF(4.0, -2.8));
                painter.setPen(QPen(Qt::white, 2.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
                painter.setBrush(Qt::NoBrush);
                painter.drawPath(tick);
            }
        } else {
            const qreal line = 1.5;
            painter.setPen(QPen(withAlpha(primary, 0.3), line));
            painter.setBrush(Qt::NoBrush);
            painter.drawEllipse(circle.adjusted(line / 2, line / 2, -line / 2, -line / 2));
            const QSize cross(8, 8);
            const QPixmap mark = symbolPixmap(QStringLiteral("xmark"), withAlpha(primary, 0.6),
                                              cross, devicePixelRatioF());
            painter.drawPixmap(QPointF(width() - cross.width(), height() - cross.height()) / 2,
                               mark);
        }
    }

private:
    void animateTo(qreal target) {
        scaleAnimation_->stop();
        scaleAnimation_->setStartValue(scale_);
        scaleAnimation_->setEndValue(target);
        scaleAnimation_->start();
    }

    std::optional<ColorLabel> label_;
    bool current_ = false;
    qreal scale_ = 1.0;
    QVariantAnimation* scaleAnimation_ = nullptr;
};

}  // namespace

PreviewSidebar::PreviewSidebar(const ScreenshotItem& item, ScreenshotMetadataStore& metaStore,
                               ScreenshotStore& library, QWidget* parent)
    : QWidget(parent),
      item_(item),
      actions_(metaStore, &library),
      currentPath_(item.path()),
      currentName_(QFileInfo(item.path()).fileName()) {
    setFixedWidth(kWidth);
    setAccessibleName(QStringLiteral("Info"));
    build();
    refreshSymbols();
    refresh();
    connect(&actions_.metaStore(), &ScreenshotMetadataStore::metadataChanged, this,
            &PreviewSidebar::refresh);
}

QString PreviewSidebar::fileSizeText(qint64 bytes) {
    const QLocale locale;
    if (bytes <= 0) {
        return QStringLiteral("Zero KB");
    }
    if (bytes < 999'500) {
        const qint64 kilobytes = std::max<qint64>(1, (bytes + 500) / 1000);
        return locale.toString(kilobytes) + QStringLiteral(" KB");
    }
    // One decimal, without a padding zero ("25 MB", "1.2 MB").
    const double megabytes = std::round(static_cast<double>(bytes) / 100'000.0) / 10.0;
    const bool whole = std::fmod(megabytes, 1.0) == 0.0;
    return locale.toString(megabytes, 'f', whole ? 0 : 1) + QStringLiteral(" MB");
}

ScreenshotMetadata PreviewSidebar::metadata() const {
    return actions_.metaStore().recordFor(currentPath_);
}

QAbstractButton* PreviewSidebar::swatch(ColorLabel label) const {
    return swatches_[static_cast<size_t>(label)];
}

void PreviewSidebar::build() {
    const QFont base = font();
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(kPadding, kPadding + 8, kPadding, kPadding);
    column->setSpacing(3);

    auto addCaption = [&](const QString& text) {
        column->addSpacing(kSectionSpacing - 3);
        QFont font = fontOfSize(base, 9, QFont::DemiBold);
        font.setLetterSpacing(QFont::AbsoluteSpacing, 0.5);
        auto* caption = makeLabel(text.toUpper(), font, this);
        caption->setAccessibleName(text);
        caption->setProperty("caption", true);
        column->addWidget(caption);
    };

    column->addWidget(
        makeLabel(QStringLiteral("Info"), fontOfSize(base, 11, QFont::DemiBold), this));

    addCaption(QStringLiteral("Date"));
    dateLabel_ = makeLabel({}, fontOfSize(base, 12), this);
    timeLabel_ = makeLabel({}, fontOfSize(base, 11), this);
    timeLabel_->setProperty("secondary", true);
    column->addWidget(dateLabel_);
    column->addWidget(timeLabel_);

    addCaption(QStringLiteral("File"));
    fileNameLabel_ = makeLabel({}, fontOfSize(base, 11), this);
    fileNameLabel_->setWordWrap(true);
    fileSizeLabel_ = makeLabel({}, fontOfSize(base, 11), this);
    fileSizeLabel_->setProperty("secondary", true);
    column->addWidget(fileNameLabel_);
    column->addWidget(fileSizeLabel_);

    addCaption(QStringLiteral("Name"));
    QHBoxLayout* layout = nullptr;
    nameRow_ = makeRow(this, &layout);
    nameLabel_ = makeLabel({}, fontOfSize(base, 12), nameRow_);
    nameLabel_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    nameLabel_->setMinimumWidth(1);
    renameButton_ = makeSymbolButton(QStringLiteral("pencil"), QStringLiteral("Rename"), nameRow_);
    layout->addWidget(nameLabel_, 1);
    layout->addWidget(renameButton_);
    column->addWidget(nameRow_);

    nameEditor_ = makeRow(this, &layout);
    nameField_ = new QLineEdit(nameEditor_);
    nameField_->setAccessibleName(QStringLiteral("New name"));
    nameField_->setFont(fontOfSize(base, 12));
    nameConfirm_ = makeSymbolButton(QStringLiteral("checkmark.circle.fill"),
                                    QStringLiteral("Confirm rename"), nameEditor_);
    nameCancel_ = makeSymbolButton(QStringLiteral("xmark.circle.fill"),
                                   QStringLiteral("Cancel rename"), nameEditor_);
    layout->addWidget(nameField_, 1);
    layout->addWidget(nameConfirm_);
    layout->addWidget(nameCancel_);
    column->addWidget(nameEditor_);

    renameErrorLabel_ = makeLabel({}, fontOfSize(base, 10), this);
    renameErrorLabel_->setWordWrap(true);
    renameErrorLabel_->setAccessibleName(QStringLiteral("Rename error"));
    QPalette errorPalette = renameErrorLabel_->palette();
    errorPalette.setColor(QPalette::WindowText, QColor(0xff, 0x3b, 0x30));
    renameErrorLabel_->setPalette(errorPalette);
    column->addWidget(renameErrorLabel_);

    connect(renameButton_, &QToolButton::clicked, this, &PreviewSidebar::openNameEditor);
    connect(nameConfirm_, &QToolButton::clicked, this, &PreviewSidebar::confirmName);
    connect(nameField_, &QLineEdit::returnPressed, this, &PreviewSidebar::confirmName);
    connect(nameCancel_, &QToolButton::clicked, this, &PreviewSidebar::closeNameEditor);

    addCaption(QStringLiteral("Event"));
    eventRow_ = makeRow(this, &layout);
    eventTag_ = new QLabel(eventRow_);
    eventTag_->setAccessibleName(QStringLiteral("Event"));
    eventTitleLabel_ = makeLabel({}, fontOfSize(base, 12), eventRow_);
    eventTitleLabel_->setMinimumWidth(1);
    editEventButton_ =
        makeSymbolButton(QStringLiteral("pencil"), QStringLiteral("Edit event"), eventRow_);
    removeEventButton_ =
        makeSymbolButton(QStringLiteral("xmark"), QStringLiteral("Remove event"), eventRow_);
    layout->addWidget(eventTag_);
    layout->addWidget(eventTitleLabel_, 1);
    layout->addWidget(editEventButton_);
    layout->addWidget(removeEventButton_);
    column->addWidget(eventRow_);

    addEventButton_ = makeSymbolButton(QStringLiteral("plus"), QStringLiteral("Add event…"), this);
    addEventButton_->setText(QStringLiteral("Add event…"));
    addEventButton_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    addEventButton_->setFont(fontOfSize(base, 12));
    column->addWidget(addEventButton_, 0, Qt::AlignLeft);

    eventEditor_ = makeRow(this, &layout);
    eventField_ = new QLineEdit(eventEditor_);
    eventField_->setPlaceholderText(QStringLiteral("e.g. Design review…"));
    eventField_->setAccessibleName(QStringLiteral("Event title"));
    eventField_->setFont(fontOfSize(base, 12));
    eventConfirm_ = makeSymbolButton(QStringLiteral("checkmark.circle.fill"),
                                     QStringLiteral("Confirm event"), eventEditor_);
    eventCancel_ = makeSymbolButton(QStringLiteral("xmark.circle.fill"),
                                    QStringLiteral("Cancel event"), eventEditor_);
    layout->addWidget(eventField_, 1);
    layout->addWidget(eventConfirm_);
    layout->addWidget(eventCancel_);
    column->addWidget(eventEditor_);

    connect(editEventButton_, &QToolButton::clicked, this, &PreviewSidebar::openEventEditor);
    connect(addEventButton_, &QToolButton::clicked, this, &PreviewSidebar::openEventEditor);
    connect(removeEventButton_, &QToolButton::clicked, this,
            [this] { actions_.removeEvent(currentPath_); });
    connect(eventConfirm_, &QToolButton::clicked, this, &PreviewSidebar::confirmEvent);
    connect(eventField_, &QLineEdit::returnPressed, this, &PreviewSidebar::confirmEvent);
    connect(eventCancel_, &QToolButton::clicked, this, &PreviewSidebar::closeEventEditor);

    addCaption(QStringLiteral("Color"));
    auto* swatchRow = makeRow(this, &layout);
    layout->setSpacing(2);
    for (const ColorLabel label : kAllColorLabels) {
        auto* swatch = new LabelSwatchButton(label, swatchRow);
        connect(swatch, &QAbstractButton::clicked, this, [this, label] { tapSwatch(label); });
        swatches_[static_cast<size_t>(label)] = swatch;
        layout->addWidget(swatch);
    }
    clearColor_ = new LabelSwatchButton(std::nullopt, swatchRow);
    connect(clearColor_, &QAbstractButton::clicked, this,
            [this] { actions_.setColorLabel(currentPath_, std::nullopt); });
    layout->addWidget(clearColor_);
    layout->addStretch(1);
    column->addWidget(swatchRow);

    column->addStretch(1);
}

void PreviewSidebar::refresh() {
    const QDateTime date = item_.date().toLocalTime();
    const QLocale locale;
    dateLabel_->setText(locale.toString(date.date(), QLocale::LongFormat));
    dateLabel_->setAccessibleName(dateLabel_->text());
    timeLabel_->setText(locale.toString(date.time(), QLocale::ShortFormat));
    timeLabel_->setAccessibleName(timeLabel_->text());

    fileNameLabel_->setText(currentName_);
    fileNameLabel_->setAccessibleName(currentName_);
    const QFileInfo info(currentPath_);
    const bool hasSize = info.exists() && info.isFile();
    fileSizeLabel_->setText(hasSize ? fileSizeText(info.size()) : QString());
    fileSizeLabel_->setAccessibleName(fileSizeLabel_->text());
    fileSizeLabel_->setVisible(hasSize);

    nameLabel_->setText(currentName_);
    nameLabel_->setAccessibleName(currentName_);
    nameRow_->setVisible(!editingName_);
    nameEditor_->setVisible(editingName_);
    renameErrorLabel_->setText(renameError_.value_or(QString()));
    renameErrorLabel_->setVisible(renameError_.has_value());

    const ScreenshotMetadata record = metadata();
    if (record.event) {
        eventTitleLabel_->setText(record.event->title);
        eventTitleLabel_->setAccessibleName(record.event->title);
    }
    eventRow_->setVisible(!editingEvent_ && record.event.has_value());
    addEventButton_->setVisible(!editingEvent_ && !record.event.has_value());
    eventEditor_->setVisible(editingEvent_);

    for (const ColorLabel label : kAllColorLabels) {
        static_cast<LabelSwatchButton*>(swatch(label))->setCurrent(record.colorLabel == label);
    }
    update();
}

void PreviewSidebar::refreshSymbols() {
    const QColor primary = palette().color(QPalette::WindowText);
    const auto buttons = findChildren<QToolButton*>();
    for (QToolButton* button : buttons) {
        const QString symbol = button->property("symbolName").toString();
        const bool confirm = symbol == QStringLiteral("checkmark.circle.fill");
        const QColor tint =
            confirm ? palette().color(QPalette::Highlight)
                    : withAlpha(primary, symbol.endsWith(QStringLiteral(".fill")) ? 0.45 : 0.6);
        button->setIcon(symbolIcon(symbol, tint, kButtonSymbolSize));
    }
    eventTag_->setPixmap(symbolPixmap(QStringLiteral("tag.fill"), withAlpha(primary, 0.6),
                                      QSize(12, 12), devicePixelRatioF()));
    const QColor secondary = withAlpha(primary, 0.55);
    const auto labels = findChildren<QLabel*>();
    for (QLabel* label : labels) {
        if (label->property("caption").toBool() || label->property("secondary").toBool()) {
            QPalette p = label->palette();
            p.setColor(QPalette::WindowText, secondary);
            label->setPalette(p);
        }
    }
}

void PreviewSidebar::openNameEditor() {
    nameField_->setText(QFileInfo(currentPath_).completeBaseName());
    editingName_ = true;
    refresh();
    nameField_->setFocus(Qt::OtherFocusReason);
    nameField_->selectAll();
}

void PreviewSidebar::confirmName() {
    if (!editingName_ || renaming_) {
        return;
    }
    std::optional<QFuture<CaptureRenameResult>> move =
        actions_.rename(currentPath_, nameField_->text());
    if (!move) {
        closeNameEditor();
        return;
    }
    renaming_ = true;
    // The library announces the move, and the preview follows it through
    // followRename, before this continuation runs.
    move->then(this, [this](const CaptureRenameResult& result) {
        renaming_ = false;
        if (!result.succeeded()) {
            renameError_ = result.errorMessage;
            refresh();
            return;
        }
        renameError_.reset();
        editingName_ = false;
        refresh();
    });
}

void PreviewSidebar::followRename(const QString& newPath) {
    currentPath_ = newPath;
    currentName_ = QFileInfo(newPath).fileName();
    refresh();
}

void PreviewSidebar::closeNameEditor() {
    editingName_ = false;
    renameError_.reset();
    refresh();
}

void PreviewSidebar::openEventEditor() {
    const ScreenshotMetadata record = metadata();
    eventField_->setText(record.event ? record.event->title : QString());
    editingEvent_ = true;
    refresh();
    eventField_->setFocus(Qt::OtherFocusReason);
    eventField_->selectAll();
}

void PreviewSidebar::confirmEvent() {
    if (!editingEvent_) {
        return;
    }
    editingEvent_ = false;
    actions_.setEventTitle(currentPath_, eventField_->text());
    refresh();
}

void PreviewSidebar::closeEventEditor() {
    editingEvent_ = false;
    refresh();
}

void PreviewSidebar::tapSwatch(ColorLabel label) {
    actions_.toggleColorLabel(currentPath_, label);
}

void PreviewSidebar::paintEvent(QPaintEvent*) {
    // The panel's material: a flat fill a shade off the window background.
    QPainter painter(this);
    const QColor window = palette().color(QPalette::Window);
    painter.fillRect(rect(), window.lightness() < 128 ? window.lighter(112) : window.darker(103));
}

void PreviewSidebar::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        refreshSymbols();
    }
}
