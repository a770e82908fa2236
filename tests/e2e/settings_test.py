#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Quillix developers

"""The settings window opened from the pill and driven like a user: a
shortcut recorded with real keys and then working system-wide, launch at
login, a chosen tray icon, and the storage steppers at their ends. Also the
welcome slides of a first launch, closed once and never shown again."""
import json
import os
import subprocess
import sys
import time

sys.path.insert(0, os.path.dirname(__file__))
from quillix_session import (AppTestCase, FreshHome, RunningApp, call_app,  # noqa: E402
                             click_control, is_shown, main, open_gallery, tray_icon_window,
                             try_open_file, viewable_windows, wait_for_no_window,
                             wait_for_window, wait_until, xdotool)

AREA_EDITOR = "Area selection"
DEFAULT_AREA = {"keyCode": 19, "modifiers": 256}
RECORDING = "Capture area: Type shortcut…"


def tray_pixels():
    """The tray icon as the panel shows it, as PPM bytes."""
    return subprocess.run(["import", "-window", tray_icon_window(), "ppm:-"],
                          check=True, capture_output=True).stdout


class Settings(AppTestCase):
    def settings_document(self):
        text = try_open_file(os.path.join(self.home.data_dir, "settings.bin"))
        return text

    def registrations(self):
        return self.app.output().count("registered (id 6)")

    def open_section(self, name):
        if not viewable_windows("Settings"):
            open_gallery()
            click_control("Settings")
            wait_for_window("Settings", "the settings window")
            time.sleep(0.3)
        click_control(name)
        time.sleep(0.3)

    def test_1_a_recorded_shortcut_is_stored_and_works_at_once(self):
        # A first change writes settings.bin with the default bindings.
        self.open_section("General")
        click_control("Show only Quillix captures")
        click_control("Show only Quillix captures")
        wait_until(self.settings_document, what="settings.bin")
        defaults = self.settings_document()

        self.open_section("Hotkeys")
        before = self.registrations()
        click_control("Capture area: ⌘2")
        wait_until(lambda: is_shown(RECORDING), what="the recorder")
        xdotool("key", "a")  # no modifier: ignored, still recording
        time.sleep(0.3)
        self.assertTrue(is_shown(RECORDING))
        xdotool("key", "super+shift+5")
        wait_until(lambda: json.loads(self.settings_document())["hotkeys"]["captureArea"]
                   == {"keyCode": 23, "modifiers": 768}, what="the new binding in settings.bin")
        wait_until(lambda: self.registrations() == before + 1, what="the bindings registered again")
        log = self.app.output()
        self.assertIn("⇧⌘5 registered (id 3)", log)

        xdotool("key", "super+2")
        time.sleep(1.0)
        self.assertFalse(viewable_windows(AREA_EDITOR), "the old shortcut still works")
        xdotool("key", "super+shift+5")
        wait_for_window(AREA_EDITOR, "the area editor from the new shortcut")
        xdotool("key", "Escape")
        wait_for_no_window(AREA_EDITOR, "the area editor to close")

        self.open_section("Hotkeys")
        click_control("Capture area: ⇧⌘5")
        wait_until(lambda: is_shown(RECORDING), what="the recorder")
        xdotool("key", "shift+Escape")
        wait_until(lambda: is_shown("Capture area: ⇧⌘5"), what="the recorder to stop")
        self.assertEqual(json.loads(self.settings_document())["hotkeys"]["captureArea"],
                         {"keyCode": 23, "modifiers": 768})

        click_control("Reset to defaults")
        wait_until(lambda: self.settings_document() == defaults, what="the default document")
        self.assertEqual(json.loads(defaults)["hotkeys"]["captureArea"], DEFAULT_AREA)

    def test_2_launch_at_login_writes_and_removes_an_autostart_entry(self):
        entry = os.path.join(self.home.config, "autostart", "quillix.desktop")
        self.open_section("General")
        click_control("Launch at login")
        wait_until(lambda: os.path.exists(entry), what="the autostart entry")
        check = subprocess.run(["desktop-file-validate", entry], capture_output=True, text=True)
        self.assertEqual((check.returncode, check.stdout), (0, ""))
        with open(entry) as text:
            self.assertIn(f"Exec={os.path.realpath(self.app.process.args[0])}\n", text.read())
        self.assertEqual(self.home.preferences().get("launchAtLogin"), "true")
        click_control("Launch at login")
        wait_until(lambda: not os.path.exists(entry), what="the entry removed")

    def test_3_a_chosen_svg_becomes_the_tray_icon_until_reset(self):
        built_in = tray_pixels()
        picked = os.path.join(self.home.root, "mark.svg")
        with open(picked, "w") as svg:
            svg.write('<svg xmlns="http://www.w3.org/2000/svg" width="18" height="18">'
                      '<rect x="1" y="1" width="16" height="16" fill="#e02020"/></svg>')
        self.open_section("General")
        click_control("Choose Icon…")
        wait_for_window("Choose Icon", "the file dialog")
        time.sleep(0.5)
        xdotool("type", "--delay", "20", picked)
        xdotool("key", "Return")
        copy = os.path.join(self.home.data_dir, "icons", "custom_bar_icon.svg")
        wait_until(lambda: os.path.exists(copy), what="the copied icon")
        wait_until(lambda: tray_pixels() != built_in, what="the tray icon to change")
        self.assertEqual(self.home.preferences().get("customAppIconPath"), copy)

        click_control("Reset tray icon")
        wait_until(lambda: tray_pixels() == built_in, what="the built-in icon back")
        self.assertTrue(os.path.exists(copy))

    def test_4_the_steppers_stop_at_their_ends(self):
        self.open_section("Storage")
        for name, clicks, key, end in (("More screenshots", 20, "maxScreenshots", "1000"),
                                       ("Fewer screenshots", 20, "maxScreenshots", "50"),
                                       ("More days", 53, "autoClearDays", "365"),
                                       ("Fewer days", 53, "autoClearDays", "7")):
            for _ in range(clicks):
                click_control(name)
            wait_until(lambda: self.home.preferences().get(key) == end, what=f"{key} = {end}")


class FirstLaunch(AppTestCase):
    """The welcome slides need a home where they were never seen."""

    @classmethod
    def setUpClass(cls):
        cls.home = FreshHome(first_run=True)
        cls.app = RunningApp.ready(cls.home)

    def test_the_slides_show_once_and_close_for_good(self):
        wait_for_window("Welcome to Quillix", "the welcome slides")
        self.assertNotEqual(self.home.preferences().get("hasSeenOnboarding"), "true")
        click_control("Close")
        wait_for_no_window("Welcome to Quillix", "the slides to close")
        wait_until(lambda: self.home.preferences().get("hasSeenOnboarding") == "true",
                   what="hasSeenOnboarding")
        self.app.stop_cleanly()

        type(self).app = RunningApp.ready(self.home)
        time.sleep(1.5)
        self.assertFalse(viewable_windows("Welcome to Quillix"))
        self.assertTrue(call_app("ListedFiles") is not None)


if __name__ == "__main__":
    main()
