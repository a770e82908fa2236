// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "platform/autostart_entry.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>
#include <algorithm>

namespace {

QString defaultEntryPath() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/autostart/quillix.desktop");
}

// Characters that make an Exec word need quotes.
const QString kReserved = QStringLiteral(" \t\n\"'\\><~|&;$*?#()`");

}  // namespace

AutostartEntry::AutostartEntry(const QString& program)
    : AutostartEntry(defaultEntryPath(), program) {}

AutostartEntry::AutostartEntry(const QString& entryPath, const QString& program)
    : path_(entryPath), program_(program) {}

bool AutostartEntry::exists() const {
    return QFileInfo::exists(path_);
}

bool AutostartEntry::enable() const {
    if (!QDir().mkpath(QFileInfo(path_).absolutePath())) {
        return false;
    }
    QSaveFile file(path_);
    if (!file.open(QIODevice::WriteOnly)) {
        return false;
    }
    file.write(contents(program_));
    return file.commit();
}

bool AutostartEntry::disable() const {
    return !exists() || QFile::remove(path_);
}

QByteArray AutostartEntry::contents(const QString& program) {
    const QString text = QStringLiteral(
                             "[Desktop Entry]\n"
                             "Type=Application\n"
                             "Name=Quillix\n"
                             "Comment=Screenshots and screen recordings from the system tray\n"
                             "Exec=%1\n"
                             "Icon=quillix\n"
                             "Terminal=false\n"
                             "Categories=Graphics;\n"
                             "X-GNOME-Autostart-enabled=true\n")
                             .arg(quotedExecArgument(program));
    return text.toUtf8();
}

QString AutostartEntry::quotedExecArgument(const QString& argument) {
    QString word = argument;
    // A literal percent sign is written twice: single ones are field codes.
    word.replace(QLatin1Char('%'), QStringLiteral("%%"));
    const bool needsQuotes =
        std::any_of(word.cbegin(), word.cend(), [](QChar c) { return kReserved.contains(c); });
    if (!needsQuotes) {
        return word;
    }
    QString quoted;
    for (const QChar c : word) {
        // Inside quotes these four take a backslash; and every backslash of
        // the result is doubled once more, as the key's string value needs.
        if (c == QLatin1Char('\\')) {
            quoted += QStringLiteral("\\\\\\\\");
        } else if (c == QLatin1Char('"') || c == QLatin1Char('`') || c == QLatin1Char('$')) {
            quoted += QStringLiteral("\\\\") + c;
        } else {
            quoted += c;
        }
    }
    return QLatin1Char('"') + quoted + QLatin1Char('"');
}
