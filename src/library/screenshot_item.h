// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QDateTime>
#include <QImage>
#include <QMetaType>
#include <QString>
#include <QUrl>

// One capture file in the gallery: an image or a recording with its dates
// and a small thumbnail. Two items are the same capture when their ids are
// equal; the id holds the path and the modification time, so a renamed or
// rewritten file is a new item.
class ScreenshotItem {
public:
    // Longest side of a thumbnail, in pixels.
    static constexpr int kThumbnailMaxSide = 200;

    ScreenshotItem() = default;
    ScreenshotItem(const QString& path, const QDateTime& date, const QDateTime& modifiedDate,
                   const QImage& thumbnail = {});

    // Stands for an unknown creation date; it sorts after every real one.
    static QDateTime distantPast();

    const QString& path() const { return path_; }
    QUrl url() const { return QUrl::fromLocalFile(path_); }
    QString fileName() const;

    // Whether the file is a recording: its extension, in any case, is mp4 or
    // mov. Every other file counts as a picture.
    bool isVideo() const { return isVideoPath(path_); }
    static bool isVideoPath(const QString& path);

    // When the file was created (the distant past when unknown).
    const QDateTime& date() const { return date_; }
    // When its content last changed (the creation date when unknown).
    const QDateTime& modifiedDate() const { return modifiedDate_; }

    // At most kThumbnailMaxSide pixels on the longer side; null when none
    // could be made.
    const QImage& thumbnail() const { return thumbnail_; }
    void setThumbnail(const QImage& thumbnail) { thumbnail_ = thumbnail; }

    // Path, "-", and the modification time as seconds since 1970 with their
    // fraction, e.g. "/home/u/Desktop/x.png-1700000000.25".
    const QString& id() const { return id_; }

    // How long ago the file was created: "now" under a minute, then whole
    // minutes ("5m"), hours ("3h") or days ("12d"), cut off, never rounded.
    QString relativeAge(const QDateTime& now = QDateTime::currentDateTimeUtc()) const;

private:
    QString path_;
    QDateTime date_;
    QDateTime modifiedDate_;
    QImage thumbnail_;
    QString id_;
};

Q_DECLARE_METATYPE(ScreenshotItem)
