// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "library/capture_actions.h"

#include <QObject>
#include <QtConcurrent/QtConcurrentRun>

#include "library/capture_image_loader.h"
#include "library/image_clipboard.h"
#include "library/screenshot_store.h"
#include "storage/screenshot_metadata_store.h"

CaptureActions::CaptureActions(ScreenshotMetadataStore& metaStore, ScreenshotStore* library)
    : metaStore_(metaStore), library_(library) {}

ScreenshotStore& CaptureActions::library() const {
    return library_ ? *library_ : ScreenshotStore::shared();
}

void CaptureActions::setColorLabel(const QString& path, std::optional<ColorLabel> label) const {
    metaStore_.setColorLabel(label, path);
}

void CaptureActions::toggleColorLabel(const QString& path, ColorLabel label) const {
    const bool isCurrent = metaStore_.recordFor(path).colorLabel == label;
    setColorLabel(path, isCurrent ? std::nullopt : std::optional<ColorLabel>(label));
}

void CaptureActions::setEventTitle(const QString& path, const QString& title) const {
    const QString trimmed = title.trimmed();
    if (!trimmed.isEmpty()) {
        metaStore_.setEvent(ScreenshotEvent{trimmed, QString()}, path);
    }
}

void CaptureActions::removeEvent(const QString& path) const {
    metaStore_.setEvent(std::nullopt, path);
}

QFuture<bool> CaptureActions::copyImage(const QString& path, QObject* context) {
    return QtConcurrent::run([path] { return loadCaptureImage(path, PngBytes::wanted); })
        .then(context, [](const LoadedCaptureImage& loaded) {
            if (!loaded.loaded()) {
                return false;
            }
            putImageOnClipboard(loaded.image, loaded.pngData);
            return true;
        });
}

std::optional<QFuture<CaptureRenameResult>> CaptureActions::rename(const QString& path,
                                                                   const QString& typedName) const {
    const std::optional<QString> destination = renamedCapturePath(path, typedName);
    if (!destination) {
        return std::nullopt;
    }
    // The label and event stay filed under the old name.
    return library().renameFile(path, *destination);
}

void CaptureActions::moveToTrash(const ScreenshotItem& item) const {
    library().moveToTrash(item);
}
