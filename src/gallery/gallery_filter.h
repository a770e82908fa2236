// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QDateTime>
#include <QHash>
#include <QString>
#include <array>
#include <functional>
#include <optional>

#include "storage/color_label.h"
#include "storage/screenshot_metadata.h"

class ScreenshotItem;

// What the gallery shows of the library: a search on the file name, a date
// window, a media kind, a colour label and the events-only switch. A plain
// value; the default shows everything.
struct GalleryFilter {
    // In the order the chips appear; the label is the chip's text.
    enum class DateFilter { all, today, week };
    enum class MediaFilter { all, photos, videos };

    // The record of a file name (extension included), or null without one.
    using MetadataLookup = std::function<const ScreenshotMetadata*(const QString& fileName)>;

    QString searchText;
    DateFilter dateFilter = DateFilter::all;
    MediaFilter mediaFilter = MediaFilter::all;
    // None shows every colour and no colour.
    std::optional<ColorLabel> colorFilter;
    bool showEventsOnly = false;

    // Whether anything narrows the list.
    bool isActive() const;
    // Whether a colour or events filter needs the items' records.
    bool needsMetadata() const { return colorFilter.has_value() || showEventsOnly; }

    // Whether the item passes every part of the filter at the moment `now`.
    // Each metadata filter in use looks the item's record up once.
    bool accepts(const ScreenshotItem& item, const MetadataLookup& lookup,
                 const QDateTime& now) const;
    bool accepts(const ScreenshotItem& item, const QHash<QString, ScreenshotMetadata>& metadata,
                 const QDateTime& now) const;

    bool operator==(const GalleryFilter&) const = default;
};

inline constexpr std::array<GalleryFilter::DateFilter, 3> kAllDateFilters = {
    GalleryFilter::DateFilter::all, GalleryFilter::DateFilter::today,
    GalleryFilter::DateFilter::week};
inline constexpr std::array<GalleryFilter::MediaFilter, 3> kAllMediaFilters = {
    GalleryFilter::MediaFilter::all, GalleryFilter::MediaFilter::photos,
    GalleryFilter::MediaFilter::videos};

// "All", "Today", "Week".
QString dateFilterLabel(GalleryFilter::DateFilter filter);
// "All", "Photos", "Videos".
QString mediaFilterLabel(GalleryFilter::MediaFilter filter);

// The search-and-date part of a filter made ready for one pass over the
// list: the search text lower-cased once under the user's locale and the
// start of the week window computed once.
class GalleryFilterMatcher {
public:
    GalleryFilterMatcher(const GalleryFilter& filter, const QDateTime& now);

    bool accepts(const ScreenshotItem& item, const GalleryFilter::MetadataLookup& lookup) const;
    // The same test with the file name already taken from the item.
    bool accepts(const ScreenshotItem& item, const QString& fileName,
                 const GalleryFilter::MetadataLookup& lookup) const;

private:
    GalleryFilter filter_;
    QString needle_;
    QDate today_;
    QDateTime weekStart_;
};
