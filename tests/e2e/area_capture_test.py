#!/usr/bin/python3
"""Area capture driven like a user: Super+2, a drag, tools picked with the
mouse or their keys, the colour panel, Return, the toolbar's Save or Escape;
also on a screen scaled to 200 %."""
import glob
import json
import os
import subprocess
import sys
import time
import unittest

sys.path.insert(0, os.path.dirname(__file__))
from quillix_session import (FreshHome, RunningApp, click_control,  # noqa: E402
                             differing_pixels, try_open_file, viewable_windows, wait_until,
                             window_geometry, xdotool)

BINARY = None
SELECTION = (250, 150, 300, 200)  # x, y, width, height on screen
OVERLAY = "Area selection"
TOOLBAR = "Annotation toolbar"
COLOUR_PANEL = "Colors"
TOOL_BUTTON_PITCH = 34.5  # toolbar buttons: pencil, arrow, rectangle, …


def pixel(path, x, y):
    text = subprocess.run(["convert", path, "-format", f"%[pixel:p{{{x},{y}}}]", "info:"],
                          capture_output=True, text=True, check=True).stdout
    values = text[text.index("(") + 1:text.index(")")].split(",")
    return tuple(int(float(v)) for v in values[:3])  # red, green, blue


def row_pixels(path, x, y, width):
    """(red, green, blue) of `width` pixels of row y from x on."""
    text = subprocess.run(["convert", path, "-crop", f"{width}x1+{x}+{y}", "-depth", "8",
                           "txt:-"], capture_output=True, text=True, check=True).stdout
    pixels = []
    for line in text.splitlines()[1:]:
        values = line[line.index("(") + 1:line.index(")")].split(",")
        pixels.append(tuple(int(float(v)) for v in values[:3]))
    return pixels


def is_red(rgb):
    return rgb[0] > 200 and rgb[1] < 120 and rgb[2] < 120


class AreaCaptureSession(unittest.TestCase):
    EXTRA_ENV = {}

    def setUp(self):
        self.home = FreshHome()
        self.home.env.update(self.EXTRA_ENV)
        subprocess.run(["xsetroot", "-solid", "#336699"], check=True)
        pattern = os.path.join(self.home.root, "pattern.png")
        subprocess.run(["convert", "-size", "240x160", "gradient:#ff2020-#2040ff", "-fill",
                        "#10c010", "-draw", "rectangle 20,20 90,70", "-depth", "8",
                        f"PNG24:{pattern}"], check=True)
        self.viewer = subprocess.Popen(["display", "-geometry", "+300+200", pattern])
        subprocess.run(["xdotool", "search", "--sync", "--onlyvisible", "--class", "display"],
                       capture_output=True, check=True)
        self.app = RunningApp(BINARY, self.home)
        wait_until(lambda: "(id 6)" in self.app.output(), what="hotkeys")
        time.sleep(0.5)
        self.screen = os.path.join(self.home.root, "screen.png")
        subprocess.run(["import", "-window", "root", self.screen], check=True)

    def tearDown(self):
        self.viewer.terminate()
        try:
            self.app.stop_cleanly()
        finally:
            if self._outcome.result.failures or self._outcome.result.errors:
                print(self.app.output())
            self.home.cleanup()

    def captures(self):
        return glob.glob(os.path.join(self.home.folders["Desktop"], "Screenshot_*.png"))

    def select(self, x, y, width, height):
        xdotool("key", "super+2")
        wait_until(lambda: viewable_windows(OVERLAY), what="the area overlay")
        time.sleep(0.2)
        xdotool("mousemove", str(x), str(y), "mousedown", "1", "mousemove", str(x + width // 2),
                str(y + height // 2), "mousemove", str(x + width), str(y + height), "mouseup", "1")

    def expected_cut(self, rect=SELECTION):
        x, y, width, height = rect
        cut = os.path.join(self.home.root, f"expected-{x}-{y}-{width}-{height}.png")
        subprocess.run(["convert", self.screen, "-crop", f"{width}x{height}+{x}+{y}", "+repage",
                        cut], check=True)
        return cut

    def choose_tool(self, index):
        toolbar = wait_until(lambda: viewable_windows(TOOLBAR), what="the toolbar")[0]
        x, y, _, height = window_geometry(toolbar)
        xdotool("mousemove", str(int(x + 24 + index * TOOL_BUTTON_PITCH)), str(y + height // 2),
                "click", "1")
        time.sleep(0.2)

    def save(self):
        xdotool("key", "Return")
        return wait_until(self.captures, what="the saved capture")[0]

    def drag(self, x1, y1, x2, y2):
        xdotool("mousemove", str(x1), str(y1), "mousedown", "1", "mousemove",
                str((x1 + x2) // 2), str((y1 + y2) // 2), "mousemove", str(x2), str(y2),
                "mouseup", "1")
        time.sleep(0.2)

    def size_of(self, path):
        return subprocess.run(["identify", "-format", "%wx%h", path], capture_output=True,
                              text=True).stdout


class AreaCapture(AreaCaptureSession):
    def test_drag_and_return_save_the_screen_pixels(self):
        self.select(*SELECTION)
        capture = self.save()
        self.assertEqual(len(self.captures()), 1)
        self.assertFalse(viewable_windows(OVERLAY))
        self.assertEqual(differing_pixels(self.expected_cut(), capture), 0)
        inode = os.stat(capture).st_ino
        wait_until(lambda: (lambda doc: doc is not None and inode in json.loads(doc))(
            try_open_file(os.path.join(self.home.data_dir, "registry.bin"))),
            what="the inode in registry.bin")
        clip = os.path.join(self.home.root, "clip.png")
        with open(clip, "wb") as out:
            subprocess.run(["xclip", "-selection", "clipboard", "-t", "image/png", "-o"],
                           stdout=out, check=True, timeout=10)
        self.assertEqual(differing_pixels(clip, capture), 0)

    def test_a_rectangle_from_the_toolbar_is_burnt_in_and_undo_removes_shapes(self):
        x, y, _, _ = SELECTION
        self.select(*SELECTION)
        self.choose_tool(2)  # rectangle
        xdotool("mousemove", str(x + 50), str(y + 40), "mousedown", "1", "mousemove",
                str(x + 100), str(y + 80), "mousemove", str(x + 150), str(y + 120), "mouseup", "1")
        # A second rectangle, then Ctrl+Z removes it again before saving.
        xdotool("mousemove", str(x + 200), str(y + 20), "mousedown", "1", "mousemove",
                str(x + 250), str(y + 60), "mousemove", str(x + 280), str(y + 100), "mouseup", "1")
        xdotool("key", "ctrl+z")
        capture = self.save()
        red = pixel(capture, 100, 40)
        self.assertGreater(red[0], 200, red)
        self.assertLess(red[1], 120, red)
        expected = self.expected_cut()
        self.assertEqual(pixel(capture, 100, 80), pixel(expected, 100, 80))  # outline only
        self.assertEqual(pixel(capture, 240, 20), pixel(expected, 240, 20))  # undone shape

    def test_blur_region_and_an_arrow_cut_at_the_selection_border(self):
        x, y, _, _ = SELECTION
        self.select(*SELECTION)
        self.choose_tool(4)  # blur
        self.drag(x + 40, y + 70, x + 180, y + 160)
        self.choose_tool(1)  # arrow
        self.drag(x + 200, y + 30, x + 360, y + 30)  # runs past the right edge
        capture = self.save()
        expected = self.expected_cut()
        self.assertEqual(self.size_of(capture), "300x200")
        # Inside the blur the pattern's sharp edges are smeared…
        changed = sum(pixel(capture, px, 115) != pixel(expected, px, 115)
                      for px in range(45, 175, 10))
        self.assertGreater(changed, 5)
        # …outside it nothing moved.
        self.assertEqual(pixel(capture, 20, 20), pixel(expected, 20, 20))
        self.assertEqual(pixel(capture, 220, 180), pixel(expected, 220, 180))
        # The arrow's shaft reaches the border and is cut there.
        shaft = pixel(capture, 298, 30)
        self.assertGreater(shaft[0], 200, shaft)
        self.assertLess(shaft[1], 120, shaft)

    def test_escape_leaves_nothing_and_a_thin_selection_is_not_confirmed(self):
        self.select(250, 150, 10, 200)
        time.sleep(0.8)
        self.assertTrue(viewable_windows(OVERLAY))
        self.assertFalse(viewable_windows(TOOLBAR), "a 10-pixel-wide selection is not confirmed")
        xdotool("key", "Escape")
        wait_until(lambda: not viewable_windows(OVERLAY), what="the overlay to close")
        time.sleep(0.5)
        self.assertEqual(self.captures(), [])

    def test_the_keyboard_comes_back_after_the_colour_panel(self):
        self.select(*SELECTION)
        wait_until(lambda: viewable_windows(TOOLBAR), what="the toolbar")
        click_control("Color")
        panel = wait_until(lambda: viewable_windows(COLOUR_PANEL), what="the colour panel")[0]
        xdotool("windowactivate", "--sync", panel)
        time.sleep(0.3)
        xdotool("key", "Escape")  # closes the panel, which has the keyboard
        wait_until(lambda: not viewable_windows(COLOUR_PANEL), what="the panel to close")
        time.sleep(0.5)
        self.assertTrue(viewable_windows(OVERLAY))
        xdotool("key", "Escape")
        wait_until(lambda: not viewable_windows(OVERLAY), timeout=5,
                   what="Escape to reach the editor")
        time.sleep(0.5)
        self.assertEqual(self.captures(), [])

    def test_until_a_tool_is_picked_a_drag_moves_the_selection_then_keys_pick_tools(self):
        x, y, width, height = SELECTION
        self.select(*SELECTION)
        wait_until(lambda: viewable_windows(TOOLBAR), what="the toolbar")
        time.sleep(0.3)
        self.drag(x + 150, y + 100, x + 200, y + 140)  # moves it by 50, 40
        moved = (x + 50, y + 40, width, height)
        xdotool("key", "r")
        time.sleep(0.2)
        self.drag(moved[0] + 50, moved[1] + 40, moved[0] + 150, moved[1] + 120)
        capture = self.save()
        self.assertEqual(self.size_of(capture), "300x200")
        expected = self.expected_cut(moved)
        self.assertTrue(is_red(pixel(capture, 50, 100)), pixel(capture, 50, 100))  # left edge
        self.assertFalse(is_red(pixel(expected, 50, 100)))
        for point in ((10, 10), (250, 20), (20, 180), (100, 80), (290, 190)):
            self.assertEqual(pixel(capture, *point), pixel(expected, *point), point)

    def test_text_still_being_typed_is_saved_by_the_toolbars_save(self):
        x, y, _, _ = SELECTION
        self.select(*SELECTION)
        wait_until(lambda: viewable_windows(TOOLBAR), what="the toolbar")
        time.sleep(0.3)
        xdotool("key", "t")
        xdotool("mousemove", str(x + 40), str(y + 60), "click", "1")
        time.sleep(0.3)
        xdotool("type", "--delay", "30", "WWWW")
        time.sleep(0.2)
        click_control("Save")
        capture = wait_until(self.captures, what="the saved capture")[0]
        region = "120x80+30+20"  # around where the text was typed
        shot = os.path.join(self.home.root, "text.png")
        original = os.path.join(self.home.root, "no-text.png")
        for source, target in ((capture, shot), (self.expected_cut(), original)):
            subprocess.run(["convert", source, "-crop", region, "+repage", target], check=True)
        self.assertGreater(differing_pixels(shot, original), 150)


class AreaCaptureOnAScaledScreen(AreaCaptureSession):
    """At 200 % the saved file has every screen pixel its size label promises,
    and the shapes grow with it."""
    EXTRA_ENV = {"QT_SCALE_FACTOR": "2"}

    def test_the_file_keeps_every_screen_pixel_and_strokes_scale(self):
        selection = (250, 150, 600, 400)  # screen pixels: 300 × 200 points
        self.select(*selection)
        wait_until(lambda: viewable_windows(TOOLBAR), what="the toolbar")
        time.sleep(0.3)
        xdotool("key", "r")
        time.sleep(0.2)
        x, y, _, _ = selection
        self.drag(x + 100, y + 80, x + 300, y + 240)
        capture = self.save()
        self.assertEqual(self.size_of(capture), "600x400")
        expected = self.expected_cut(selection)
        for point in ((10, 10), (500, 300), (200, 160)):
            self.assertEqual(pixel(capture, *point), pixel(expected, *point), point)
        # The outline is 2.5 points wide on the screen: 5 of its pixels.
        outline = sum(is_red(rgb) for rgb in row_pixels(capture, 90, 160, 20))
        self.assertGreaterEqual(outline, 4)
        self.assertLessEqual(outline, 6)


if __name__ == "__main__":
    BINARY = sys.argv.pop(1)
    unittest.main(verbosity=2)
