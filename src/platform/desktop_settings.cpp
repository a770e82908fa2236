// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "platform/desktop_settings.h"

#include <QProcess>
#include <QProcessEnvironment>
#include <QStandardPaths>

namespace {

struct KnownPage {
    const char* desktop;  // a name in XDG_CURRENT_DESKTOP
    QStringList command;
};

QStringList currentDesktops() {
    return QProcessEnvironment::systemEnvironment()
        .value(QStringLiteral("XDG_CURRENT_DESKTOP"))
        .split(QLatin1Char(':'), Qt::SkipEmptyParts);
}

}  // namespace

std::optional<QStringList> DesktopSettings::notificationSettingsCommand() {
    const QList<KnownPage> pages{
        {"GNOME", {QStringLiteral("gnome-control-center"), QStringLiteral("notifications")}},
        {"KDE", {QStringLiteral("systemsettings"), QStringLiteral("kcm_notifications")}},
        {"XFCE", {QStringLiteral("xfce4-notifyd-config")}},
    };
    const QStringList desktops = currentDesktops();
    for (const KnownPage& page : pages) {
        if (desktops.contains(QLatin1String(page.desktop), Qt::CaseInsensitive) &&
            !QStandardPaths::findExecutable(page.command.first()).isEmpty()) {
            return page.command;
        }
    }
    return std::nullopt;
}

bool DesktopSettings::open(const QStringList& command) {
    return !command.isEmpty() && QProcess::startDetached(command.first(), command.mid(1));
}
