// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QImage>
#include <QMutex>
#include <QSet>
#include <QString>

// The picture files that notifications show. Each is a PNG in the temporary
// folder under a fresh upper-case UUID name ("<UUID>.png"); the ones this
// process wrote are remembered, so that each goes when its notification
// closes and all go when the program quits. A file also names the process
// that wrote it, so that a later start can remove what a crashed run left
// behind without touching anyone else's files. Safe to use from any thread.
class NotificationAttachments {
public:
    // The one that writeNotificationAttachment() fills.
    static NotificationAttachments& shared();

    NotificationAttachments() = default;
    NotificationAttachments(const NotificationAttachments&) = delete;
    NotificationAttachments& operator=(const NotificationAttachments&) = delete;

    // Writes `image` and answers the file's path; empty when the image is
    // null, the file cannot be written, or removeAll() has run.
    QString write(const QImage& image);
    // Removes a file that write() wrote; any other path is left alone.
    void remove(const QString& path);
    // Removes every file still on disk and writes no more (the program quits).
    void removeAll();
    // Paths written and not removed yet.
    QSet<QString> paths() const;

    // Removes the attachments in the temporary folder whose writing process
    // has ended (a run that crashed); attachments of running processes and
    // other files stay. Reads every candidate: run it on a worker.
    static void removeLeftoversOfEndedRuns();

private:
    mutable QMutex mutex_;
    QSet<QString> paths_;
    bool closed_ = false;
};

// NotificationAttachments::shared().write(image).
QString writeNotificationAttachment(const QImage& image);
