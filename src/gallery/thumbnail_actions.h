// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QFuture>
#include <QIcon>
#include <QObject>
#include <QPointer>
#include <optional>

#include "library/capture_actions.h"
#include "library/capture_file_rename.h"
#include "library/screenshot_item.h"
#include "storage/color_label.h"

class QMenu;
class QWidget;
class ScreenshotMetadataStore;
class ScreenshotStore;

// What a gallery cell's context menu does with one capture: colour label,
// event label, copying the picture, renaming and moving to the trash. The
// menu is built apart from showing it, and every action can be run on its
// own, so each works with the stores it is given. The metadata store is
// given at construction; the library is the shared one unless another is
// set. GUI thread only; loading, encoding and moving files run on worker
// threads.
class ThumbnailActions : public QObject {
    Q_OBJECT

public:
    explicit ThumbnailActions(ScreenshotMetadataStore& metaStore, QObject* parent = nullptr);

    ScreenshotMetadataStore& metaStore() const { return actions_.metaStore(); }

    // The screenshot library asked to trash and rescan; null means the
    // shared one (looked up on first use).
    void setLibrary(ScreenshotStore* library) { actions_.setLibrary(library); }
    ScreenshotStore& library() const { return actions_.library(); }

    // The window the prompts are centred on and modal to; null makes them
    // application-modal windows of their own.
    void setDialogParent(QWidget* parent) { dialogParent_ = parent; }

    // The context menu for `item`, owned by `parent` (the caller deletes or
    // shows it): "Color Label" ▸, "Add Event…"/"Edit Event…", "Remove Event"
    // (with an event), "Copy Image" (pictures only), divider, "Rename…",
    // divider, "Move to Trash". Its entries act on `item` as it is now.
    QMenu* buildMenu(const ScreenshotItem& item, QWidget* parent = nullptr);

    // Sets the label (again, when it is the current one) or clears it.
    void setColorLabel(const ScreenshotItem& item, std::optional<ColorLabel> label);
    // Asks for an event title ("Add Event" / "Edit Event"); a saved,
    // non-empty title replaces the event with an empty note. An empty title
    // and "Cancel" change nothing.
    void editEvent(const ScreenshotItem& item);
    // Clears title and note.
    void removeEvent(const ScreenshotItem& item);
    // Loads and encodes the file on a worker thread, then puts the picture
    // and its PNG bytes on the clipboard. The future holds whether it did:
    // a file that does not load is skipped silently.
    QFuture<bool> copyImage(const ScreenshotItem& item);
    // Asks for a new base name ("Rename Screenshot") and has the library
    // move the file: same folder and extension. Success rescans the library
    // (the metadata stays under the old name); failure shows "Rename
    // failed" with the system's message. The future finishes after that
    // and holds the move's result; nothing when the prompt was cancelled or
    // left empty.
    QFuture<std::optional<CaptureRenameResult>> rename(const ScreenshotItem& item);
    void moveToTrash(const ScreenshotItem& item);

    // The 16 × 16 swatch of a colour label in the menu, with a white bold
    // "✓" over it when `current`.
    static QIcon colorLabelIcon(ColorLabel label, bool current);

private:
    CaptureActions actions_;
    QPointer<QWidget> dialogParent_;
};
