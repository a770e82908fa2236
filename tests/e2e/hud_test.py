#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Quillix developers
"""The capture HUD at the pointer and window capture by pointing, in the
running program, driven with the hotkey, the pointer and clicks like a user.
The cases run in name order on one program."""
import os
import subprocess
import sys
import time

sys.path.insert(0, os.path.dirname(__file__))
import quillix_session  # noqa: E402
from quillix_session import (POPOVER, AppTestCase, NotificationMonitor,  # noqa: E402
                             captures_in, click_at, click_control, clipboard_png,
                             colour_histogram, differing_pixels, frame_extents, open_gallery,
                             open_test_window, viewable_windows, wait_for_no_window,
                             wait_for_window, wait_until, window_geometry, xdotool)

TEST_WINDOW = None  # test_window, from the command line
HUD = "Capture HUD"
OUTLINE = "Window outline"
BACK = (208, 32, 32)
FRONT = (32, 64, 208)
SCREEN = (1920, 1080)


def write_auto_dismiss(home, seconds):
    home.write_preferences(autoDismissSeconds=seconds)


def open_hud(x, y):
    """The HUD opened at (x, y) with its hotkey: its id, and when it showed."""
    xdotool("mousemove", str(x), str(y))
    time.sleep(0.15)
    xdotool("key", "super+shift+2")
    hud = wait_for_window(HUD, "the HUD")
    shown = time.monotonic()
    wait_until(lambda: window_geometry(hud)[2] == 260, what="the HUD laid out")
    return hud, shown


class CaptureHUD(AppTestCase):
    @classmethod
    def prepare(cls):
        # Long enough for any machine to reach the rows before it goes.
        write_auto_dismiss(cls.home, 60)
        cls.monitor = NotificationMonitor(os.path.join(cls.home.root, "notify.log"))
        cls.desktop = cls.home.folders["Desktop"]
        # Two windows of another program, the front one over part of the back.
        cls.back_process, cls.back = open_test_window(TEST_WINDOW, 200, 200, 500, 360, BACK,
                                                      "Back window")
        cls.front_process, cls.front = open_test_window(TEST_WINDOW, 450, 350, 500, 360, FRONT,
                                                        "Front window")

    @classmethod
    def tearDownClass(cls):
        cls.monitor.stop()
        for process in (cls.back_process, cls.front_process):
            process.terminate()
            process.wait(timeout=10)
        super().tearDownClass()

    def test_1_a_pointed_window_is_captured_whole_even_where_covered(self):
        open_hud(1300, 150)
        click_control("Capture window")
        wait_for_no_window(HUD)
        # The back window's visible part: its outline, around its frame.
        xdotool("mousemove", "260", "260")
        outline = wait_for_window(OUTLINE, "the outline")
        x, y, width, height = window_geometry(self.back)
        left, right, top, bottom = frame_extents(self.back)
        wait_until(lambda: window_geometry(outline) ==
                   (x - left, y - top, width + left + right, height + top + bottom),
                   what="the outline around the back window's frame")
        xdotool("click", "1")
        wait_for_no_window(OUTLINE)
        files = wait_until(lambda: captures_in(self.desktop), what="the window capture")
        self.assertEqual(len(files), 1, files)
        capture = files[0]
        # Exactly the back window's own pixels, the covered part included.
        self.assertEqual(colour_histogram(capture), {"#%02x%02x%02x" % BACK: width * height})
        inode = os.stat(capture).st_ino
        wait_until(lambda: inode in self.home.registry_inodes(), what="the registry record")
        wait_until(lambda: os.path.basename(capture) in self.monitor.text(),
                   what="the notification naming it")
        self.assertEqual(differing_pixels(clipboard_png(os.path.join(self.home.root, "clip.png")),
                                          capture), 0)

    def test_2_our_own_windows_are_never_outlined_and_escape_leaves_nothing(self):
        open_gallery()
        popover = window_geometry(wait_for_window(POPOVER))
        open_hud(1300, 600)
        click_control("Capture window")
        wait_for_no_window(HUD)
        xdotool("mousemove", str(popover[0] + popover[2] // 2), str(popover[1] + 100))
        time.sleep(0.5)
        self.assertEqual(viewable_windows(OUTLINE), [])
        xdotool("mousemove", "900", "600")  # the front window: outlined
        wait_for_window(OUTLINE, "the outline")
        xdotool("key", "Escape")
        wait_for_no_window(OUTLINE)
        time.sleep(0.5)
        self.assertEqual(len(captures_in(self.desktop)), 1)
        # The pointer is free again: a click reaches the desktop's windows.
        click_at(900, 600)
        wait_until(lambda: self.active_window() == self.front, what="the front window active")

    def test_3_full_screen_only_closes_and_logs(self):
        open_hud(1300, 150)
        click_control("Full screen")
        wait_for_no_window(HUD)
        wait_until(lambda: "📸 Full screen" in self.app.output(), what="the log line")
        time.sleep(0.5)
        self.assertEqual(len(captures_in(self.desktop)), 1)

    def test_4_escape_closes_it_and_the_keyboard_stays_where_it_was(self):
        xdotool("windowactivate", "--sync", str(self.back))
        open_hud(1300, 150)
        self.assertEqual(self.active_window(), self.back)
        xdotool("key", "Escape")
        wait_for_no_window(HUD)
        self.assertEqual(self.active_window(), self.back)
        # A second request replaces the HUD: one on screen, at the new pointer.
        open_hud(1300, 150)
        open_hud(600, 150)
        windows = viewable_windows(HUD)
        self.assertEqual(len(windows), 1, windows)
        self.assertEqual(window_geometry(windows[0])[:2], (612, 158))

    @staticmethod
    def active_window():
        return int(subprocess.run(
            ["xdotool", "getactivewindow"], capture_output=True, text=True).stdout or 0)


class CaptureHUDAutoDismiss(AppTestCase):
    @classmethod
    def prepare(cls):
        write_auto_dismiss(cls.home, 2.5)

    def test_in_the_corner_it_stays_inside_and_closes_by_itself(self):
        hud, shown = open_hud(SCREEN[0] - 1, SCREEN[1] - 1)
        x, y, width, height = window_geometry(hud)
        self.assertEqual((SCREEN[0] - x - width, SCREEN[1] - y - height), (8, 8))
        self.assertGreaterEqual(x, 8)
        self.assertGreaterEqual(y, 8)
        # "autoDismissSeconds" is 2.5: up a second later, gone soon after.
        time.sleep(max(0.0, shown + 1.0 - time.monotonic()))
        self.assertTrue(viewable_windows(HUD))
        wait_for_no_window(HUD)
        self.assertLess(time.monotonic() - shown, 5.0)


if __name__ == "__main__":
    TEST_WINDOW = os.path.abspath(sys.argv.pop(2))
    quillix_session.main()
