// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QStringList>
#include <optional>

// The desktop's own settings pages, where the running desktop has one we
// know of and its program is installed.
namespace DesktopSettings {

// The command that opens the notification settings: GNOME's and Plasma's
// settings, or the Xfce notification daemon's; nothing elsewhere.
std::optional<QStringList> notificationSettingsCommand();

// Starts `command` detached; false when it could not be started.
bool open(const QStringList& command);

}  // namespace DesktopSettings
