#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Quillix developers

"""The gallery from the keyboard and through the accessibility bus, the way a
keyboard user and a screen reader meet it: Tab order across the popover and
the pill, arrows, Return, the menu keys, a cell's accessible action, Quit."""
import os
import subprocess
import sys
import time
import warnings

warnings.simplefilter("ignore", ImportWarning)  # pyatspi's importer
sys.path.insert(0, os.path.dirname(__file__))
from quillix_session import (POPOVER, AppTestCase, main, viewable_windows,  # noqa: E402
                             wait_for_no_window, wait_for_window, wait_until, write_pictures,
                             xdotool)

NAMES = ["alpha.png", "Screenshot beta.png", "gamma.png"]  # oldest first


def dbus_reply_value(arguments):
    reply = subprocess.run(["dbus-send", "--print-reply", *arguments], capture_output=True,
                           text=True)
    if reply.returncode != 0:
        return None
    lines = reply.stdout.splitlines()[1:]
    return lines[0].strip().partition(" ")[2].strip('"') if lines else None


class AccessibilityBus:
    """at-spi2's bus, started in the test desktop before the program so that
    the program registers its widgets there."""

    def __init__(self, env):
        self.launcher = subprocess.Popen(
            ["/usr/libexec/at-spi-bus-launcher", "--launch-immediately", "--a11y=1"], env=env,
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        wait_until(lambda: dbus_reply_value(
            ["--session", "--dest=org.freedesktop.DBus", "/org/freedesktop/DBus",
             "org.freedesktop.DBus.NameHasOwner", "string:org.a11y.Bus"]) == "true",
            what="the accessibility bus")

    def stop(self):
        address = dbus_reply_value(["--session", "--dest=org.a11y.Bus", "/org/a11y/bus",
                                    "org.a11y.Bus.GetAddress"])
        registry = None
        if address:
            # The registry daemon outlives the launcher: stop it by its PID.
            registry = dbus_reply_value(
                [f"--bus={address}", "--dest=org.freedesktop.DBus", "/org/freedesktop/DBus",
                 "org.freedesktop.DBus.GetConnectionUnixProcessID",
                 "string:org.a11y.atspi.Registry"])
        self.launcher.terminate()
        self.launcher.wait(timeout=10)
        if registry:
            pid = int(registry.split()[-1])
            try:
                with open(f"/proc/{pid}/comm") as comm:
                    if comm.read().startswith("at-spi2-regis"):
                        os.kill(pid, 15)
            except OSError:
                pass


def accessible_application():
    import pyatspi
    for application in pyatspi.Registry.getDesktop(0):
        if application is not None and application.name == "Quillix":
            return application
    return None


def focused_name():
    """The accessible name of what has the keyboard focus in the program: in
    a focused list, its current item. (Qt marks a list's current item
    focused even while the list itself is not.)"""
    import pyatspi
    application = accessible_application()
    if application is None:
        return None

    def find(node, parent_focused):
        focused = node.getState().contains(pyatspi.STATE_FOCUSED)
        is_item = node.getRole() in (pyatspi.ROLE_LIST_ITEM, pyatspi.ROLE_TABLE_CELL)
        found = node.name if focused and (parent_focused or not is_item) else None
        for child in node:
            if child is not None:
                found = find(child, focused) or found
        return found
    return find(application, False)


def accessible_cell(name):
    import pyatspi
    return pyatspi.findDescendant(accessible_application(), lambda node: node.name == name and
                                  node.getRole() in (pyatspi.ROLE_LIST_ITEM,
                                                     pyatspi.ROLE_TABLE_CELL))


class GalleryFromTheKeyboard(AppTestCase):
    LISTING = len(NAMES)

    @classmethod
    def prepare(cls):
        write_pictures(cls.home.folders["Desktop"], NAMES)
        cls.bus = AccessibilityBus(cls.home.env)

    @classmethod
    def tearDownClass(cls):
        try:
            super().tearDownClass()
        finally:
            cls.bus.stop()

    def open_gallery(self):
        xdotool("key", "super+shift+1")
        wait_for_window(POPOVER, "the gallery popover")
        wait_until(lambda: focused_name() is not None, what="keyboard focus in the gallery")

    def press(self, key, expect_focus):
        xdotool("key", key)
        wait_until(lambda: focused_name() == expect_focus, timeout=5,
                   what=f"{key} to move the focus to {expect_focus!r} "
                        f"(it is on {focused_name()!r})")

    def test_tab_arrows_return_menu_keys_quit_and_the_accessible_action(self):
        self.open_gallery()
        self.assertEqual(focused_name(), "Filter")
        # Tab: header → grid (its first cell, the newest) → the pill's
        # buttons → round to the header again; Shift+Tab walks back.
        order = ["gamma.png", "Settings", "Shelves", "Quit", "Filter"]
        for name in order:
            self.press("Tab", name)
        for name in reversed(order[:-1]):
            self.press("shift+Tab", name)

        # Arrows move between cells; Return opens the one with the focus.
        self.press("Right", "Screenshot beta.png")
        self.press("Right", "alpha.png")
        self.press("Left", "Screenshot beta.png")
        xdotool("key", "Return")
        wait_for_window("Screenshot beta", "the preview by Return")
        self.assertFalse(viewable_windows(POPOVER))
        # Nothing is drawn on it: Escape closes it without a question.
        time.sleep(0.5)
        xdotool("key", "Escape")
        wait_for_no_window("Screenshot beta", "Escape to close it")

        # The Menu key opens the focused cell's menu: Color Label ▸ Red.
        self.open_gallery()
        if focused_name() != "Screenshot beta.png":
            self.press("Tab", "gamma.png")
            self.press("Right", "Screenshot beta.png")
        xdotool("key", "Menu")
        time.sleep(0.5)
        xdotool("key", "Down", "Right")
        time.sleep(0.3)
        xdotool("key", "Return")
        wait_until(lambda: self.home.metadata().get("Screenshot beta.png") ==
                   {"colorLabel": "red"}, what="the red label chosen from the keyboard menu")
        # Shift+F10 does the same for the cell to its left.
        self.press("Left", "gamma.png")
        xdotool("key", "shift+F10")
        time.sleep(0.5)
        xdotool("key", "Down", "Right", "Down")
        time.sleep(0.3)
        xdotool("key", "Return")
        wait_until(lambda: self.home.metadata().get("gamma.png") == {"colorLabel": "orange"},
                   what="the orange label chosen after Shift+F10")

        # A screen reader's action on a cell opens it.
        cell = wait_until(lambda: accessible_cell("alpha.png"), what="the accessible cell")
        action = cell.queryAction()
        self.assertGreaterEqual(action.nActions, 1)
        action.doAction(0)
        wait_for_window("alpha", "the preview by the cell's action")
        time.sleep(0.5)
        xdotool("key", "ctrl+w")
        wait_for_no_window("alpha", "Ctrl+W to close it")

        # The pill's "Quit", reached by Tab and pressed with Return.
        self.open_gallery()
        for _ in range(8):
            if focused_name() == "Quit":
                break
            xdotool("key", "shift+Tab")
            time.sleep(0.2)
        self.assertEqual(focused_name(), "Quit")
        xdotool("key", "Return")
        wait_until(lambda: not self.app.alive(), what="Quit pressed from the keyboard")
        self.assertEqual(self.app.process.returncode, 0)


if __name__ == "__main__":
    main()
