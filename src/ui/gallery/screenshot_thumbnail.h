#pragma once

#include <QSize>
#include <QStyledItemDelegate>

#include "capture/screenshot_item.h"

class QAbstractItemView;
class ScreenshotMetadataStore;

// One cell of the gallery grid, drawn by this item delegate over rows of a
// ScreenshotListModel (or a proxy of it): the thumbnail with its badges, the
// hover card, the border, and the per-capture context menu. Once attached
// to a view it follows the pointer over the view's viewport (hover effects,
// pointing-hand cursor), opens the context menu, and reports a click on a
// cell through `selected`. Dragging a cell out is the view's own drag of the
// model's text/uri-list. GUI thread only.
class ScreenshotThumbnail : public QStyledItemDelegate {
    Q_OBJECT

public:
    explicit ScreenshotThumbnail(ScreenshotMetadataStore& metaStore, QObject* parent = nullptr);

    // Becomes the view's item delegate and starts following its viewport.
    void attach(QAbstractItemView* view);

    // The size of one cell (aspect 1.6), set by the grid from its width.
    void setCellSize(const QSize& size) { cellSize_ = size; }
    QSize cellSize() const { return cellSize_; }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

Q_SIGNALS:
    // The user clicked the cell of this item.
    void selected(const ScreenshotItem& item);

private:
    ScreenshotMetadataStore& metaStore_;
    QSize cellSize_{92, 58};
};
