// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "gallery/screenshot_list_model.h"

#include <QMimeData>
#include <QSet>
#include <QUrl>

#include "library/screenshot_store.h"
#include "storage/screenshot_metadata_store.h"

ScreenshotListModel::ScreenshotListModel(ScreenshotStore& store, ScreenshotMetadataStore& metaStore,
                                         QObject* parent)
    : QAbstractListModel(parent),
      store_(store),
      metaStore_(metaStore),
      items_(store.screenshots()) {
    connect(&store_, &ScreenshotStore::screenshotsChanged, this, &ScreenshotListModel::reloadItems);
    connect(&store_, &ScreenshotStore::thumbnailsChanged, this,
            &ScreenshotListModel::updateThumbnails);
    connect(&metaStore_, &ScreenshotMetadataStore::metadataChanged, this,
            &ScreenshotListModel::updateAllRows);
}

int ScreenshotListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(items_.size());
}

QVariant ScreenshotListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= items_.size()) {
        return {};
    }
    const ScreenshotItem& item = items_.at(index.row());
    switch (role) {
        case Qt::DisplayRole:
        case Qt::AccessibleTextRole:
            return item.fileName();
        case Qt::DecorationRole:
            return item.thumbnail();
        case ItemRole:
            return QVariant::fromValue(item);
        default:
            return {};
    }
}

Qt::ItemFlags ScreenshotListModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) {
        return Qt::NoItemFlags;
    }
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled;
}

QStringList ScreenshotListModel::mimeTypes() const {
    return {QStringLiteral("text/uri-list")};
}

QMimeData* ScreenshotListModel::mimeData(const QModelIndexList& indexes) const {
    QList<QUrl> urls;
    for (const QModelIndex& index : indexes) {
        if (index.isValid() && index.row() < items_.size()) {
            urls.append(items_.at(index.row()).url());
        }
    }
    if (urls.isEmpty()) {
        return nullptr;
    }
    auto* mime = new QMimeData();
    mime->setUrls(urls);
    return mime;
}

Qt::DropActions ScreenshotListModel::supportedDragActions() const {
    // File managers copy or move; the pill's trash takes it as a move.
    return Qt::CopyAction | Qt::MoveAction;
}

void ScreenshotListModel::reloadItems() {
    beginResetModel();
    items_ = store_.screenshots();
    endResetModel();
}

void ScreenshotListModel::updateThumbnails(const QStringList& ids) {
    const QSet<QString> changed(ids.begin(), ids.end());
    const QList<ScreenshotItem>& published = store_.screenshots();
    if (published.size() != items_.size()) {
        reloadItems();
        return;
    }
    for (int row = 0; row < items_.size(); ++row) {
        if (changed.contains(items_.at(row).id()) &&
            published.at(row).id() == items_.at(row).id()) {
            items_[row] = published.at(row);
            const QModelIndex changedIndex = index(row);
            Q_EMIT dataChanged(changedIndex, changedIndex, {Qt::DecorationRole, ItemRole});
        }
    }
}

void ScreenshotListModel::updateAllRows() {
    if (!items_.isEmpty()) {
        Q_EMIT dataChanged(index(0), index(static_cast<int>(items_.size()) - 1));
    }
}
