// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QByteArray>
#include <QFuture>
#include <QString>
#include <QStringList>
#include <functional>

class CaptureRegistry;
class QObject;

// Every capture file the program writes goes through here: new captures and
// rewrites of existing ones alike are written atomically (a temporary file
// beside the target, renamed into place), so a crash or a full disk never
// leaves a half-written capture.

// Where a new capture goes: the save folder, or when that cannot take it,
// the first fallback folder that can.
struct CaptureDestination {
    QString fileName;  // "Screenshot_2026-11-16T09-45-11Z.png"
    QString saveFolder;
    QStringList fallbackFolders;
};

// Where a new capture went.
struct NewCaptureFile {
    QString path;        // empty when no folder took it
    QString saveFolder;  // the folder it was meant for
    // Why the save folder did not take it ("No space left on device", …);
    // empty when it did.
    QString saveFolderProblem;

    bool written() const { return !path.isEmpty(); }
    bool inSaveFolder() const { return written() && saveFolderProblem.isEmpty(); }
};

// The name a capture takes when `fileName` is taken `number - 1` times over,
// as file managers number copies: "Shot.png", "Shot (2).png", "Shot (3).png".
QString numberedCaptureName(const QString& fileName, int number);

// Creates `folder` with its missing parents; the reason when there is no
// folder there afterwards, empty when there is.
QString createCaptureFolder(const QString& folder);

// Writes a new capture file. It never replaces a file: a taken name is
// numbered (see numberedCaptureName), and the final rename refuses to
// replace, so two captures racing for one name both survive. Missing folders
// are created. Any thread; blocks on the disk.
NewCaptureFile writeNewCaptureFile(const QByteArray& bytes, const CaptureDestination& destination);

// Rewrites the capture at `path` in place and keeps its own-capture status.
// An atomic rewrite makes a new file with a new inode, so when the old file
// was in the registry the new one is recorded too. `produceBytes` runs on a
// worker and gives the file's new content (nothing: leave the file alone);
// the registry is consulted and updated on the GUI thread, in `context`,
// before the returned future (whether the file was written) finishes. Call
// on the GUI thread.
QFuture<bool> rewriteCapture(const QString& path, std::function<QByteArray()> produceBytes,
                             QObject* context, CaptureRegistry& registry);
