// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QByteArray>
#include <QColor>
#include <QDateTime>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <memory>
#include <optional>

#include "library/capture_registry.h"
#include "library/screenshot_item.h"
#include "library/screenshot_store.h"
#include "storage/preferences.h"
#include "storage/screenshot_metadata_store.h"
#include "storage/user_settings.h"

// A screenshot library of one test's own, in a temporary folder: a Desktop
// folder the store scans, the data folder the registry, settings and
// metadata store keep their files in, a private config file, and the trash
// (XDG_DATA_HOME points into the folder while it lives). Every file is
// listed, not only the program's own captures.
class TemporaryLibrary {
public:
    TemporaryLibrary();
    ~TemporaryLibrary();

    TemporaryLibrary(const TemporaryLibrary&) = delete;
    TemporaryLibrary& operator=(const TemporaryLibrary&) = delete;

    // A path inside the library's folder, the folder itself when empty.
    QString path(const QString& relative = {}) const;
    // A file in the Desktop folder, the folder itself when empty.
    QString desktop(const QString& name = {}) const;
    // Where a file moved to the trash ends up.
    QString trashed(const QString& name) const;

    // Writes `bytes` to `relative` (parent folders made as needed) and
    // returns its full path. Each file written is created strictly after the
    // one before, as the store sees creation times, so the last is the newest.
    QString writeFile(const QString& relative, const QByteArray& bytes);
    // Writes a PNG of `size`, its left half `left` and its right half `right`.
    QString writePng(const QString& relative, QSize size = {320, 200},
                     const QColor& left = Qt::white, const QColor& right = Qt::white);

    // Starts the store over the folder as it is now; its first scan is
    // published from the event loop.
    ScreenshotStore& open();
    // open(), then waitUntilIdle().
    [[nodiscard]] bool openUntilIdle(int timeoutMs = 30000);
    ScreenshotStore& store() const { return *store_; }

    // Runs the event loop until a scan was published and the store lists
    // `count` items; false if `timeoutMs` ran out first.
    [[nodiscard]] bool waitUntilListed(qsizetype count, int timeoutMs = 10000);
    // Runs the event loop until the store has nothing left to do (every
    // thumbnail published); polls rather than waiting for its signal.
    [[nodiscard]] bool waitUntilIdle(int timeoutMs = 30000);

    // The listed item with this file name, if any.
    std::optional<ScreenshotItem> item(const QString& fileName) const;
    // The file names listed, sorted.
    QStringList names() const;

    // Members in this order: the folder is made first and removed last.
private:
    QTemporaryDir root_;
    QByteArray previousDataHome_;
    bool hadDataHome_ = false;
    QDateTime lastCreated_;

public:
    CaptureRegistry registry;
    UserSettings settings;
    Preferences preferences;
    ScreenshotMetadataStore metadata;

private:
    std::unique_ptr<ScreenshotStore> store_;
};
