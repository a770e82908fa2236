#!/usr/bin/python3
"""The gallery popover, its cells, the preview window and the pill's trash,
driven like a user with the real pointer and keyboard."""
import json
import os
import subprocess
import sys
import time
import unittest

sys.path.insert(0, os.path.dirname(__file__))
from quillix_session import (FreshHome, RunningApp, call_app, centre,  # noqa: E402
                             click_control, is_shown, locate, try_open_file, viewable_windows,
                             wait_until, window_geometry, xdotool)

BINARY = None
POPOVER = "Quillix gallery"
FILL = "#3a7d44"


def make_png(path, size="480x300", colour=FILL):
    subprocess.run(["convert", "-size", size, f"xc:{colour}", f"PNG24:{path}"], check=True)


def colour_histogram(path):
    """{colour hex: pixel count} of an image."""
    text = subprocess.run(["convert", path, "-format", "%c", "histogram:info:-"],
                          capture_output=True, text=True, check=True).stdout
    counts = {}
    for line in text.splitlines():
        count, _, rest = line.strip().partition(":")
        hex_start = rest.find("#")
        if hex_start >= 0:
            counts[rest[hex_start:hex_start + 7].lower()] = int(count)
    return counts


class Gallery(unittest.TestCase):
    NAMES = ["alpha.png", "Screenshot beta.png", "gamma.png"]  # oldest first

    def setUp(self):
        self.home = FreshHome()
        desktop = self.home.folders["Desktop"]
        for name in self.NAMES:
            make_png(os.path.join(desktop, name))
            time.sleep(0.1)  # distinct creation times: a known order
        plays_video = self._testMethodName == "test_a_capitalised_mov_plays_in_the_preview"
        self.app = RunningApp.listing_every_file(BINARY, self.home, 3,
                                                 without_leak_check=plays_video)

    def tearDown(self):
        try:
            self.app.stop_cleanly()
        finally:
            if self._outcome.result.failures or self._outcome.result.errors:
                print(self.app.output()[-4000:])
            self.home.cleanup()

    def path(self, name):
        return os.path.join(self.home.folders["Desktop"], name)

    def open_gallery(self):
        if not viewable_windows(POPOVER):
            xdotool("key", "super+shift+1")
        wait_until(lambda: viewable_windows(POPOVER), what="the gallery popover")
        # The cells are laid out once the entrance animation has started.
        locate(self.NAMES[0])
        time.sleep(0.4)

    def metadata(self):
        text = try_open_file(os.path.join(self.home.data_dir, "metadata.bin"))
        return json.loads(text) if text is not None else None

    def context_menu(self, name, downs):
        """Opens the cell's menu and activates its entry `downs` steps down."""
        x, y = centre(locate(name))
        xdotool("mousemove", str(x), str(y))
        time.sleep(0.2)
        xdotool("click", "3")
        time.sleep(0.5)
        for _ in range(downs):
            xdotool("key", "Down")
            time.sleep(0.05)

    def test_cells_newest_first_search_colour_filter_and_closing_the_panel(self):
        self.open_gallery()
        cells = [locate(name) for name in reversed(self.NAMES)]
        self.assertEqual(len({y for _, y, _, _ in cells}), 1, cells)
        self.assertLess(cells[0][0], cells[1][0])
        self.assertLess(cells[1][0], cells[2][0])

        # Blue label on gamma through its menu: Color Label ▸ Blue.
        self.context_menu("gamma.png", 1)
        xdotool("key", "Right")
        time.sleep(0.3)
        for _ in range(4):  # red, orange, yellow, green, blue
            xdotool("key", "Down")
        xdotool("key", "Return")
        wait_until(lambda: (self.metadata() or {}).get("gamma.png") == {"colorLabel": "blue"},
                   what="the blue label in metadata.bin")

        click_control("Filter")
        time.sleep(0.4)
        xdotool("type", "--delay", "60", "SHOT")
        wait_until(lambda: is_shown("1 of 3"), what="the caption 1 of 3")
        self.assertTrue(is_shown("Screenshot beta.png"))
        self.assertFalse(is_shown("alpha.png"))
        for _ in range(4):
            xdotool("key", "BackSpace")
        wait_until(lambda: is_shown("alpha.png"), what="every cell back")

        click_control("Blue")
        wait_until(lambda: is_shown("1 of 3"), what="the blue filter")
        self.assertTrue(is_shown("gamma.png"))
        self.assertFalse(is_shown("Screenshot beta.png"))

        click_control("Filter")  # closes the panel and clears every filter
        wait_until(lambda: all(is_shown(name) for name in self.NAMES), what="all cells")
        self.assertFalse(is_shown("1 of 3"))
        self.assertTrue(is_shown("3"))

    def test_event_and_rename_from_the_cell_menu(self):
        self.open_gallery()
        self.context_menu("alpha.png", 2)  # Add Event…
        xdotool("key", "Return")
        time.sleep(0.6)
        xdotool("type", "--delay", "40", "Design review")
        xdotool("key", "Return")
        wait_until(lambda: (self.metadata() or {}).get("alpha.png") ==
                   {"event": {"title": "Design review", "note": ""}}, what="the event")

        # With an event: Color Label, Edit Event…, Remove Event, Copy Image, Rename…
        self.context_menu("alpha.png", 5)
        xdotool("key", "Return")
        time.sleep(0.6)
        xdotool("key", "ctrl+a")
        xdotool("type", "--delay", "40", "Bug 12")
        xdotool("key", "Return")
        wait_until(lambda: os.path.exists(self.path("Bug 12.png")), what="the renamed file")
        self.assertFalse(os.path.exists(self.path("alpha.png")))
        wait_until(lambda: "Bug 12.png" in call_app("ListedFiles"), what="the rescan")
        # The record stays under the old name: the renamed capture shows none.
        self.assertIn("alpha.png", self.metadata())
        self.assertNotIn("Bug 12.png", self.metadata())

    def test_click_opens_the_preview_and_ctrl_s_burns_in_a_rectangle(self):
        self.open_gallery()
        click_control("gamma.png")
        preview = wait_until(lambda: viewable_windows("gamma"), what="the preview window")[0]
        self.assertFalse(viewable_windows(POPOVER))
        time.sleep(0.6)
        click_control("Rectangle")
        x, y, width, height = window_geometry(preview)
        # Drag across the middle of the image area, left of the info panel.
        start = (x + 44 + 120, y + height // 2 - 60)
        xdotool("mousemove", str(start[0]), str(start[1]))
        xdotool("mousedown", "1")
        for step in range(1, 11):
            xdotool("mousemove", str(start[0] + 16 * step), str(start[1] + 10 * step))
            time.sleep(0.02)
        xdotool("mouseup", "1")
        time.sleep(0.3)
        before = os.stat(self.path("gamma.png")).st_mtime_ns
        xdotool("key", "ctrl+s")
        wait_until(lambda: os.stat(self.path("gamma.png")).st_mtime_ns != before,
                   what="the rewritten file")
        time.sleep(0.3)
        colours = colour_histogram(self.path("gamma.png"))
        self.assertGreater(sum(colours.values()), 0)
        outline = sum(count for hexa, count in colours.items() if hexa != FILL.lower())
        self.assertGreater(outline, 200, colours)
        wait_until(lambda: "gamma.png" in call_app("ListedFiles"), what="the rescan")

    def test_a_capitalised_mov_plays_in_the_preview(self):
        clip = self.path("clip.MOV")
        subprocess.run(["ffmpeg", "-v", "error", "-y", "-f", "lavfi", "-i",
                        "testsrc=size=320x240:rate=25", "-t", "6", "-pix_fmt", "yuv420p",
                        "-c:v", "libx264", "-f", "mov", clip], check=True)
        wait_until(lambda: "clip.MOV" in call_app("ListedFiles"), what="the clip listed")
        self.open_gallery()
        click_control("clip.MOV")
        # A search may miss a window while others come and go: use the
        # answer that found it.
        window = wait_until(lambda: viewable_windows("clip"), what="the preview of the clip")[0]
        time.sleep(1.0)
        shots = []
        for index in range(2):
            shot = os.path.join(self.home.root, f"frame{index}.png")
            subprocess.run(["import", "-window", window, shot], check=True)
            shots.append(shot)
            time.sleep(1.2)
        result = subprocess.run(["compare", "-metric", "AE", *shots, "null:"],
                                capture_output=True, text=True)
        self.assertGreater(int(float(result.stderr.split()[0])), 100,
                           "the picture did not change: the clip is not playing")

    def test_dragging_a_cell_onto_the_pill_trash_moves_it_to_the_trash(self):
        self.open_gallery()
        source = centre(locate("alpha.png"))
        target = centre(locate("Trash"))
        xdotool("mousemove", str(source[0]), str(source[1]))
        time.sleep(0.2)
        xdotool("mousedown", "1")
        steps = 25
        for step in range(1, steps + 1):
            x = source[0] + (target[0] - source[0]) * step // steps
            y = source[1] + (target[1] - source[1]) * step // steps
            xdotool("mousemove", str(x), str(y))
            time.sleep(0.03)
        time.sleep(0.3)
        xdotool("mouseup", "1")
        trashed = os.path.join(self.home.data, "Trash", "files", "alpha.png")
        wait_until(lambda: os.path.exists(trashed), what="alpha.png in the trash")
        self.assertFalse(os.path.exists(self.path("alpha.png")))
        wait_until(lambda: "alpha.png" not in call_app("ListedFiles"), what="the list")
        wait_until(lambda: not is_shown("alpha.png"), what="the cell to leave")


if __name__ == "__main__":
    BINARY = sys.argv.pop(1)
    unittest.main(verbosity=2)
