// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "app/command_line.h"

#include <QCoreApplication>

CommandLine CommandLine::parse(const QStringList& arguments) {
    Action action = Action::run;
    for (const QString& argument : arguments) {
        if (argument == QLatin1String("--help") || argument == QLatin1String("-h")) {
            action = action == Action::showVersion ? action : Action::showHelp;
        } else if (argument == QLatin1String("--version")) {
            action = action == Action::showHelp ? action : Action::showVersion;
        } else {
            // The first stray argument is named; nothing else runs.
            const QString what = argument.startsWith(QLatin1Char('-'))
                                     ? QStringLiteral("unknown option")
                                     : QStringLiteral("unexpected argument");
            return {Action::refuse,
                    QStringLiteral("quillix: %1 '%2' (see quillix --help)\n").arg(what, argument)};
        }
    }
    switch (action) {
        case Action::showHelp:
            return {action, usage()};
        case Action::showVersion:
            return {action, version()};
        default:
            return {Action::run, QString()};
    }
}

QString CommandLine::usage() {
    return QStringLiteral(
        "Usage: quillix [--help | --version]\n"
        "\n"
        "Quillix is a screenshot companion that lives in the system tray: global\n"
        "hotkeys capture an area of the screen (with an annotation editor) or a\n"
        "window, and a gallery under the tray icon keeps the captures. It starts\n"
        "without options and takes no others yet; a second start opens the\n"
        "gallery of the copy that already runs.\n"
        "\n"
        "  -h, --help   print this text and exit\n"
        "  --version    print the version and exit\n");
}

QString CommandLine::version() {
    return QStringLiteral("Quillix ") + QCoreApplication::applicationVersion() + QLatin1Char('\n');
}
