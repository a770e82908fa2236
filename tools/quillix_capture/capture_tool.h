// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QStringList>

// quillix-capture's exit statuses; --help lists them too.
enum class CaptureExitStatus : int {
    written = 0,
    badArguments = 2,
    noDisplay = 3,
    unknownWindow = 4,
    windowNotShown = 5,
    emptyArea = 6,
    writeFailed = 7,
    grabFailed = 8,
};

// Runs one command line (without the program name): grabs, writes the PNG,
// prints help to standard output or one line of reason to standard error.
CaptureExitStatus runCaptureTool(const QStringList& arguments);
