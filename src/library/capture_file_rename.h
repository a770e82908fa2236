// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QString>
#include <optional>

// Renaming a capture keeps its folder and its extension: the user types only
// the new base name. A typed name that is empty once white space is trimmed
// means "no rename".

// The path the file at `path` would take under `typedName`: same folder, the
// trimmed name as typed (moveCaptureFile refuses one with a "/" or a leading
// "."), then the old extension (a typed extension is kept as part of
// the name: "Bug.png" gives "Bug.png.png"). Nothing when the trimmed name is
// empty.
std::optional<QString> renamedCapturePath(const QString& path, const QString& typedName);

// The result of moving a file: its new path, or the system's message.
struct CaptureRenameResult {
    QString newPath;
    QString errorMessage;
    bool succeeded() const { return errorMessage.isEmpty(); }
};

// Why `to` is no name for a renamed `from`: it must stay in the same folder
// (the typed name had a "/") and must not be hidden (a leading "."). Empty
// when it is fine.
QString captureNameProblem(const QString& from, const QString& to);

// Moves the file; fails (with the system's message) when a file of that name
// exists already, and never replaces it. A name refused by
// captureNameProblem fails with its message.
CaptureRenameResult moveCaptureFile(const QString& from, const QString& to);
