// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "gallery/footer_pill_view.h"

#include <QCoreApplication>
#include <QEnterEvent>
#include <QHBoxLayout>
#include <QMimeData>
#include <QPainter>
#include <QPushButton>
#include <QTimer>
#include <QUrl>
#include <QVariantAnimation>

#include "library/screenshot_store.h"
#include "platform/sound_player.h"
#include "widgets/symbol_icon.h"

namespace {

constexpr int kHorizontalPadding = 20;
constexpr int kButtonGap = 10;
constexpr int kSymbolSize = 15;
constexpr int kTrashMinimumWidth = 24;
constexpr int kSwallowDurationMs = 100;
constexpr int kHoverDurationMs = 120;
// The icon swallows, then the file goes.
constexpr int kTrashAfterSwallowMs = 180;
constexpr int kOpenWindowDelayMs = 150;
constexpr int kQuitDelayMs = 100;

QColor primaryColor(const QWidget* widget, qreal opacity) {
    QColor color = widget->palette().color(QPalette::WindowText);
    color.setAlphaF(static_cast<float>(opacity));
    return color;
}

// A flat button whose text or symbol brightens while the pointer is over it.
class PillButton : public QPushButton {
public:
    PillButton(const QString& label, const QString& symbol, QWidget* parent)
        : QPushButton(parent), symbol_(symbol) {
        setFlat(true);
        setCursor(Qt::PointingHandCursor);
        // Reached by Tab only (a click must not move the keyboard), pressed
        // with Return as well as Space.
        setFocusPolicy(Qt::TabFocus);
        setAutoDefault(true);
        setAccessibleName(label);
        setToolTip(symbol.isEmpty() ? QString() : label);
        if (symbol.isEmpty()) {
            setText(label);
        }
        QFont font = this->font();
        font.setPixelSize(13);
        setFont(font);
        // The focus shows as an accent outline; the transparent one keeps
        // the size the same without it.
        setStyleSheet(
            QStringLiteral("QPushButton { border: 2px solid transparent; border-radius: 6px; "
                           "background: transparent; padding: 1px 4px; }"
                           "QPushButton:focus { border-color: palette(highlight); }"));
        applyColor();
    }

protected:
    void enterEvent(QEnterEvent* event) override {
        hovered_ = true;
        applyColor();
        QPushButton::enterEvent(event);
    }
    void leaveEvent(QEvent* event) override {
        hovered_ = false;
        applyColor();
        QPushButton::leaveEvent(event);
    }

private:
    void applyColor() {
        const QColor color = primaryColor(this, hovered_ ? 1.0 : 0.55);
        QPalette palette = this->palette();
        palette.setColor(QPalette::ButtonText, color);
        setPalette(palette);
        if (!symbol_.isEmpty()) {
            setIcon(symbolIcon(symbol_, color, QSize(kSymbolSize, kSymbolSize)));
            setIconSize(QSize(kSymbolSize, kSymbolSize));
        }
    }

    QString symbol_;
    bool hovered_ = false;
};

}  // namespace

// The trash symbol: grey outline, red and filled while a drag is over the
// pill, shrinking to nothing while it swallows.
class TrashTargetIcon : public QWidget {
public:
    explicit TrashTargetIcon(QWidget* parent) : QWidget(parent) {
        setAccessibleName(QStringLiteral("Trash"));
        setToolTip(QStringLiteral("Drop a capture here to move it to the trash"));
        setMinimumWidth(kTrashMinimumWidth);
        swallow_.setDuration(kSwallowDurationMs);
        swallow_.setEasingCurve(QEasingCurve::InQuad);
        swallow_.setStartValue(1.0);
        swallow_.setEndValue(0.01);
        QObject::connect(&swallow_, &QVariantAnimation::valueChanged, this,
                         [this](const QVariant& value) {
                             scale_ = value.toReal();
                             update();
                         });
        hover_.setDuration(kHoverDurationMs);
        hover_.setEasingCurve(QEasingCurve::OutQuad);
        QObject::connect(&hover_, &QVariantAnimation::valueChanged, this,
                         [this](const QVariant&) { update(); });
    }

    void setHovering(bool hovering) {
        hovering_ = hovering;
        hover_.setStartValue(hover_.currentValue().isValid() ? hover_.currentValue() : 0.0);
        hover_.setEndValue(hovering ? 1.0 : 0.0);
        hover_.start();
    }

    void setSucking(bool sucking) {
        swallow_.stop();
        if (sucking) {
            swallow_.start();
        } else {
            scale_ = 1.0;
            update();
        }
    }

    QSize sizeHint() const override { return {kTrashMinimumWidth, kSymbolSize + 4}; }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.setOpacity(scale_ <= 0.011 ? 0.0 : scale_);
        const qreal mix = hover_.currentValue().isValid() ? hover_.currentValue().toReal()
                                                          : (hovering_ ? 1.0 : 0.0);
        const QColor grey = primaryColor(this, 0.5);
        const QColor red(235, 64, 52);
        const QColor tint = QColor::fromRgbF(
            grey.redF() + (red.redF() - grey.redF()) * static_cast<float>(mix),
            grey.greenF() + (red.greenF() - grey.greenF()) * static_cast<float>(mix),
            grey.blueF() + (red.blueF() - grey.blueF()) * static_cast<float>(mix),
            grey.alphaF() + (1.0f - grey.alphaF()) * static_cast<float>(mix));
        const QString symbol = hovering_ ? QStringLiteral("trash.fill") : QStringLiteral("trash");
        const QPixmap pixmap =
            symbolPixmap(symbol, tint, QSize(kSymbolSize, kSymbolSize), devicePixelRatioF());
        painter.translate(rect().center());
        painter.scale(scale_, scale_);
        painter.drawPixmap(QPointF(-kSymbolSize / 2.0, -kSymbolSize / 2.0), pixmap);
    }

private:
    bool hovering_ = false;
    qreal scale_ = 1.0;
    QVariantAnimation swallow_;
    QVariantAnimation hover_;
};

FooterPillView::FooterPillView(ScreenshotStore& library, SoundPlayer& sounds, Actions actions,
                               QWidget* parent)
    : QWidget(parent), library_(library), sounds_(sounds), actions_(std::move(actions)) {
    setAccessibleName(QStringLiteral("Quillix controls"));
    settings_ = makeTextButton(QStringLiteral("Settings"));
    trash_ = new TrashTargetIcon(this);
    shelves_ = new PillButton(QStringLiteral("Shelves"), QStringLiteral("tray.2"), this);
    quit_ = makeTextButton(QStringLiteral("Quit"));

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(kHorizontalPadding, 0, kHorizontalPadding, 0);
    row->setSpacing(0);
    row->addWidget(settings_);
    row->addSpacing(kButtonGap);
    row->addWidget(trash_);
    row->addStretch(1);
    row->addWidget(shelves_);
    row->addSpacing(kButtonGap);
    row->addWidget(quit_);

    // Closing the popover deletes the pill, this view included: the actions
    // are copies, so nothing of the view is used once it is gone.
    const auto closeThenOpen = [this](std::function<void()> open) {
        const std::function<void()> closePopover = actions_.closePopover;
        if (closePopover) {
            closePopover();
        }
        // The pill goes with the popover: the application runs the timer.
        if (open) {
            QTimer::singleShot(kOpenWindowDelayMs, qApp, std::move(open));
        }
    };
    connect(settings_, &QPushButton::clicked, this,
            [this, closeThenOpen] { closeThenOpen(actions_.showSettings); });
    connect(shelves_, &QPushButton::clicked, this,
            [this, closeThenOpen] { closeThenOpen(actions_.showShelves); });
    connect(quit_, &QPushButton::clicked, this, [this] {
        if (actions_.quit) {
            QTimer::singleShot(kQuitDelayMs, qApp, actions_.quit);
        }
    });
}

QPushButton* FooterPillView::makeTextButton(const QString& label) {
    return new PillButton(label, QString(), this);
}

QWidget* FooterPillView::trashIcon() const {
    return trash_;
}

void FooterPillView::trashHoverOn() {
    trashHovering_ = true;
    trash_->setHovering(true);
}

void FooterPillView::trashHoverOff() {
    if (trashHovering_) {
        trashHovering_ = false;
        trash_->setHovering(false);
    }
}

void FooterPillView::trashDrop() {
    trashHoverOff();
    trashSucking_ = true;
    trash_->setSucking(true);
    sounds_.play(QStringLiteral("trash-empty"));
    QTimer::singleShot(kTrashAfterSwallowMs, this, [this] {
        trashSucking_ = false;
        trash_->setSucking(false);
    });
}

std::optional<QString> FooterPillView::draggedFile(const QMimeData* mime) {
    if (mime == nullptr) {
        return std::nullopt;
    }
    for (const QUrl& url : mime->urls()) {
        if (url.isLocalFile()) {
            return url.toLocalFile();
        }
    }
    return std::nullopt;
}

bool FooterPillView::acceptsDrag(const QMimeData* mime) {
    return draggedFile(mime).has_value();
}

bool FooterPillView::performDrop(const QMimeData* mime) {
    trashHoverOff();
    const std::optional<QString> file = draggedFile(mime);
    if (!file) {
        return false;
    }
    for (const ScreenshotItem& item : library_.screenshots()) {
        if (item.path() == *file) {
            deleteWithSwallowing(item);
            return true;
        }
    }
    return false;
}

void FooterPillView::deleteWithSwallowing(const ScreenshotItem& item) {
    trashDrop();
    // The library outlives the pill, which closes with the popover.
    ScreenshotStore* library = &library_;
    QTimer::singleShot(kTrashAfterSwallowMs, library,
                       [library, item] { library->moveToTrash(item); });
}
