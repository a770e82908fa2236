// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QSortFilterProxyModel>

#include "gallery/gallery_filter.h"

class ScreenshotListModel;
class ScreenshotMetadataStore;

// The library's list as the gallery shows it: the rows of a
// ScreenshotListModel that pass a GalleryFilter, in the library's order
// (never sorted). Filtering is one pass over the list with at most one
// record look-up per item for each metadata filter in use. The rows are
// filtered again when the filter changes, when the list changes and, while
// a colour or events filter is in use, when the metadata changes.
class ScreenshotFilterModel : public QSortFilterProxyModel {
    Q_OBJECT

public:
    explicit ScreenshotFilterModel(ScreenshotListModel& source, QObject* parent = nullptr);

    const GalleryFilter& filter() const { return filter_; }
    // Filters again only when the filter differs from the current one.
    void setFilter(const GalleryFilter& filter);
    // Filters again with the clock read afresh (the "Today" and "Week"
    // windows move with time).
    void refilter();

    ScreenshotListModel& listModel() const { return source_; }

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const override;

private:
    void metadataChanged();

    ScreenshotListModel& source_;
    GalleryFilter filter_;
    GalleryFilterMatcher matcher_;
    GalleryFilter::MetadataLookup lookup_;
};
