// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QAbstractListModel>
#include <QList>

#include "library/screenshot_item.h"

class ScreenshotMetadataStore;
class ScreenshotStore;

// The library's captures as a list model for the gallery grid, newest first.
// Each row's ItemRole holds its ScreenshotItem (thumbnail included); display
// and accessible text are the file name. Rows drag out as their files
// (text/uri-list). The model follows the library (a new list resets it,
// arriving thumbnails update their rows) and the metadata store (a change
// updates every row, since any label or event may have moved). GUI thread.
class ScreenshotListModel : public QAbstractListModel {
    Q_OBJECT

public:
    enum Role { ItemRole = Qt::UserRole + 1 };

    ScreenshotListModel(ScreenshotStore& store, ScreenshotMetadataStore& metaStore,
                        QObject* parent = nullptr);

    ScreenshotStore& store() const { return store_; }
    ScreenshotMetadataStore& metaStore() const { return metaStore_; }

    const QList<ScreenshotItem>& items() const { return items_; }
    const ScreenshotItem& itemAt(int row) const { return items_.at(row); }

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    Qt::DropActions supportedDragActions() const override;

private:
    void reloadItems();
    void updateThumbnails(const QStringList& ids);
    void updateAllRows();

    ScreenshotStore& store_;
    ScreenshotMetadataStore& metaStore_;
    QList<ScreenshotItem> items_;
};
