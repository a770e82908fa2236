// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QHash>
#include <QObject>
#include <QString>
#include <optional>

#include "storage/envelope_file.h"
#include "storage/screenshot_metadata.h"

// The colour labels and events of capture files, in one dictionary sealed in
// metadata.bin. A record is filed under the file's name with its extension,
// not its path: two files named alike in different folders share a record,
// and a renamed file leaves its record behind under the old name. One shared
// instance, confined to the GUI thread; the whole file is rewritten after
// every change and never during loading.
class ScreenshotMetadataStore : public QObject {
    Q_OBJECT

public:
    static ScreenshotMetadataStore& shared();

    // Loads `directory`/metadata.bin; a missing, unreadable or undecodable
    // file leaves the store empty, and a record that does not decode is
    // left out on its own.
    explicit ScreenshotMetadataStore(const QString& directory, QObject* parent = nullptr);

    // The key of a file: its name with extension.
    static QString keyFor(const QString& filePath);

    const QHash<QString, ScreenshotMetadata>& metadata() const { return metadata_; }
    // The record of the file at `filePath`; an empty record when there is none.
    ScreenshotMetadata recordFor(const QString& filePath) const;

    // Sets, or with nothing clears, the label of the file and saves. The
    // record goes when neither label nor event is left.
    void setColorLabel(std::optional<ColorLabel> label, const QString& filePath);
    // Sets, or with nothing clears, the event of the file and saves. The
    // record goes when neither label nor event is left.
    void setEvent(const std::optional<ScreenshotEvent>& event, const QString& filePath);

    QString filePath() const { return file_.path(); }

Q_SIGNALS:
    void metadataChanged();

private:
    void load();
    void store(const QString& key, const ScreenshotMetadata& record);
    void save();

    EnvelopeFile file_;
    QHash<QString, ScreenshotMetadata> metadata_;
};
