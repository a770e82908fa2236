#!/usr/bin/python3
"""The tray shell driven like a user: tray icon, hotkeys, popover, pill."""
import os
import re
import subprocess
import sys
import time
import unittest

sys.path.insert(0, os.path.dirname(__file__))
from quillix_session import (FreshHome, KeyGrabHolder, RunningApp,  # noqa: E402
                             centre, locate, tray_icon_embedded, viewable_windows, wait_until,
                             window_geometry, xdotool)

BINARY = None
POPOVER = "Quillix gallery"
PILL = "Quillix controls"

EXPECTED_REGISTRATIONS = [
    "✅ Quillix: hotkey ⇧⌘1 registered (id 1)",
    "✅ Quillix: hotkey ⇧⌘2 registered (id 2)",
    "✅ Quillix: hotkey ⌘2 registered (id 3)",
    "✅ Quillix: hotkey ⌘3 registered (id 4)",
    "✅ Quillix: hotkey ⌘6 registered (id 5)",
    "✅ Quillix: hotkey ⌘7 registered (id 6)",
]


class Shell(unittest.TestCase):
    def setUp(self):
        self.home = FreshHome()
        self.app = None
        self.holder = None

    def tearDown(self):
        if self.holder:
            self.holder.release()
        try:
            if self.app:
                self.app.stop_cleanly()
        finally:
            self.home.cleanup()

    def start(self):
        self.app = RunningApp(BINARY, self.home)
        wait_until(lambda: "(id 6)" in self.app.output() or "hotkey id 6" in self.app.output(),
                   what="hotkey registration")
        wait_until(tray_icon_embedded, what="the tray icon")

    def popover_shown(self):
        return bool(viewable_windows(POPOVER))

    def pill_shown(self):
        return bool(viewable_windows(PILL))

    def open_with_hotkey(self):
        xdotool("key", "super+shift+1")
        wait_until(lambda: self.popover_shown() and self.pill_shown(), what="popover and pill")

    def test_six_hotkeys_register_and_the_screen_binding_never_does(self):
        self.start()
        lines = [line for line in self.app.output().splitlines() if "hotkey" in line]
        self.assertEqual(lines, EXPECTED_REGISTRATIONS)
        self.assertNotIn("⌘4", self.app.output())

    def test_open_menu_hotkey_toggles_popover_and_pill(self):
        self.start()
        self.open_with_hotkey()
        popover = window_geometry(viewable_windows(POPOVER)[0])
        pill = window_geometry(viewable_windows(PILL)[0])
        self.assertEqual(popover[2:], (320, 420))
        self.assertEqual(pill[2:], (320, 44))
        self.assertEqual(popover[1], 24, "the popover hangs under the tray panel")
        self.assertEqual(pill[1], popover[1] + 420 + 6)
        self.assertEqual(pill[0], popover[0])
        self.assertLessEqual(popover[0] + 320, 1920)

        xdotool("key", "super+shift+1")
        wait_until(lambda: not self.popover_shown() and not self.pill_shown(),
                   what="popover and pill to close")

    def test_clicks_in_the_pill_keep_the_popover_and_clicks_elsewhere_close_it(self):
        self.start()
        self.open_with_hotkey()
        x, y, width, height = window_geometry(viewable_windows(PILL)[0])
        xdotool("mousemove", str(x + width // 2), str(y + height // 2), "click", "1")
        time.sleep(0.5)
        self.assertTrue(self.popover_shown())
        self.assertTrue(self.pill_shown())

        xdotool("mousemove", "400", "700", "click", "1")
        wait_until(lambda: not self.popover_shown() and not self.pill_shown(),
                   what="an outside click to close the popover")

    def test_tray_icon_click_opens_and_closes_the_popover(self):
        self.start()
        icon = [line for line in os.popen("xwininfo -root -tree").read().splitlines()
                if '("quillix"' in line and "22x22" in line]
        self.assertTrue(icon, "tray icon window")
        match = re.search(r"\+(\d+)\+(\d+)\s*$", icon[0])
        x, y = int(match.group(1)) + 11, int(match.group(2)) + 11
        xdotool("mousemove", str(x), str(y), "click", "1")
        wait_until(lambda: self.popover_shown() and self.pill_shown(), what="popover from tray")
        popover = window_geometry(viewable_windows(POPOVER)[0])
        # Under the icon, pushed left only as far as the screen edge needs.
        self.assertEqual(popover[0], min(x - 160, 1920 - 320))
        self.assertEqual(popover[1], 24)
        xdotool("mousemove", str(x), str(y), "click", "1")
        wait_until(lambda: not self.popover_shown(), what="second tray click to close")

    def test_a_combination_held_by_another_program_fails_alone(self):
        self.holder = KeyGrabHolder("6", "super")
        self.start()
        output = self.app.output()
        self.assertIn("⚠️ Quillix: failed to register hotkey id 5, error 10", output)
        self.assertNotIn("registered (id 5)", output)
        for line in EXPECTED_REGISTRATIONS[:4] + EXPECTED_REGISTRATIONS[5:]:
            self.assertIn(line, output)
        self.open_with_hotkey()


def pixels(path, *points):
    """(red, green, blue) of each (x, y) of an image."""
    found = []
    for x, y in points:
        text = subprocess.run(["convert", path, "-format", f"%[pixel:p{{{x},{y}}}]", "info:"],
                              capture_output=True, text=True, check=True).stdout
        values = text[text.index("(") + 1:text.index(")")].split(",")
        found.append(tuple(int(float(v)) for v in values[:3]))
    return found


class PopoverAmongOwnWindows(unittest.TestCase):
    """A full gallery, started once: presses in the program's own menus and
    dialogs, and the see-through corners."""
    NAMES = [f"shot{index:02d}.png" for index in range(18)]  # six rows, oldest first
    ROOT_COLOUR = (0x33, 0x66, 0x99)

    @classmethod
    def setUpClass(cls):
        subprocess.run(["xsetroot", "-solid", "#%02x%02x%02x" % cls.ROOT_COLOUR], check=True)
        cls.home = FreshHome()
        for name in cls.NAMES:
            subprocess.run(["convert", "-size", "480x300", "xc:#3a7d44",
                            f"PNG24:{os.path.join(cls.home.folders['Desktop'], name)}"],
                           check=True)
            time.sleep(0.02)  # distinct creation times: a known order
        cls.app = RunningApp.listing_every_file(BINARY, cls.home, len(cls.NAMES))

    @classmethod
    def tearDownClass(cls):
        try:
            cls.app.stop_cleanly()
        finally:
            cls.home.cleanup()

    def tearDown(self):
        if self._outcome.result.failures or self._outcome.result.errors:
            print(self.app.output()[-4000:])

    def popover_shown(self):
        return bool(viewable_windows(POPOVER))

    def open_gallery(self):
        if not self.popover_shown():
            xdotool("key", "super+shift+1")
        wait_until(self.popover_shown, what="the gallery popover")
        locate(self.NAMES[0])
        time.sleep(0.5)  # the entrance slide and the pill's fade

    def test_corners_show_the_desktop_without_a_compositor(self):
        self.open_gallery()
        popover = window_geometry(viewable_windows(POPOVER)[0])
        pill = window_geometry(viewable_windows(PILL)[0])
        shot = os.path.join(self.home.root, "corners.png")
        subprocess.run(["import", "-window", "root", shot], check=True)
        corners = []
        for x, y, width, height in (popover, pill):
            corners += [(x, y), (x + width - 1, y), (x, y + height - 1),
                        (x + width - 1, y + height - 1)]
        self.assertEqual(pixels(shot, *corners), [self.ROOT_COLOUR] * len(corners))
        # The panels themselves are still there, edge to edge.
        middle = [(popover[0] + 160, popover[1] + 1), (pill[0] + 160, pill[1] + 22)]
        self.assertNotIn(self.ROOT_COLOUR, pixels(shot, *middle))

    def test_presses_in_our_own_menu_and_dialog_keep_the_gallery_open(self):
        self.open_gallery()
        popover = window_geometry(viewable_windows(POPOVER)[0])
        pill = window_geometry(viewable_windows(PILL)[0])
        # The oldest picture sits in the last row: its menu reaches past the
        # bottom of the pill.
        x, y = centre(locate(self.NAMES[0]))
        xdotool("mousemove", str(x), str(y))
        time.sleep(0.2)
        xdotool("click", "3")
        menu = wait_until(lambda: [w for w in self.own_windows() if w[1] + w[3] > pill[1] + pill[3]],
                          what="the cell's menu below the pill")[0]
        # "Rename…" is the second row from the bottom of the menu, below the pill.
        item_y = menu[1] + menu[3] - 36
        self.assertGreater(item_y, pill[1] + pill[3])
        xdotool("mousemove", str(menu[0] + 40), str(item_y))
        time.sleep(0.2)
        xdotool("click", "1")
        dialog = wait_until(lambda: viewable_windows("Rename Screenshot"), what="the rename dialog")[0]
        time.sleep(0.3)
        self.assertTrue(self.popover_shown(), "a press in our menu closed the gallery")

        x, y, width, height = window_geometry(dialog)
        self.assertFalse(x < popover[0] + popover[2] and popover[0] < x + width and
                         y < popover[1] + popover[3] and popover[1] < y + height,
                         "the dialog must lie outside the popover for this test")
        xdotool("mousemove", str(x + 12), str(y + height // 2), "click", "1")
        time.sleep(0.5)
        self.assertTrue(self.popover_shown(), "a press in our dialog closed the gallery")
        xdotool("key", "Escape")
        wait_until(lambda: not viewable_windows("Rename Screenshot"), what="the dialog to close")
        self.assertTrue(self.popover_shown())
        self.assertTrue(os.path.exists(os.path.join(self.home.folders["Desktop"],
                                                    self.NAMES[0])))

        xdotool("mousemove", "400", "700", "click", "1")
        wait_until(lambda: not self.popover_shown(), what="a press on the desktop to close it")

    def own_windows(self):
        """Geometry of the program's viewable override-redirect windows (menus)."""
        found = []
        tree = subprocess.run(["xwininfo", "-root", "-children"], capture_output=True,
                              text=True).stdout
        for line in tree.splitlines():
            if '("quillix" "Quillix")' in line:
                window = line.split()[0]
                info = subprocess.run(["xwininfo", "-id", window], capture_output=True,
                                      text=True).stdout
                if "IsViewable" in info and "Override Redirect State: yes" in info:
                    found.append(window_geometry(window))
        return found


if __name__ == "__main__":
    BINARY = sys.argv.pop(1)
    unittest.main(verbosity=2)
