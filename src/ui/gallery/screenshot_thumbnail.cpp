#include "ui/gallery/screenshot_thumbnail.h"

#include <QAbstractItemView>
#include <QPainter>

#include "ui/gallery/screenshot_list_model.h"

ScreenshotThumbnail::ScreenshotThumbnail(ScreenshotMetadataStore& metaStore, QObject* parent)
    : QStyledItemDelegate(parent), metaStore_(metaStore) {}

void ScreenshotThumbnail::attach(QAbstractItemView* view) {
    view->setItemDelegate(this);
}

void ScreenshotThumbnail::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                const QModelIndex& index) const {
    const auto item = index.data(ScreenshotListModel::ItemRole).value<ScreenshotItem>();
    painter->drawImage(QRectF(option.rect), item.thumbnail());
}

QSize ScreenshotThumbnail::sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const {
    return cellSize_;
}
