// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

// The one way the program replaces or creates a file whose loss would lose
// user data (captures, rewritten captures, data files): the bytes go to a
// hidden temporary file beside the target, are flushed to disk, and the
// temporary file is renamed over the target, so a crash leaves either the
// old file or the new one, never a half-written one. Safe on any thread.

enum class AtomicWriteMode {
    // Replace the target if it exists (rewrites, data files).
    replace,
    // Fail if the target exists by the time the rename happens (new captures).
    neverReplace,
};

// `permissions` are the file's permission bits; without them a replaced file
// keeps its own and a new one gets 0644. Returns false (and leaves the target
// as it was, with no temporary file behind) on any failure; errno tells why.
bool writeFileAtomically(const QString& path, const QByteArray& data,
                         AtomicWriteMode mode = AtomicWriteMode::replace,
                         std::optional<unsigned> permissions = std::nullopt);

// Removes the temporary files that writes of `path` cut short by a crash or a
// kill left beside it; returns how many. Only for files that nothing else
// writes at the same time (a store's data file at its store's start).
int removeLeftoverTemporaryFiles(const QString& path);
