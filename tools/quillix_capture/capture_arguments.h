// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QRect>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <optional>

// What one command line asks quillix-capture to do.
struct CaptureArguments {
    enum class Target { screen, window, area };

    Target target = Target::screen;
    std::uint32_t windowId = 0;  // for Target::window
    QRect area;                  // for Target::area, in screen coordinates
    QString outputPath;
    bool showHelp = false;
};

// The arguments, or a one-line reason why the command line is not usable.
struct ParsedCaptureArguments {
    std::optional<CaptureArguments> arguments;
    QString error;
};

// `arguments` without the program name.
ParsedCaptureArguments parseCaptureArguments(const QStringList& arguments);

// The text --help prints.
QString captureUsage();
