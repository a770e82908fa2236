// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QImage>
#include <QLoggingCategory>
#include <QString>
#include <QThreadPool>
#include <functional>

class Preferences;
class ScreenshotMetadataStore;
class ScreenshotItem;
class ScreenshotStore;
class ShelfStore;
class Thumbnailer;
class UserSettings;

Q_DECLARE_LOGGING_CATEGORY(lcShelfWindow)

// What the shelves window works with, handed down to its views. The stores
// are the program's shared ones (tests pass their own); the preview opener
// comes from the app, since the shelves do not know the preview window.
struct ShelfServices {
    ShelfStore& store;
    UserSettings& settings;
    Preferences& preferences;
    ScreenshotMetadataStore& metadata;
    ScreenshotStore& library;
    // Decodes thumbnails; decode() is called from worker threads.
    const Thumbnailer& thumbnailer;
    // Workers for listing folders, decoding and moving dropped files.
    QThreadPool& pool;
    std::function<void(const ScreenshotItem& item)> openPreview;
};

// Names typed for a shelf lose their spaces and tabs at both ends, but not
// line breaks.
QString trimmedShelfName(const QString& name);

// Whether the file is a recording, judged by its extension.
bool isShelfVideo(const QString& path);
