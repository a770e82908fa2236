// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QString>
#include <QtGlobal>
#include <optional>
#include <unordered_set>

#include "storage/envelope_file.h"

// Remembers which files the program itself wrote, by inode number, so that a
// capture stays "ours" after it is renamed or moved within its volume while a
// copy of it does not. Kept in the sealed registry.bin as a JSON array of
// numbers. One shared instance, confined to the GUI thread; entries are never
// pruned, only moved along when a capture is rewritten.
class CaptureRegistry {
public:
    static CaptureRegistry& shared();

    // Loads from `directory`/registry.bin after moving in, once, an older
    // registry.json or registry.bin from `legacyDirectory`. An entry that is
    // not an inode number is left out on its own.
    CaptureRegistry(const QString& directory, const QString& legacyDirectory);

    CaptureRegistry(const CaptureRegistry&) = delete;
    CaptureRegistry& operator=(const CaptureRegistry&) = delete;

    // Adds the inode of the file at `filePath` and saves; a file that cannot
    // be stat'ed is not recorded.
    void record(const QString& filePath);
    // A capture rewritten through a new file: its record moves from
    // `previousInode` to the file's new inode, so that the freed number,
    // which the file system hands out again, cannot make a stranger's file
    // ours. Nothing happens when `previousInode` is not ours.
    void moveRecord(quint64 previousInode, const QString& filePath);

    // The file's inode number; nothing when it cannot be stat'ed. Safe on
    // any thread.
    static std::optional<quint64> inodeOf(const QString& filePath);

    bool contains(quint64 inode) const { return capturedInodes_.contains(inode); }

    // A copy for scans on worker threads, which must not touch the registry.
    std::unordered_set<quint64> inodes() const { return capturedInodes_; }

    void save();

    QString filePath() const { return file_.path(); }

private:
    void load();

    EnvelopeFile file_;
    std::unordered_set<quint64> capturedInodes_;
};
