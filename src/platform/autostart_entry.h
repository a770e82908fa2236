// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QString>

// Starting the program at login: a desktop entry in the XDG autostart folder
// ($XDG_CONFIG_HOME/autostart), which every freedesktop session reads.
class AutostartEntry {
public:
    // The entry $XDG_CONFIG_HOME/autostart/quillix.desktop starting `program`.
    explicit AutostartEntry(const QString& program);
    // Tests give their own entry path.
    AutostartEntry(const QString& entryPath, const QString& program);

    QString path() const { return path_; }
    bool exists() const;

    // Writes (or rewrites) the entry; false when it cannot be written.
    bool enable() const;
    // Removes the entry; true when none is left.
    bool disable() const;

    // The entry's text for `program`.
    static QByteArray contents(const QString& program);
    // `argument` as one word of a desktop entry's Exec line: quoted where it
    // holds a reserved character, with the escapes the key's value needs.
    static QString quotedExecArgument(const QString& argument);

private:
    QString path_;
    QString program_;
};
