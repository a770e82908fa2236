// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QString>
#include <QStringList>

// What the command line asks of the program. Besides running, it only
// answers --help and --version; anything else is refused, so that a mistyped
// option never starts a second tray program.
class CommandLine {
public:
    enum class Action { run, showHelp, showVersion, refuse };

    // `arguments` without the program's own name.
    static CommandLine parse(const QStringList& arguments);

    Action action() const { return action_; }
    // What to print: the usage or version text (standard output), or the
    // one-line refusal (standard error); empty for `run`.
    QString text() const { return text_; }
    // The process's exit status for everything but `run`.
    int exitStatus() const { return action_ == Action::refuse ? kUsageError : 0; }

    static QString usage();
    static QString version();

private:
    // The conventional status for a command-line mistake.
    static constexpr int kUsageError = 2;

    CommandLine(Action action, QString text) : action_(action), text_(std::move(text)) {}

    Action action_;
    QString text_;
};
