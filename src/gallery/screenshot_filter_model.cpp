// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "gallery/screenshot_filter_model.h"

#include "gallery/screenshot_list_model.h"
#include "storage/screenshot_metadata_store.h"

ScreenshotFilterModel::ScreenshotFilterModel(ScreenshotListModel& source, QObject* parent)
    : QSortFilterProxyModel(parent),
      source_(source),
      matcher_(filter_, QDateTime::currentDateTime()) {
    ScreenshotMetadataStore* metaStore = &source.metaStore();
    lookup_ = [metaStore](const QString& fileName) -> const ScreenshotMetadata* {
        const QHash<QString, ScreenshotMetadata>& metadata = metaStore->metadata();
        const auto found = metadata.constFind(fileName);
        return found == metadata.constEnd() ? nullptr : &found.value();
    };
    // Rows are filtered on purpose only: a thumbnail arriving or a label
    // changing on the unfiltered list must not cost a pass.
    setDynamicSortFilter(false);
    setSourceModel(&source);
    connect(metaStore, &ScreenshotMetadataStore::metadataChanged, this,
            &ScreenshotFilterModel::metadataChanged);
    // A new list is filtered with the clock of its arrival.
    connect(&source, &QAbstractItemModel::modelAboutToBeReset, this,
            [this] { matcher_ = GalleryFilterMatcher(filter_, QDateTime::currentDateTime()); });
}

void ScreenshotFilterModel::setFilter(const GalleryFilter& filter) {
    if (filter == filter_) {
        return;
    }
    filter_ = filter;
    refilter();
}

void ScreenshotFilterModel::refilter() {
    matcher_ = GalleryFilterMatcher(filter_, QDateTime::currentDateTime());
    invalidateFilter();
}

void ScreenshotFilterModel::metadataChanged() {
    if (filter_.needsMetadata()) {
        refilter();
    }
}

bool ScreenshotFilterModel::filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const {
    if (sourceParent.isValid() || sourceRow >= source_.items().size()) {
        return false;
    }
    if (!filter_.isActive()) {
        return true;
    }
    return matcher_.accepts(source_.itemAt(sourceRow), lookup_);
}
