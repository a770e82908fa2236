// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include <QString>
#include <QStringList>

#include "capture_tool.h"

// quillix-capture: see captureUsage() in capture_arguments.cpp. It needs no
// Qt application object: QImage encodes the PNG and xcb talks to the server,
// so no Qt platform plugin and no second X connection are involved.
int main(int argc, char** argv) {
    QStringList arguments;
    for (int i = 1; i < argc; ++i) {
        arguments.append(QString::fromLocal8Bit(argv[i]));
    }
    return static_cast<int>(runCaptureTool(arguments));
}
