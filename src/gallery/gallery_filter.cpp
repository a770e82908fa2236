// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "gallery/gallery_filter.h"

#include <QLocale>

#include "library/screenshot_item.h"

namespace {

constexpr qint64 kWeekSeconds = 7 * 24 * 60 * 60;

}  // namespace

bool GalleryFilter::isActive() const {
    return !searchText.isEmpty() || dateFilter != DateFilter::all ||
           mediaFilter != MediaFilter::all || colorFilter.has_value() || showEventsOnly;
}

bool GalleryFilter::accepts(const ScreenshotItem& item, const MetadataLookup& lookup,
                            const QDateTime& now) const {
    return GalleryFilterMatcher(*this, now).accepts(item, lookup);
}

bool GalleryFilter::accepts(const ScreenshotItem& item,
                            const QHash<QString, ScreenshotMetadata>& metadata,
                            const QDateTime& now) const {
    return accepts(
        item,
        [&metadata](const QString& fileName) -> const ScreenshotMetadata* {
            const auto found = metadata.constFind(fileName);
            return found == metadata.constEnd() ? nullptr : &found.value();
        },
        now);
}

QString dateFilterLabel(GalleryFilter::DateFilter filter) {
    switch (filter) {
        case GalleryFilter::DateFilter::today:
            return QStringLiteral("Today");
        case GalleryFilter::DateFilter::week:
            return QStringLiteral("Week");
        case GalleryFilter::DateFilter::all:
            break;
    }
    return QStringLiteral("All");
}

QString mediaFilterLabel(GalleryFilter::MediaFilter filter) {
    switch (filter) {
        case GalleryFilter::MediaFilter::photos:
            return QStringLiteral("Photos");
        case GalleryFilter::MediaFilter::videos:
            return QStringLiteral("Videos");
        case GalleryFilter::MediaFilter::all:
            break;
    }
    return QStringLiteral("All");
}

GalleryFilterMatcher::GalleryFilterMatcher(const GalleryFilter& filter, const QDateTime& now)
    : filter_(filter) {
    if (!filter.searchText.isEmpty()) {
        needle_ = QLocale().toLower(filter.searchText);
    }
    today_ = now.toLocalTime().date();
    weekStart_ = now.addSecs(-kWeekSeconds);
}

bool GalleryFilterMatcher::accepts(const ScreenshotItem& item,
                                   const GalleryFilter::MetadataLookup& lookup) const {
    return accepts(item, item.fileName(), lookup);
}

bool GalleryFilterMatcher::accepts(const ScreenshotItem& item, const QString& fileName,
                                   const GalleryFilter::MetadataLookup& lookup) const {
    if (!needle_.isEmpty()) {
        // Lower-casing under the locale first keeps locale rules (a Turkish
        // dotted İ, say); the second comparison folds what remains.
        if (!QLocale().toLower(fileName).contains(needle_, Qt::CaseInsensitive)) {
            return false;
        }
    }
    switch (filter_.dateFilter) {
        case GalleryFilter::DateFilter::all:
            break;
        case GalleryFilter::DateFilter::today:
            if (item.date().toLocalTime().date() != today_) {
                return false;
            }
            break;
        case GalleryFilter::DateFilter::week:
            if (item.date() < weekStart_) {
                return false;
            }
            break;
    }
    switch (filter_.mediaFilter) {
        case GalleryFilter::MediaFilter::all:
            break;
        case GalleryFilter::MediaFilter::photos:
            if (item.isVideo()) {
                return false;
            }
            break;
        case GalleryFilter::MediaFilter::videos:
            if (!item.isVideo()) {
                return false;
            }
            break;
    }
    if (filter_.colorFilter) {
        const ScreenshotMetadata* record = lookup ? lookup(fileName) : nullptr;
        if (record == nullptr || record->colorLabel != filter_.colorFilter) {
            return false;
        }
    }
    if (filter_.showEventsOnly) {
        const ScreenshotMetadata* record = lookup ? lookup(fileName) : nullptr;
        if (record == nullptr || !record->event) {
            return false;
        }
    }
    return true;
}
