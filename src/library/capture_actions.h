// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QFuture>
#include <QString>
#include <optional>

#include "library/capture_file_rename.h"
#include "storage/color_label.h"

class QObject;
class ScreenshotItem;
class ScreenshotMetadataStore;
class ScreenshotStore;

// What can be done to one capture, whichever view asks: its colour label and
// event (kept in the metadata store), copying its picture (which needs
// neither store), renaming it and moving it to the trash (done by the
// library, which rescans and announces the change to every open view). The
// gallery's cell menu and the preview's panel differ only in how they ask
// and how they show the outcome. GUI thread only; reading, encoding and
// moving files run on worker threads.
class CaptureActions {
public:
    // A null library means the shared one, looked up on first use.
    explicit CaptureActions(ScreenshotMetadataStore& metaStore, ScreenshotStore* library = nullptr);

    ScreenshotMetadataStore& metaStore() const { return metaStore_; }
    void setLibrary(ScreenshotStore* library) { library_ = library; }
    ScreenshotStore& library() const;

    // Sets the label (again, when it is the current one) or clears it.
    void setColorLabel(const QString& path, std::optional<ColorLabel> label) const;
    // Sets the label, or clears it when it is the current one.
    void toggleColorLabel(const QString& path, ColorLabel label) const;

    // A title that is not empty once trimmed replaces the event, with an
    // empty note; an empty one changes nothing (removing has its own call).
    void setEventTitle(const QString& path, const QString& title) const;
    void removeEvent(const QString& path) const;

    // Reads the picture on a worker, then (in `context`, on the GUI thread)
    // puts it and its PNG bytes on the clipboard. The future holds whether
    // it did: a file that does not load is skipped silently.
    static QFuture<bool> copyImage(const QString& path, QObject* context);

    // Has the library move the file to `typedName` in the same folder with
    // the same extension (see renamedCapturePath); the returned future
    // finishes on the GUI thread after the library announced the move.
    // Nothing when the typed name is empty once trimmed.
    std::optional<QFuture<CaptureRenameResult>> rename(const QString& path,
                                                       const QString& typedName) const;

    void moveToTrash(const ScreenshotItem& item) const;

private:
    ScreenshotMetadataStore& metaStore_;
    ScreenshotStore* library_;
};
