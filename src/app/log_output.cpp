// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "app/log_output.h"

#include <QByteArray>
#include <QString>
#include <QtGlobal>
#include <cstdio>
#include <cstring>

namespace {

QtMessageHandler qtHandler = nullptr;

bool isOurs(const QMessageLogContext& context) {
    return context.category != nullptr && std::strncmp(context.category, "quillix.", 8) == 0;
}

void writeLine(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (!isOurs(context)) {
        qtHandler(type, context, message);
        return;
    }
    const QByteArray utf8 = message.toUtf8();
    std::fwrite(utf8.constData(), 1, static_cast<size_t>(utf8.size()), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

}  // namespace

void installLogOutput() {
    qtHandler = qInstallMessageHandler(writeLine);
}
