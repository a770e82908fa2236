// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QImage>
#include <QPointer>
#include <QRectF>
#include <QWidget>
#include <optional>

#include "annotation/annotation_state.h"
#include "library/screenshot_item.h"

class AnnotationCanvasView;
class AnnotationSidebar;
class PreviewImageArea;
class PreviewSidebar;
class QKeyEvent;
class QVariantAnimation;
class ScreenshotMetadataStore;
class ScreenshotStore;
class VideoPlayerView;

// The content of the preview window, one row: the annotation palette, the
// picture with its annotation canvas (or the player for a recording), a thin
// divider and the information panel. The picture is read off the GUI thread
// when the view first appears. Ctrl+S (or Super+S) flattens the annotations
// into the picture and writes it over the file as PNG; Ctrl+Z (or Super+Z)
// takes back the newest shape; Escape (unless a text is being edited) and
// Ctrl+W close the window; a tool's key alone (P, A, R, …; not while typing)
// picks that tool; all only while the view is on screen. A save keeps every
// pixel of the picture and first commits text still being typed.
//
// The view follows its file: when the library renames it, the view, its
// panel and the window's title take the new name; when the library moves it
// to the trash, the view reports it (fileTrashed) and refuses to save.
class ScreenshotPreviewView : public QWidget {
    Q_OBJECT

public:
    ScreenshotPreviewView(const ScreenshotItem& item, ScreenshotMetadataStore& metaStore,
                          ScreenshotStore& library, QWidget* parent = nullptr);
    ~ScreenshotPreviewView() override;

    // The file shown (its path follows a rename made in the panel or the
    // gallery).
    const ScreenshotItem& item() const { return item_; }
    // Whether closing now would lose drawing: shapes, a crop or typed text
    // not yet saved into the picture. Never for a recording.
    bool hasUnsavedChanges() const;
    // Whether the file was moved to the trash while shown; saving is then
    // refused.
    bool isFileGone() const { return fileGone_; }
    // The note shown over the picture ("too large", "moved to the trash"),
    // empty when none.
    QString message() const;
    AnnotationState& annotationState() { return annotationState_; }
    // The picture read from the file; nothing for a recording, before the
    // read has finished, or when the file cannot be read.
    const std::optional<QImage>& loadedImage() const { return loadedImage_; }
    // Where the picture is drawn inside the image area (empty without one).
    QRectF imageDisplayRect() const;
    bool hasFinishedLoading() const { return loadFinished_; }

    AnnotationSidebar* annotationSidebar() const { return annotationSidebar_; }
    PreviewSidebar* previewSidebar() const { return previewSidebar_; }
    // The image area and its canvas; null for a recording.
    QWidget* imageArea() const;
    AnnotationCanvasView* canvas() const;
    // The player; null for a picture.
    VideoPlayerView* videoPlayer() const { return videoPlayer_; }

    // Flattens the annotations into the picture and writes it over the file
    // as PNG, on a worker thread; true when the write started (saved or
    // saveFailed follows). Does nothing for a recording, without a picture,
    // once the file is gone, while a save runs, or while the picture is
    // shown 1 point wide or high or less.
    bool save();

Q_SIGNALS:
    // The read of the picture has finished (successfully or not).
    void imageLoadFinished();
    // A save has written the file and taken its result in.
    void saved();
    // A started save could not write the file; nothing changed.
    void saveFailed();
    // The library moved the file to the trash.
    void fileTrashed();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void appear();
    void loadImage();
    void takeLoadedImage(const QImage& image, const QImage& display, const QString& message);
    void followRename(const QString& oldPath, const QString& newPath);
    void followTrash(const QStringList& paths);
    bool handleKey(QKeyEvent* key);
    void takeSavedImage(const QImage& image);
    void placeContent();
    void setEntrance(qreal progress);

    ScreenshotItem item_;
    ScreenshotMetadataStore& metaStore_;
    ScreenshotStore& library_;
    AnnotationState annotationState_;
    std::optional<QImage> loadedImage_;
    bool appeared_ = false;
    bool keyMonitorInstalled_ = false;
    bool loadFinished_ = false;
    bool saving_ = false;
    bool fileGone_ = false;
    qreal entrance_ = 0.0;

    QWidget* content_ = nullptr;
    AnnotationSidebar* annotationSidebar_ = nullptr;
    PreviewImageArea* imageArea_ = nullptr;
    VideoPlayerView* videoPlayer_ = nullptr;
    PreviewSidebar* previewSidebar_ = nullptr;
    QVariantAnimation* entranceAnimation_ = nullptr;
};
