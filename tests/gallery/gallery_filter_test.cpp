// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "gallery/gallery_filter.h"

#include <gtest/gtest.h>

#include <QTimeZone>

#include "library/screenshot_item.h"

namespace {

using DateFilter = GalleryFilter::DateFilter;
using MediaFilter = GalleryFilter::MediaFilter;

const QDateTime kNow(QDate(2025, 3, 14), QTime(15, 9, 26), QTimeZone::utc());

ScreenshotItem itemAt(const QString& name, const QDateTime& date = kNow) {
    return ScreenshotItem(QStringLiteral("/home/u/Desktop/") + name, date, date);
}

QHash<QString, ScreenshotMetadata> kNoMetadata;

bool passes(const GalleryFilter& filter, const ScreenshotItem& item,
            const QHash<QString, ScreenshotMetadata>& metadata = kNoMetadata,
            const QDateTime& now = kNow) {
    return filter.accepts(item, metadata, now);
}

TEST(GalleryFilter, IsActiveWhenAnyPartNarrowsTheList) {
    GalleryFilter filter;
    EXPECT_FALSE(filter.isActive());
    EXPECT_TRUE(passes(filter, itemAt("anything.mov", ScreenshotItem::distantPast())));

    const auto activeWith = [](auto change) {
        GalleryFilter changed;
        change(changed);
        return changed.isActive();
    };
    EXPECT_TRUE(activeWith([](GalleryFilter& f) { f.searchText = " "; }));
    EXPECT_TRUE(activeWith([](GalleryFilter& f) { f.dateFilter = DateFilter::week; }));
    EXPECT_TRUE(activeWith([](GalleryFilter& f) { f.mediaFilter = MediaFilter::photos; }));
    EXPECT_TRUE(activeWith([](GalleryFilter& f) { f.colorFilter = ColorLabel::red; }));
    EXPECT_TRUE(activeWith([](GalleryFilter& f) { f.showEventsOnly = true; }));
}

TEST(GalleryFilter, SearchIsACaseInsensitiveSubstringOfTheFileNameWithExtension) {
    GalleryFilter filter;
    filter.searchText = QStringLiteral("SHOT");
    EXPECT_TRUE(passes(filter, itemAt("Screenshot 2025-01-01.png")));
    filter.searchText = QStringLiteral("01.PNG");
    EXPECT_TRUE(passes(filter, itemAt("Screenshot 2025-01-01.png")));
    // The folder is not part of the name.
    filter.searchText = QStringLiteral("desktop");
    EXPECT_FALSE(passes(filter, itemAt("Screenshot 2025-01-01.png")));
    filter.searchText = QStringLiteral("ÄRGER");
    EXPECT_TRUE(passes(filter, itemAt("Bug ärger.png")));
    filter.searchText = QStringLiteral("shots");
    EXPECT_FALSE(passes(filter, itemAt("Screenshot.png")));
}

TEST(GalleryFilter, WeekIsARollingWindowOfExactlySevenDays) {
    GalleryFilter filter;
    filter.dateFilter = DateFilter::week;
    const QDateTime sevenDaysAgo = kNow.addSecs(-604800);
    EXPECT_TRUE(passes(filter, itemAt("edge.png", sevenDaysAgo)));
    EXPECT_FALSE(passes(filter, itemAt("older.png", sevenDaysAgo.addSecs(-1))));
    EXPECT_TRUE(passes(filter, itemAt("now.png", kNow)));
    // The same moment in another zone is the same moment.
    EXPECT_TRUE(passes(
        filter, itemAt("zoned.png", sevenDaysAgo.toTimeZone(QTimeZone(QByteArray("Asia/Tokyo"))))));
    EXPECT_FALSE(passes(filter, itemAt("unknown.png", ScreenshotItem::distantPast())));
}

TEST(GalleryFilter, TodayFollowsTheLocalCalendarDay) {
    GalleryFilter filter;
    filter.dateFilter = DateFilter::today;
    const QDate day(2025, 3, 14);
    const QDateTime oneAfterMidnight(day, QTime(0, 1), Qt::LocalTime);
    const QDateTime lateYesterday(day.addDays(-1), QTime(23, 59), Qt::LocalTime);
    const QDateTime justAfterMidnight(day, QTime(0, 0, 30), Qt::LocalTime);
    const QDateTime lateToday(day, QTime(23, 59, 59), Qt::LocalTime);
    EXPECT_FALSE(
        passes(filter, itemAt("yesterday.png", lateYesterday), kNoMetadata, oneAfterMidnight));
    EXPECT_TRUE(
        passes(filter, itemAt("today.png", justAfterMidnight), kNoMetadata, oneAfterMidnight));
    // Later the same day (an item with a clock running ahead) is still today.
    EXPECT_TRUE(passes(filter, itemAt("later.png", lateToday), kNoMetadata, oneAfterMidnight));
    // An item stored in UTC counts by its local day.
    EXPECT_TRUE(passes(filter, itemAt("utc.png", justAfterMidnight.toUTC()), kNoMetadata,
                       oneAfterMidnight));
}

TEST(GalleryFilter, MediaGoesByTheLastExtensionInAnyCase) {
    GalleryFilter photos;
    photos.mediaFilter = MediaFilter::photos;
    GalleryFilter videos;
    videos.mediaFilter = MediaFilter::videos;
    for (const char* name : {"Recording.MOV", "clip.mp4", "x.Mp4"}) {
        EXPECT_TRUE(passes(videos, itemAt(name))) << name;
        EXPECT_FALSE(passes(photos, itemAt(name))) << name;
    }
    for (const char* name : {"clip.mp4.png", "shot.png", "movie"}) {
        EXPECT_FALSE(passes(videos, itemAt(name))) << name;
        EXPECT_TRUE(passes(photos, itemAt(name))) << name;
    }
}

TEST(GalleryFilter, ColourAndEventsNeedARecordUnderTheFileName) {
    QHash<QString, ScreenshotMetadata> metadata;
    metadata.insert(QStringLiteral("blue.png"), {ColorLabel::blue, std::nullopt});
    metadata.insert(QStringLiteral("red.png"), {ColorLabel::red, std::nullopt});
    metadata.insert(QStringLiteral("event.png"),
                    {std::nullopt, ScreenshotEvent{QStringLiteral("Review"), QString()}});
    metadata.insert(QStringLiteral("both.png"),
                    {ColorLabel::blue, ScreenshotEvent{QStringLiteral("Bug"), QString()}});

    GalleryFilter blue;
    blue.colorFilter = ColorLabel::blue;
    EXPECT_TRUE(passes(blue, itemAt("blue.png"), metadata));
    EXPECT_TRUE(passes(blue, itemAt("both.png"), metadata));
    EXPECT_FALSE(passes(blue, itemAt("red.png"), metadata));
    EXPECT_FALSE(passes(blue, itemAt("event.png"), metadata));
    EXPECT_FALSE(passes(blue, itemAt("unlabelled.png"), metadata));

    GalleryFilter events;
    events.showEventsOnly = true;
    EXPECT_TRUE(passes(events, itemAt("event.png"), metadata));
    EXPECT_TRUE(passes(events, itemAt("both.png"), metadata));
    EXPECT_FALSE(passes(events, itemAt("blue.png"), metadata));
    EXPECT_FALSE(passes(events, itemAt("unlabelled.png"), metadata));
    // With no record carrying an event, nothing passes.
    EXPECT_FALSE(passes(events, itemAt("event.png"), kNoMetadata));

    GalleryFilter blueEvents = blue;
    blueEvents.showEventsOnly = true;
    EXPECT_TRUE(passes(blueEvents, itemAt("both.png"), metadata));
    EXPECT_FALSE(passes(blueEvents, itemAt("blue.png"), metadata));
}

TEST(GalleryFilter, LooksEachRecordUpOncePerMetadataFilterAndOnlyThen) {
    ScreenshotMetadata record{ColorLabel::green, ScreenshotEvent{QStringLiteral("x"), QString()}};
    QStringList asked;
    const GalleryFilter::MetadataLookup lookup = [&](const QString& name) {
        asked.append(name);
        return &record;
    };
    GalleryFilter filter;
    filter.searchText = QStringLiteral("shot");
    filter.dateFilter = DateFilter::week;
    EXPECT_TRUE(filter.accepts(itemAt("shot.png"), lookup, kNow));
    EXPECT_TRUE(asked.isEmpty());

    filter.colorFilter = ColorLabel::green;
    filter.showEventsOnly = true;
    EXPECT_TRUE(filter.accepts(itemAt("shot.png"), lookup, kNow));
    EXPECT_EQ(asked, QStringList({"shot.png", "shot.png"}));

    // Parts that fail before the metadata spare the look-up.
    asked.clear();
    EXPECT_FALSE(filter.accepts(itemAt("other.png"), lookup, kNow));
    EXPECT_TRUE(asked.isEmpty());
}

}  // namespace
