// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QObject>

class AppDelegate;

// A small D-Bus interface on the session bus ("org.quillix.Quillix" at
// "/org/quillix/Quillix") through which scripts, desktop shortcuts and the
// end-to-end tests drive the running program, e.g.
//   dbus-send --session --dest=org.quillix.Quillix --type=method_call
//       /org/quillix/Quillix org.quillix.Quillix.CaptureWindow uint32:31457287
class AppControl : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.quillix.Quillix")

public:
    explicit AppControl(AppDelegate& delegate, QObject* parent = nullptr);

    // Which copy of the program this process is on the session bus.
    enum class Instance {
        first,           // it now holds "org.quillix.Quillix"
        alreadyRunning,  // another process holds the name
        unknown,         // there is no bus to ask
    };
    // Claims the bus name. Called before anything else is built, so that a
    // second copy leaves without a tray icon, a hotkey or a data file.
    static Instance claimName();
    // Asks the copy that holds the name to open its gallery; false when it
    // did not answer.
    static bool openGalleryOfRunningCopy();

    // Serves the interface; false when the bus is missing or another
    // instance holds the name.
    bool publish();

public Q_SLOTS:
    // Captures the X11 window with this id into the save folder.
    Q_SCRIPTABLE void CaptureWindow(uint windowId);
    Q_SCRIPTABLE void TogglePopover();
    // Opens the popover; leaves it open when it already is.
    Q_SCRIPTABLE void ShowPopover();
    Q_SCRIPTABLE bool IsPopoverShown() const;
    // File names of the capture library's list, newest first.
    Q_SCRIPTABLE QStringList ListedFiles() const;
    // The gallery's own-captures filter.
    Q_SCRIPTABLE void SetShowOnlyQuillixItems(bool showOnly);
    // Where a visible control is on screen, found by its accessible name (for
    // a grid cell: its file name), as "x,y,width,height"; empty when none is
    // shown. Lets scripts and tests click what a screen reader would find.
    Q_SCRIPTABLE QString LocateControl(const QString& accessibleName) const;

private:
    AppDelegate& delegate_;
};
