// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QHash>
#include <QPersistentModelIndex>
#include <QPixmap>
#include <QPoint>
#include <QPointer>
#include <QSize>
#include <QStyledItemDelegate>
#include <memory>
#include <vector>

#include "library/screenshot_item.h"

class QAbstractItemView;
class QVariantAnimation;
class ScreenshotMetadataStore;
class ScreenshotStore;
class ThumbnailActions;

// One cell of the gallery grid, drawn by this item delegate over rows of a
// ScreenshotListModel (or a proxy of it): the thumbnail with its badges, the
// hover card, the border, and the per-capture context menu. Once attached
// to a view it follows the pointer over the view's viewport (hover effects,
// pointing-hand cursor), opens the context menu, and reports a click on a
// cell through `selected`. The cell with the keyboard focus wears an accent
// ring. Dragging a cell out is the view's own drag of the
// model's text/uri-list. GUI thread only.
class ScreenshotThumbnail : public QStyledItemDelegate {
    Q_OBJECT

public:
    explicit ScreenshotThumbnail(ScreenshotMetadataStore& metaStore, QObject* parent = nullptr);
    ~ScreenshotThumbnail() override;

    // Becomes the view's item delegate and starts following its viewport.
    void attach(QAbstractItemView* view);

    // The size of one cell (aspect 1.6), set by the grid from its width.
    void setCellSize(const QSize& size) { cellSize_ = size; }
    QSize cellSize() const { return cellSize_; }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

    // The context menu's actions (colour, event, copy, rename, trash); its
    // library is the shared one unless set there.
    ThumbnailActions& actions() const { return *actions_; }
    // Shorthand for actions().setLibrary(library).
    void setLibrary(ScreenshotStore* library);

    // The cell under the pointer (invalid when none), and how far a cell's
    // hover effect has come: 0 at rest, 1 fully hovered, in between while
    // it animates.
    QModelIndex hoveredIndex() const { return hovered_; }
    qreal hoverProgress(const QModelIndex& index) const;

    // Shows the context menu of the cell at `index` at `globalPos` and runs
    // the chosen entry.
    void openMenu(const QModelIndex& index, const QPoint& globalPos);
    // Opens the cell as a click does (from the keyboard or a screen reader):
    // `selected` follows from the event loop.
    void activate(const QModelIndex& index);

Q_SIGNALS:
    // The user clicked the cell of this item.
    void selected(const ScreenshotItem& item);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct HoverState {
        QPersistentModelIndex index;
        qreal progress = 0;
        QVariantAnimation* animation = nullptr;
    };

    QAbstractItemView* liveView() const;
    void setHovered(const QModelIndex& index);
    void animateHover(const QModelIndex& index, qreal target);
    void removeHoverState(HoverState* state);
    void updateCell(const QModelIndex& index) const;
    QPixmap symbol(const QString& name, const QColor& tint, int side, qreal ratio) const;

    ScreenshotMetadataStore& metaStore_;
    ThumbnailActions* actions_ = nullptr;
    QSize cellSize_{92, 58};
    // Held as a widget: the view is only used while it still is an item view.
    QPointer<QWidget> viewWidget_;
    QPersistentModelIndex hovered_;
    std::vector<std::unique_ptr<HoverState>> hoverStates_;
    // The left press that may become a click; cleared once it turns into a drag.
    QPersistentModelIndex pressedIndex_;
    QPoint pressPosition_;
    mutable QHash<QString, QPixmap> symbolCache_;
};
