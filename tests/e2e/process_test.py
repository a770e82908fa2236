#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Quillix developers

"""The program as a process: hotkey failure lines, held hotkeys, a second
copy, keyboard-layout switches, notification pictures through a quit and a
crash, and the command line."""
import ctypes
import glob
import os
import re
import subprocess
import sys
import time
import unittest

sys.path.insert(0, os.path.dirname(__file__))
import quillix_session  # noqa: E402
from quillix_session import (OVERLAY, POPOVER, AppTestCase, FreshHome,  # noqa: E402
                             KeyGrabHolder, RunningApp, call_app, is_shown, main,
                             viewable_windows, wait_for_no_window, wait_for_window, wait_until,
                             window_tree, xdotool)

ATTACHMENT = re.compile(r"^[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12}\.png$")


def hold(combination, seconds, while_held=None):
    """Holds a combination down (the X server repeats it) and calls while_held
    every 50 ms until it is released."""
    xdotool("keydown", combination)
    try:
        deadline = time.monotonic() + seconds
        while time.monotonic() < deadline:
            if while_held:
                while_held()
            time.sleep(0.05)
    finally:
        xdotool("keyup", combination)


def popover_shown():
    return bool(viewable_windows(POPOVER))


def close_popover():
    if popover_shown():
        call_app("TogglePopover")
        wait_until(lambda: not popover_shown(), what="the popover to close")


def lock_layout_group(group):
    """Switches the keyboard to another layout of its keymap, as a desktop's
    layout menu does."""
    xlib = ctypes.CDLL("libX11.so.6")
    xlib.XOpenDisplay.restype = ctypes.c_void_p
    xlib.XOpenDisplay.argtypes = [ctypes.c_char_p]
    xlib.XkbLockGroup.argtypes = [ctypes.c_void_p, ctypes.c_uint, ctypes.c_uint]
    xlib.XCloseDisplay.argtypes = [ctypes.c_void_p]
    display = xlib.XOpenDisplay(None)
    use_core_keyboard = 0x100
    assert xlib.XkbLockGroup(display, use_core_keyboard, group)
    xlib.XCloseDisplay(display)


def displayed_notifications():
    return int(subprocess.run(["dunstctl", "count", "displayed"], capture_output=True,
                              text=True).stdout or 0)


class RunningCopy(AppTestCase):
    """One running program, with Super+6 held by another program, a window to
    capture and a temporary folder of its own."""

    @classmethod
    def prepare(cls):
        settings = subprocess.run(["xset", "q"], capture_output=True, text=True).stdout
        assert re.search(r"auto repeat:\s+on", settings), "the X server must repeat held keys"
        cls.temporary = os.path.join(cls.home.root, "tmp")
        os.makedirs(cls.temporary)
        cls.home.env["TMPDIR"] = cls.temporary
        cls.clock = subprocess.Popen(["xclock", "-geometry", "200x200+300+150"])
        cls.window = subprocess.run(["xdotool", "search", "--sync", "--onlyvisible", "--class",
                                     "xclock"], capture_output=True, text=True,
                                    check=True).stdout.split()[0]
        cls.holder = KeyGrabHolder("6", "super")

    @classmethod
    def tearDownClass(cls):
        cls.holder.release()
        cls.clock.terminate()
        try:
            super().tearDownClass()
        finally:
            subprocess.run(["setxkbmap", "us"], check=True)

    def test_1_a_held_combination_fails_alone_with_a_line_saying_what_it_means(self):
        lines = self.app.output().splitlines()
        failure = "⚠️ Quillix: failed to register hotkey id 5, error 10"
        self.assertIn(failure, lines)
        explanation = lines[lines.index(failure) + 1]
        self.assertTrue(explanation.startswith("⚠️ Quillix: "), explanation)
        self.assertIn("⌘6", explanation)
        self.assertIn("another program", explanation)
        for other in (1, 2, 3, 4, 6):
            self.assertIn(f"registered (id {other})", self.app.output())

    def test_2_holding_the_area_key_opens_one_editor_and_a_new_press_the_next(self):
        hold("super+2", 1.5)
        wait_for_window(OVERLAY, "the area editor")
        time.sleep(0.8)  # the shell waits 0.55 s before each editor opens
        self.assertEqual(len(viewable_windows(OVERLAY)), 1)
        xdotool("key", "Escape")
        wait_for_no_window(OVERLAY)
        # A real release followed by a new press is a new press.
        xdotool("key", "super+2")
        wait_for_window(OVERLAY, "the next area editor")
        xdotool("key", "Escape")
        wait_for_no_window(OVERLAY)

    def test_3_holding_the_open_menu_key_toggles_the_popover_once(self):
        self.assertFalse(popover_shown())
        samples = []
        hold("super+shift+1", 1.5, lambda: samples.append(popover_shown()))
        wait_until(popover_shown, what="the popover")
        # Once open it stays open: no flicker while the keys are down.
        self.assertNotIn(False, samples[samples.index(True):] if True in samples else [])
        time.sleep(0.2)
        self.assertTrue(popover_shown())
        xdotool("key", "super+shift+1")
        wait_until(lambda: not popover_shown(), what="the popover to close")

    def data_files(self):
        found = {}
        for folder in (self.home.data_dir, os.path.join(self.home.config, "Quillix")):
            for path in glob.glob(os.path.join(folder, "*")):
                stat = os.stat(path)
                found[path] = (stat.st_ino, stat.st_mtime_ns, stat.st_size)
        return found

    def test_4_a_second_copy_opens_the_popover_of_the_first_and_exits(self):
        close_popover()
        before = self.data_files()
        self.assertTrue(before, "the first copy keeps its data files")
        for attempt in range(2):  # the second attempt finds the popover open and keeps it so
            second = subprocess.run([quillix_session.BINARY], env=self.home.env,
                                    capture_output=True, text=True, timeout=20,
                                    stdin=subprocess.DEVNULL)
            self.assertEqual(second.returncode, 0, second.stdout + second.stderr)
            lines = [line for line in second.stdout.splitlines() if line.strip()]
            self.assertEqual(len(lines), 1, second.stdout)
            self.assertIn("already running", lines[0])
            wait_until(popover_shown, what="the first copy's popover")
        time.sleep(0.3)
        self.assertTrue(popover_shown())
        self.assertTrue(self.app.alive())
        tray_icons = sum('("quillix"' in line and "22x22" in line
                         for line in window_tree().splitlines())
        self.assertEqual(tray_icons, 1)
        self.assertEqual(self.data_files(), before)
        close_popover()

    def test_5_the_header_key_label_follows_a_layout_switch(self):
        call_app("ShowPopover")
        wait_until(popover_shown, what="the popover")
        try:
            wait_until(lambda: is_shown("2"), what="the area key labelled 2")
            # On a French keyboard the "2" key types é: a new keymap, then a
            # switch between the two layouts of one keymap.
            subprocess.run(["setxkbmap", "fr"], check=True)
            wait_until(lambda: is_shown("É") and not is_shown("2"), what="the label É")
            subprocess.run(["setxkbmap", "-layout", "us,fr"], check=True)
            wait_until(lambda: is_shown("2"), what="the label 2 of the first layout")
            lock_layout_group(1)
            wait_until(lambda: is_shown("É"), what="the label É of the second layout")
            lock_layout_group(0)
            wait_until(lambda: is_shown("2"), what="the label 2 again")
        finally:
            subprocess.run(["setxkbmap", "us"], check=True)
            close_popover()

    def attachments(self):
        return sorted(name for name in os.listdir(self.temporary) if ATTACHMENT.match(name))

    def capture_with_notification(self):
        before, shown = set(self.attachments()), displayed_notifications()
        self.assertIsNotNone(call_app("CaptureWindow", f"uint32:{self.window}"))
        wait_until(lambda: displayed_notifications() > shown, what="the notification")
        new = set(self.attachments()) - before
        self.assertEqual(len(new), 1, self.attachments())
        return new.pop()

    def test_6_notification_pictures_go_with_their_popup_at_quit_and_after_a_crash(self):
        strangers = ["0A0A0A0A-0000-4000-8000-000000000000.png", "notes.png"]
        for name in strangers:
            with open(os.path.join(self.temporary, name), "wb") as other:
                other.write(b"\x89PNG\r\n\x1a\nnot ours")
        subprocess.run(["dunstctl", "close-all"], check=True)
        closed = self.capture_with_notification()
        subprocess.run(["dunstctl", "close-all"], check=True)
        wait_until(lambda: closed not in self.attachments(), what="the closed popup's picture")

        left = self.capture_with_notification()
        self.app.process.kill()  # a crash: nothing is cleaned up
        self.app.stop()
        self.assertEqual(self.attachments(), sorted([left, strangers[0]]))
        type(self).app = RunningApp.ready(self.home)
        wait_until(lambda: left not in self.attachments(), what="the crashed run's picture")

        # Captures within one second share a name, and dunst folds a popup
        # that repeats one on screen into it.
        subprocess.run(["dunstctl", "close-all"], check=True)
        self.capture_with_notification()
        self.app.stop_cleanly()
        self.assertEqual(sorted(os.listdir(self.temporary)), strangers)


class CommandLine(unittest.TestCase):
    def test_help_version_and_refusals_need_no_display_and_write_nothing(self):
        home = FreshHome()
        self.addCleanup(home.cleanup)
        env = {name: value for name, value in home.env.items()
               if name not in ("DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "WAYLAND_DISPLAY")}
        config_before = files_under(home.config)

        def run(*arguments):
            return subprocess.run([quillix_session.BINARY, *arguments], env=env,
                                  capture_output=True, text=True, timeout=20,
                                  stdin=subprocess.DEVNULL)

        usage = run("--help")
        self.assertEqual((usage.returncode, usage.stderr), (0, ""))
        self.assertIn("--version", usage.stdout)
        version = run("--version")
        self.assertEqual((version.returncode, version.stdout), (0, "Quillix 1.0.0\n"))
        for arguments in (["--frobnicate"], ["-x"], ["extra"], ["--help", "--bogus"]):
            refused = run(*arguments)
            self.assertEqual((refused.returncode, refused.stdout), (2, ""), arguments)
            self.assertEqual(len(refused.stderr.splitlines()), 1, refused.stderr)
            self.assertIn(f"'{arguments[-1]}'", refused.stderr)
        self.assertEqual(os.listdir(home.data), [])
        self.assertEqual(files_under(home.config), config_before)


def files_under(folder):
    """Every file below `folder` with its contents."""
    found = {}
    for parent, _, names in os.walk(folder):
        for name in names:
            with open(os.path.join(parent, name), "rb") as file:
                found[os.path.join(parent, name)] = file.read()
    return found


if __name__ == "__main__":
    main()
