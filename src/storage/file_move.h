// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QString>

// Moving a file or a folder, with everything in it, to a new path without
// ever replacing what is there. Within one file system this is one rename.
// Across file systems the entry is copied to a hidden temporary name beside
// the target (every file flushed to disk and checked for its full length),
// the copy is renamed into place, and only then is the source deleted: a
// process that dies midway leaves the source whole and at worst a hidden
// partial copy. Such a copy can take long: call this from a worker thread.
// Safe on any thread.

// 0 on success, else the errno value of the failure (EEXIST when anything,
// even a dangling link, is at `to`); on failure the source is untouched. A
// source that cannot be fully deleted after a complete copy still counts as
// moved: what is left of it is a second copy, never the only one.
int moveWithoutReplacing(const QString& from, const QString& to);

// One rename(2) that refuses an existing target and never copies: for moves
// that stay in one folder. 0 or the errno value, as above.
int renameWithoutReplacing(const QString& from, const QString& to);

// The system's own description of an errno value ("Permission denied").
QString systemErrorDescription(int error);
