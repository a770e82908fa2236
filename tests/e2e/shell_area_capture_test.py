#!/usr/bin/python3
"""The shell around an area capture, driven like a user: what the area hotkey
leaves on screen (tray icon, an open preview), one editor at a time, and the
other hotkeys while the editor is open. One program start for every case."""
import glob
import os
import re
import subprocess
import sys
import time
import unittest

sys.path.insert(0, os.path.dirname(__file__))
from quillix_session import (FreshHome, RunningApp, call_app, click_control,  # noqa: E402
                             locate, viewable_windows, wait_until,
                             window_geometry, window_tree, xdotool)

BINARY = None
OVERLAY = "Area selection"
TOOLBAR = "Annotation toolbar"
POPOVER = "Quillix gallery"
PICTURE = "note.png"
PREVIEW = "note"  # the preview window's title: the file name without extension
ROOT_COLOUR = "#336699"


def tray_icon_window():
    """Id of the program's window inside trayer's panel, or None."""
    inside_tray, tray_indent = False, None
    for line in window_tree().splitlines():
        indent = len(line) - len(line.lstrip())
        if '("panel" "trayer")' in line:
            inside_tray, tray_indent = True, indent
            continue
        if inside_tray and indent <= tray_indent and line.strip():
            inside_tray = False
        if inside_tray and '("quillix"' in line:
            return line.split()[0]
    return None


def map_state_and_width(window_id):
    info = subprocess.run(["xwininfo", "-id", window_id], capture_output=True, text=True,
                          check=True).stdout
    state = re.search(r"Map State:\s*(\w+)", info).group(1)
    width = int(re.search(r"Width:\s*(\d+)", info).group(1))
    return state, width


def root_pixel(x, y, path):
    subprocess.run(["import", "-window", "root", path], check=True)
    text = subprocess.run(["convert", path, "-format", f"%[pixel:p{{{x},{y}}}]", "info:"],
                          capture_output=True, text=True, check=True).stdout
    values = text[text.index("(") + 1:text.index(")")].split(",")
    return tuple(int(float(v)) for v in values[:3])


class ShellAroundAreaCapture(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        subprocess.run(["xsetroot", "-solid", ROOT_COLOUR], check=True)
        cls.home = FreshHome()
        subprocess.run(["convert", "-size", "480x300", "xc:#c08030",
                        f"PNG24:{os.path.join(cls.home.folders['Desktop'], PICTURE)}"],
                       check=True)
        cls.app = RunningApp.listing_every_file(BINARY, cls.home, 1)

    @classmethod
    def tearDownClass(cls):
        try:
            cls.app.stop_cleanly()
        finally:
            cls.home.cleanup()

    def tearDown(self):
        if self._outcome.result.failures or self._outcome.result.errors:
            print(self.app.output()[-4000:])

    def captures(self):
        return glob.glob(os.path.join(self.home.folders["Desktop"], "Screenshot_*.png"))

    def open_editor(self):
        xdotool("key", "super+2")
        return wait_until(lambda: viewable_windows(OVERLAY), what="the area overlay")[0]

    def assert_tray_icon_and_preview_stay(self, after):
        icon = tray_icon_window()
        self.assertIsNotNone(icon, f"tray icon embedded after {after}")
        # The tray host shrinks to a sliver when the icon window is unmapped.
        self.assertEqual(map_state_and_width(icon), ("IsViewable", 22), after)
        self.assertTrue(viewable_windows(PREVIEW), f"the preview is still shown after {after}")

    def test_1_the_area_hotkey_leaves_the_tray_icon_and_an_open_preview_alone(self):
        xdotool("key", "super+shift+1")
        wait_until(lambda: viewable_windows(POPOVER), what="the gallery")
        locate(PICTURE)
        time.sleep(0.4)
        click_control(PICTURE)
        wait_until(lambda: viewable_windows(PREVIEW), what="the preview window")
        time.sleep(0.5)

        self.open_editor()
        time.sleep(0.3)
        xdotool("key", "Escape")
        wait_until(lambda: not viewable_windows(OVERLAY), what="the overlay to close")
        time.sleep(0.5)
        self.assert_tray_icon_and_preview_stay("Super+2 and Escape")

        self.open_editor()
        time.sleep(0.3)
        xdotool("mousemove", "250", "150", "mousedown", "1", "mousemove", "400", "250",
                "mousemove", "550", "350", "mouseup", "1")
        toolbar = wait_until(lambda: viewable_windows(TOOLBAR), what="the toolbar")[0]
        time.sleep(0.5)
        # Without a compositor a transparent window corner shows black: the
        # toolbar's corner must show what lies under it, like its neighbour.
        x, y, _, _ = window_geometry(toolbar)
        shot = os.path.join(self.home.root, "toolbar.png")
        corner, beside = root_pixel(x, y, shot), root_pixel(x - 1, y, shot)
        self.assertEqual(corner, beside, "the toolbar's corner is not see-through")
        xdotool("key", "Return")
        wait_until(self.captures, what="the saved capture")
        wait_until(lambda: not viewable_windows(OVERLAY), what="the overlay to close")
        time.sleep(0.5)
        self.assert_tray_icon_and_preview_stay("Super+2, a drag and Return")

    def test_2_other_hotkeys_do_nothing_while_the_editor_is_open(self):
        first = self.open_editor()
        xdotool("key", "super+2")
        time.sleep(0.8)  # longer than any capture start
        self.assertEqual(viewable_windows(OVERLAY), [first], "one editor, the first one")

        xdotool("key", "super+shift+1")
        time.sleep(0.5)
        self.assertEqual(call_app("IsPopoverShown"), [False])
        self.assertFalse(viewable_windows(POPOVER))
        xdotool("key", "Escape")
        wait_until(lambda: not viewable_windows(OVERLAY), what="Escape to close the editor")
        self.assertFalse(viewable_windows(POPOVER))

        # Afterwards the hotkeys work as before.
        xdotool("key", "super+shift+1")
        wait_until(lambda: viewable_windows(POPOVER), what="the gallery after the editor")
        xdotool("key", "super+shift+1")
        wait_until(lambda: not viewable_windows(POPOVER), what="the gallery to close")


if __name__ == "__main__":
    BINARY = sys.argv.pop(1)
    unittest.main(verbosity=2)
