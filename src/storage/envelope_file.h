// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

// Where the program keeps its data files, and the one read rule and one write
// rule that every store uses for them.

// $XDG_DATA_HOME/Quillix (~/.local/share/Quillix).
QString dataDirectory();

// The XDG documents folder + /Quillix, where older versions kept their files.
QString legacyDataDirectory();

// The read rule: the opened envelope, else the raw bytes (older versions wrote
// bare JSON); nothing when the file cannot be read at all.
std::optional<QByteArray> readEnvelopeFile(const QString& path);

// The write rule: seal the whole document and replace the file atomically
// (temporary file beside it, flushed to disk, renamed over it). New files are
// private to the user (0600). Returns false on any failure and leaves the
// previous file untouched; callers drop the failure on purpose.
bool writeEnvelopeFile(const QString& path, const QByteArray& json);

// One store's data file. Computing its location creates the data folder
// (private to the user) and moves older copies in from the legacy folder once.
// A file that exists but cannot be read or decoded (wholly or in part) is
// copied aside as NAME.unreadable before the next save replaces it, so
// damaged data or data from a newer version is never lost; a file that
// cannot be copied is moved aside, and one that cannot be moved either is
// replaced all the same.
class EnvelopeFile {
public:
    // `legacyNames` are tried in order; the first one found is moved in when
    // no file exists at the new location yet.
    EnvelopeFile(const QString& directory, const QString& fileName,
                 const QString& legacyDirectory = {}, const QStringList& legacyNames = {});

    const QString& path() const { return path_; }

    // The read rule on this file. A file that exists but cannot be read is
    // kept aside before the next write.
    std::optional<QByteArray> read();

    // The store could not decode all of what read() returned.
    void markUndecodable() { keepAsideBeforeWrite_ = true; }

    // The file's JSON document: the read rule, then the JSON decoding.
    // Nothing when the file is missing, cannot be read or holds no JSON; the
    // last two are kept aside before the next write. What a document of the
    // wrong shape means is the store's to decide.
    std::optional<nlohmann::ordered_json> readJson();

    // How a document of entries holds them.
    enum class EntryList { array, object };

    // Reads a document that is a list of entries, each decoded on its own by
    // `takeEntry`, which returns false for one it cannot decode; the name is
    // a member's name in an object, the index in an array. An undecodable
    // entry costs only itself, a document of another shape gives no entries,
    // and either keeps the whole file aside before the next write.
    void readEntries(EntryList shape,
                     const std::function<bool(const std::string& name,
                                              const nlohmann::ordered_json& entry)>& takeEntry);

    // The write rule on this file, after keeping a damaged file aside.
    bool write(const QByteArray& json);

private:
    void keepDamagedFileAside();

    QString path_;
    bool keepAsideBeforeWrite_ = false;
};
