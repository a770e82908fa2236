// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QString>
#include <optional>

// What happens between a finished download and quitting: check the archive,
// unpack it, find the new Quillix.app and start the script that swaps it in
// once the program has gone. Runs on a worker thread (unzip is waited for);
// touches nothing the GUI owns. The running Quillix.app is never changed
// here — only the script, after the quit, replaces it.
struct UpdateInstallJob {
    QString archivePath;
    QString version;
    std::optional<QString> sha256;
    QString tempFolder;
    QString runningAppFolder;
    // The program's process, which the script waits for (at most 10 s)
    // before it replaces anything: the new copy must not meet the old one
    // still running. 0 waits for nothing.
    qint64 quittingProcess = 0;

    // The reason it failed (shown after "Install failed: "), or nothing once
    // the script is running and the program should quit.
    [[nodiscard]] std::optional<QString> run() const;

    // The bash script that waits for the program to quit, replaces appFolder
    // with newAppFolder, starts the new program and deletes itself.
    static QString scriptText(const QString& appFolder, const QString& newAppFolder,
                              qint64 quittingProcess = 0);
    // text as one bash word, whatever characters it holds.
    static QString shellQuoted(QString text);

private:
    [[nodiscard]] std::optional<QString> checkChecksum() const;
    [[nodiscard]] std::optional<QString> unpack(const QString& folder) const;
    [[nodiscard]] std::optional<QString> startScript(const QString& newAppFolder) const;
};
