#!/usr/bin/python3
"""The tray shell driven like a user: tray icon, hotkeys, popover, pill."""
import os
import re
import sys
import time
import unittest

sys.path.insert(0, os.path.dirname(__file__))
from quillix_session import (FreshHome, KeyGrabHolder, RunningApp,  # noqa: E402
                             tray_icon_embedded, viewable_windows, wait_until, window_geometry,
                             xdotool)

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


if __name__ == "__main__":
    BINARY = sys.argv.pop(1)
    unittest.main(verbosity=2)
