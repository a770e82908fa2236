// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "gallery/screenshot_thumbnail.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QContextMenuEvent>
#include <QEasingCurve>
#include <QEnterEvent>
#include <QLocale>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTimer>
#include <QVariantAnimation>
#include <algorithm>

#include "gallery/screenshot_list_model.h"
#include "gallery/thumbnail_actions.h"
#include "storage/screenshot_metadata_store.h"
#include "widgets/symbol_icon.h"
#include "widgets/widget_style.h"

namespace {

constexpr qreal kCornerRadius = 7;
constexpr qreal kBorderWidth = 1.5;
constexpr qreal kFocusRingWidth = 2;
constexpr qreal kHoverScale = 1.04;
constexpr int kHoverDurationMs = 200;
// Room around a cell for its hover growth and shadow when repainting.
constexpr int kHoverMargin = 12;

// Shadow of a hovered cell: black at 18 %, blurred over 6 px, 3 px down.
constexpr qreal kShadowAlpha = 0.18;
constexpr int kShadowRadius = 6;
constexpr qreal kShadowOffsetY = 3;

using widget_style::withAlpha;

QFont fontOfPixelSize(const QFont& base, int pixelSize, QFont::Weight weight) {
    QFont font = base;
    font.setPixelSize(pixelSize);
    font.setWeight(weight);
    return font;
}

// The part of `image` that fills `target` without distortion (centred crop).
QRectF fillSourceRect(const QSize& image, const QSizeF& target) {
    const qreal imageAspect = qreal(image.width()) / image.height();
    const qreal targetAspect = target.width() / target.height();
    // At least one whole source pixel each way: a thinner source rectangle
    // of a sliver-shaped picture would draw nothing at all.
    if (imageAspect > targetAspect) {
        const qreal width = std::max<qreal>(1, image.height() * targetAspect);
        return {(image.width() - width) / 2, 0, width, qreal(image.height())};
    }
    const qreal height = std::max<qreal>(1, image.width() / targetAspect);
    return {0, (image.height() - height) / 2, qreal(image.width()), height};
}

void drawSoftShadow(QPainter* painter, const QRectF& cell, qreal strength) {
    // Nested rounded rectangles, each adding a little black: dense under the
    // cell, fading out over the blur radius.
    const qreal layerAlpha = kShadowAlpha * strength / kShadowRadius;
    painter->save();
    painter->setPen(Qt::NoPen);
    painter->setBrush(QColor::fromRgbF(0, 0, 0, float(layerAlpha)));
    const QRectF shadow = cell.translated(0, kShadowOffsetY * strength);
    for (int grow = kShadowRadius; grow >= 1; --grow) {
        painter->drawRoundedRect(shadow.adjusted(-grow, -grow, grow, grow), kCornerRadius + grow,
                                 kCornerRadius + grow);
    }
    painter->restore();
}

// "Nov 23, 2026 14:05" in the user's locale: abbreviated date, short time.
QString cardDateText(const QDateTime& date) {
    const QLocale locale;
    const QDateTime local = date.toLocalTime();
    // Some locales' short time still has seconds; the card shows minutes.
    QString timeFormat = locale.timeFormat(QLocale::ShortFormat);
    static const QRegularExpression seconds(QStringLiteral("[:.]ss?"));
    timeFormat.remove(seconds);
    return locale.toString(local.date(), QStringLiteral("MMM d, yyyy")) + QLatin1Char(' ') +
           locale.toString(local.time(), timeFormat);
}

}  // namespace

ScreenshotThumbnail::ScreenshotThumbnail(ScreenshotMetadataStore& metaStore, QObject* parent)
    : QStyledItemDelegate(parent),
      metaStore_(metaStore),
      actions_(new ThumbnailActions(metaStore, this)) {}

ScreenshotThumbnail::~ScreenshotThumbnail() {
    for (const auto& state : hoverStates_) {
        delete state->animation;
    }
}

void ScreenshotThumbnail::setLibrary(ScreenshotStore* library) {
    actions_->setLibrary(library);
}

void ScreenshotThumbnail::attach(QAbstractItemView* view) {
    if (QAbstractItemView* previous = liveView()) {
        previous->viewport()->removeEventFilter(this);
        previous->removeEventFilter(this);
    }
    viewWidget_ = view;
    view->setItemDelegate(this);
    view->setMouseTracking(true);
    view->viewport()->setMouseTracking(true);
    view->viewport()->installEventFilter(this);
    // Keyboard-invoked context menus arrive at the view itself.
    view->installEventFilter(this);
    connect(&metaStore_, &ScreenshotMetadataStore::metadataChanged, view->viewport(),
            qOverload<>(&QWidget::update), Qt::UniqueConnection);
    // Scrolling moves other cells under a resting pointer.
    for (QScrollBar* bar : {view->verticalScrollBar(), view->horizontalScrollBar()}) {
        connect(bar, &QScrollBar::valueChanged, this, [this, view] {
            if (liveView() == view && view->viewport()->underMouse()) {
                setHovered(view->indexAt(view->viewport()->mapFromGlobal(QCursor::pos())));
            }
        });
    }
}

QAbstractItemView* ScreenshotThumbnail::liveView() const {
    // qobject_cast asks the object itself: once its item-view destructor has
    // run, the widget no longer counts as one.
    return qobject_cast<QAbstractItemView*>(viewWidget_.data());
}

qreal ScreenshotThumbnail::hoverProgress(const QModelIndex& index) const {
    if (!index.isValid()) {
        return 0;
    }
    for (const auto& state : hoverStates_) {
        if (state->index.isValid() && state->index == index) {
            return state->progress;
        }
    }
    return 0;
}

void ScreenshotThumbnail::setHovered(const QModelIndex& index) {
    if (index == hovered_ && index.isValid() == hovered_.isValid()) {
        return;
    }
    if (hovered_.isValid()) {
        animateHover(hovered_, 0);
    }
    hovered_ = index;
    if (index.isValid()) {
        animateHover(index, 1);
    }
    if (QAbstractItemView* view = liveView()) {
        if (index.isValid()) {
            view->viewport()->setCursor(Qt::PointingHandCursor);
        } else {
            view->viewport()->unsetCursor();
        }
    }
}

void ScreenshotThumbnail::animateHover(const QModelIndex& index, qreal target) {
    // Rows that went away leave states without an index; drop them.
    for (auto it = hoverStates_.begin(); it != hoverStates_.end();) {
        if (!(*it)->index.isValid()) {
            delete (*it)->animation;
            it = hoverStates_.erase(it);
        } else {
            ++it;
        }
    }
    HoverState* state = nullptr;
    for (const auto& candidate : hoverStates_) {
        if (candidate->index == index) {
            state = candidate.get();
        }
    }
    if (!state) {
        if (target <= 0) {
            return;
        }
        hoverStates_.push_back(std::make_unique<HoverState>());
        state = hoverStates_.back().get();
        state->index = index;
    }
    if (!state->animation) {
        state->animation = new QVariantAnimation(this);
        state->animation->setEasingCurve(QEasingCurve::OutCubic);
        connect(state->animation, &QVariantAnimation::valueChanged, this,
                [this, state](const QVariant& value) {
                    state->progress = value.toReal();
                    updateCell(state->index);
                });
        connect(state->animation, &QVariantAnimation::finished, this, [this, state] {
            if (state->progress <= 0) {
                removeHoverState(state);
            }
        });
    }
    state->animation->stop();
    const qreal distance = std::abs(target - state->progress);
    state->animation->setDuration(std::max(1, int(kHoverDurationMs * distance)));
    state->animation->setStartValue(state->progress);
    state->animation->setEndValue(target);
    state->animation->start();
}

void ScreenshotThumbnail::removeHoverState(HoverState* state) {
    const auto it =
        std::find_if(hoverStates_.begin(), hoverStates_.end(),
                     [state](const auto& candidate) { return candidate.get() == state; });
    if (it == hoverStates_.end()) {
        return;
    }
    updateCell(state->index);
    // Called from the animation's own signal: let it finish emitting first.
    state->animation->deleteLater();
    hoverStates_.erase(it);
}

void ScreenshotThumbnail::updateCell(const QModelIndex& index) const {
    QAbstractItemView* view = liveView();
    if (!view || !index.isValid()) {
        return;
    }
    view->viewport()->update(
        view->visualRect(index).adjusted(-kHoverMargin, -kHoverMargin, kHoverMargin, kHoverMargin));
}

QPixmap ScreenshotThumbnail::symbol(const QString& name, const QColor& tint, int side,
                                    qreal ratio) const {
    const QString key =
        QStringLiteral("%1|%2|%3|%4").arg(name, tint.name(QColor::HexArgb)).arg(side).arg(ratio);
    auto it = symbolCache_.constFind(key);
    if (it == symbolCache_.constEnd()) {
        it = symbolCache_.insert(key, symbolPixmap(name, tint, QSize(side, side), ratio));
    }
    return *it;
}

void ScreenshotThumbnail::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                const QModelIndex& index) const {
    const QVariant data = index.data(ScreenshotListModel::ItemRole);
    if (!data.canConvert<ScreenshotItem>() || option.rect.isEmpty()) {
        return;
    }
    const auto item = data.value<ScreenshotItem>();
    const ScreenshotMetadata record = metaStore_.recordFor(item.path());
    const bool hasDetails = record.event.has_value() || record.colorLabel.has_value();
    const qreal hover = hoverProgress(index);
    const qreal ratio = painter->device() ? painter->device()->devicePixelRatioF() : 1.0;
    const QRectF cell(option.rect);

    painter->save();
    painter->setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform |
                            QPainter::TextAntialiasing);
    if (hover > 0) {
        const qreal scale = 1 + (kHoverScale - 1) * hover;
        painter->translate(cell.center());
        painter->scale(scale, scale);
        painter->translate(-cell.center());
        drawSoftShadow(painter, cell, hover);
    }

    QPainterPath shape;
    shape.addRoundedRect(cell, kCornerRadius, kCornerRadius);
    painter->save();
    painter->setClipPath(shape, Qt::IntersectClip);

    // Picture.
    const QImage& thumbnail = item.thumbnail();
    if (!thumbnail.isNull() && thumbnail.width() > 0 && thumbnail.height() > 0) {
        painter->drawImage(cell, thumbnail, fillSourceRect(thumbnail.size(), cell.size()));
    } else {
        painter->fillRect(cell, withAlpha(option.palette.color(QPalette::PlaceholderText), 0.1));
    }

    // Badges; they give way to the card while a cell with details is hovered.
    const qreal badgeOpacity = hasDetails ? 1 - hover : 1;
    if (badgeOpacity > 0) {
        painter->save();
        painter->setOpacity(badgeOpacity);
        painter->setPen(Qt::NoPen);
        const QColor disc = QColor::fromRgbF(0, 0, 0, 0.55f);
        if (item.isVideo()) {
            const QRectF badge(cell.left() + 4, cell.top() + 4, 19, 19);
            painter->setBrush(disc);
            painter->drawEllipse(badge);
            const QRectF glyph(badge.left() + 5.5, badge.top() + 5, 9, 9);
            painter->drawPixmap(glyph.topLeft(),
                                symbol(QStringLiteral("play.fill"), Qt::white, 9, ratio));
        }
        // Top right, right to left: the colour disc, then the event tag.
        qreal right = cell.right() - 5;
        const qreal indicatorCentreY = cell.top() + 5 + 7;
        if (record.colorLabel) {
            const QRectF dot(right - 10, indicatorCentreY - 5, 10, 10);
            painter->setBrush(colorLabelColor(*record.colorLabel));
            painter->setPen(QPen(QColor::fromRgbF(1, 1, 1, 0.5f), 1));
            painter->drawEllipse(dot.adjusted(0.5, 0.5, -0.5, -0.5));
            painter->setPen(Qt::NoPen);
            right = dot.left() - 3;
        }
        if (record.event) {
            const QRectF tag(right - 14, indicatorCentreY - 7, 14, 14);
            painter->setBrush(disc);
            painter->drawEllipse(tag);
            painter->drawPixmap(QPointF(tag.left() + 3, tag.top() + 3),
                                symbol(QStringLiteral("tag.fill"), Qt::white, 8, ratio));
        }
        // Age caption, bottom right.
        const QFont ageFont = fontOfPixelSize(option.font, 8, QFont::Medium);
        const QFontMetricsF ageMetrics(ageFont);
        const QString age = item.relativeAge();
        const QSizeF ageSize(ageMetrics.horizontalAdvance(age) + 8, ageMetrics.height() + 4);
        const QRectF ageRect(cell.right() - 4 - ageSize.width(),
                             cell.bottom() - 4 - ageSize.height(), ageSize.width(),
                             ageSize.height());
        painter->setBrush(QColor::fromRgbF(0, 0, 0, 0.5f));
        painter->drawRoundedRect(ageRect, 3, 3);
        painter->setFont(ageFont);
        painter->setPen(Qt::white);
        painter->drawText(ageRect, Qt::AlignCenter, age);
        painter->restore();
    }

    // Information card.
    const qreal cardOpacity = hasDetails ? hover : 0;
    if (cardOpacity > 0) {
        painter->save();
        painter->setOpacity(cardOpacity);
        const QRectF card = cell.translated(0, 8 * (1 - hover));
        painter->setPen(Qt::NoPen);
        painter->setBrush(QColor::fromRgbF(0, 0, 0, 0.72f));
        painter->drawRoundedRect(card, kCornerRadius, kCornerRadius);
        const QRectF content = card.adjusted(8, 7, -8, -7);
        qreal y = content.top();
        if (record.event) {
            const QFont titleFont = fontOfPixelSize(option.font, 10, QFont::DemiBold);
            const QFontMetricsF metrics(titleFont);
            const qreal rowHeight = std::max<qreal>(8, metrics.height());
            const QColor accent = option.palette.color(QPalette::Highlight);
            painter->drawPixmap(QPointF(content.left(), y + (rowHeight - 8) / 2),
                                symbol(QStringLiteral("tag.fill"), accent, 8, ratio));
            const QRectF textRect(content.left() + 12, y, content.width() - 12, rowHeight);
            painter->setFont(titleFont);
            painter->setPen(Qt::white);
            painter->drawText(
                textRect, Qt::AlignLeft | Qt::AlignVCenter,
                metrics.elidedText(record.event->title, Qt::ElideRight, textRect.width()));
            y += rowHeight + 4;
        }
        if (record.colorLabel) {
            const QFont labelFont = fontOfPixelSize(option.font, 9, QFont::Medium);
            const QFontMetricsF metrics(labelFont);
            const qreal rowHeight = std::max<qreal>(7, metrics.height());
            painter->setPen(Qt::NoPen);
            painter->setBrush(colorLabelColor(*record.colorLabel));
            painter->drawEllipse(QRectF(content.left(), y + (rowHeight - 7) / 2, 7, 7));
            painter->setFont(labelFont);
            painter->setPen(QColor::fromRgbF(1, 1, 1, 0.85f));
            painter->drawText(QRectF(content.left() + 11, y, content.width() - 11, rowHeight),
                              Qt::AlignLeft | Qt::AlignVCenter,
                              colorLabelTitle(*record.colorLabel));
            y += rowHeight + 4;
        }
        const QFont dateFont = fontOfPixelSize(option.font, 8, QFont::Normal);
        const QFontMetricsF dateMetrics(dateFont);
        painter->setFont(dateFont);
        painter->setPen(QColor::fromRgbF(1, 1, 1, 0.45f));
        painter->drawText(
            QRectF(content.left(), y, content.width(), dateMetrics.height()),
            Qt::AlignLeft | Qt::AlignVCenter,
            dateMetrics.elidedText(cardDateText(item.date()), Qt::ElideRight, content.width()));
        painter->restore();
    }
    painter->restore();  // clip

    // Border.
    QColor borderColor;
    if (record.colorLabel) {
        borderColor = withAlpha(colorLabelColor(*record.colorLabel), 0.7);
    } else if (hover > 0) {
        borderColor = QColor::fromRgbF(1, 1, 1, float(0.3 * hover));
    }
    if (borderColor.isValid()) {
        const qreal inset = kBorderWidth / 2;
        painter->setPen(QPen(borderColor, kBorderWidth));
        painter->setBrush(Qt::NoBrush);
        painter->drawRoundedRect(cell.adjusted(inset, inset, -inset, -inset), kCornerRadius - inset,
                                 kCornerRadius - inset);
    }
    if (option.state.testFlag(QStyle::State_HasFocus)) {
        // The keyboard's place: an accent ring along the cell's edge, over
        // any label border (drawn inside the cell, which is what a change of
        // the current cell repaints).
        const qreal inset = kFocusRingWidth / 2;
        painter->setPen(QPen(option.palette.color(QPalette::Highlight), kFocusRingWidth));
        painter->setBrush(Qt::NoBrush);
        painter->drawRoundedRect(cell.adjusted(inset, inset, -inset, -inset), kCornerRadius - inset,
                                 kCornerRadius - inset);
    }
    painter->restore();
}

QSize ScreenshotThumbnail::sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const {
    return cellSize_;
}

void ScreenshotThumbnail::openMenu(const QModelIndex& index, const QPoint& globalPos) {
    const QVariant data = index.data(ScreenshotListModel::ItemRole);
    if (!data.canConvert<ScreenshotItem>()) {
        return;
    }
    // Parented to the viewport for its look; should the grid go away while
    // the menu (or a prompt it opened) runs, the menu goes with it.
    const QPointer<QMenu> menu = actions_->buildMenu(data.value<ScreenshotItem>(),
                                                     liveView() ? liveView()->viewport() : nullptr);
    menu->exec(globalPos);
    delete menu.data();
}

void ScreenshotThumbnail::activate(const QModelIndex& index) {
    const QVariant data = index.data(ScreenshotListModel::ItemRole);
    if (!data.canConvert<ScreenshotItem>()) {
        return;
    }
    QTimer::singleShot(0, this,
                       [this, item = data.value<ScreenshotItem>()] { Q_EMIT selected(item); });
}

bool ScreenshotThumbnail::eventFilter(QObject* watched, QEvent* event) {
    // A view in the middle of being destroyed is no item view any more.
    QAbstractItemView* view = liveView();
    if (!view) {
        return false;
    }
    QWidget* viewport = view->viewport();
    if (watched == view && event->type() == QEvent::ContextMenu) {
        // From the keyboard: the menu of the current cell, at its centre.
        const QModelIndex current = view->currentIndex();
        if (current.isValid() &&
            static_cast<QContextMenuEvent*>(event)->reason() == QContextMenuEvent::Keyboard) {
            openMenu(current, viewport->mapToGlobal(view->visualRect(current).center()));
            return true;
        }
        return false;
    }
    if (watched != viewport) {
        return false;
    }
    switch (event->type()) {
        case QEvent::Enter:
            setHovered(view->indexAt(static_cast<QEnterEvent*>(event)->position().toPoint()));
            break;
        case QEvent::Leave:
            setHovered({});
            break;
        case QEvent::MouseMove: {
            const auto* mouse = static_cast<QMouseEvent*>(event);
            const QPoint position = mouse->position().toPoint();
            setHovered(view->indexAt(position));
            if (pressedIndex_.isValid() && (position - pressPosition_).manhattanLength() >=
                                               QApplication::startDragDistance()) {
                // This press became a drag (the view drags the file out).
                pressedIndex_ = QPersistentModelIndex();
            }
            break;
        }
        case QEvent::MouseButtonPress: {
            const auto* mouse = static_cast<QMouseEvent*>(event);
            pressedIndex_ = QPersistentModelIndex();
            if (mouse->button() == Qt::LeftButton) {
                pressPosition_ = mouse->position().toPoint();
                pressedIndex_ = view->indexAt(pressPosition_);
            }
            break;
        }
        case QEvent::MouseButtonRelease: {
            const auto* mouse = static_cast<QMouseEvent*>(event);
            const QPersistentModelIndex pressed = pressedIndex_;
            pressedIndex_ = QPersistentModelIndex();
            if (mouse->button() == Qt::LeftButton && pressed.isValid() &&
                view->indexAt(mouse->position().toPoint()) == pressed) {
                // Reported from the event loop, after the view has seen the
                // release: the receiver may close or rebuild the grid.
                activate(pressed);
            }
            break;
        }
        case QEvent::ContextMenu: {
            const auto* menuEvent = static_cast<QContextMenuEvent*>(event);
            const QModelIndex index = view->indexAt(menuEvent->pos());
            if (index.isValid()) {
                openMenu(index, menuEvent->globalPos());
                return true;
            }
            break;
        }
        default:
            break;
    }
    return false;
}
