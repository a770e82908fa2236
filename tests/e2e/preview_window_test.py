#!/usr/bin/python3
"""The preview window with the real program: the question before unsaved
annotations are thrown away (closing and quitting), the preview following
its file when the gallery renames or trashes it, tool keys and text still
being typed when saving, the window's size on a small (scaled) screen, and
a picture beyond Qt's default size limit."""
import os
import struct
import subprocess
import sys
import time
import unittest
import zlib

sys.path.insert(0, os.path.dirname(__file__))
from quillix_session import (FreshHome, RunningApp, call_app, centre,  # noqa: E402
                             locate, viewable_windows, wait_until,
                             window_geometry, xdotool)

BINARY = None
POPOVER = "Quillix gallery"
QUESTION = "Unsaved Annotations"
FILL = "#3a7d44"
FILL_RGB = (0x3a, 0x7d, 0x44)


def make_png(path, size="480x300", colour=FILL):
    subprocess.run(["convert", "-size", size, f"xc:{colour}", f"PNG24:{path}"], check=True)


def flat_png(path, width, height, rgb, rows_per_block=100):
    """A flat-colour RGB PNG of any size in about a second: one deflate block
    of rows is compressed once and repeated (ImageMagick refuses such sizes)."""
    def chunk(kind, data):
        return (struct.pack(">I", len(data)) + kind + data +
                struct.pack(">I", zlib.crc32(kind + data)))
    block = (b"\x00" + bytes(rgb) * width) * rows_per_block
    raw = zlib.compressobj(9, zlib.DEFLATED, -15)
    repeated = raw.compress(block) + raw.flush(zlib.Z_FULL_FLUSH)
    ending = zlib.compressobj(9, zlib.DEFLATED, -15).flush(zlib.Z_FINISH)
    checksum = 1
    for _ in range(height // rows_per_block):
        checksum = zlib.adler32(block, checksum)
    stream = (b"\x78\xda" + repeated * (height // rows_per_block) + ending +
              struct.pack(">I", checksum))
    with open(path, "wb") as out:
        out.write(b"\x89PNG\r\n\x1a\n")
        out.write(chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)))
        out.write(chunk(b"IDAT", stream))
        out.write(chunk(b"IEND", b""))


def colour_histogram(path, crop=None):
    """{colour hex: pixel count} of an image (or of a WxH+X+Y part of it)."""
    arguments = ["convert", path]
    if crop:
        arguments += ["-crop", crop, "+repage"]
    text = subprocess.run([*arguments, "-format", "%c", "histogram:info:-"],
                          capture_output=True, text=True, check=True).stdout
    counts = {}
    for line in text.splitlines():
        count, _, rest = line.strip().partition(":")
        hex_start = rest.find("#")
        if hex_start >= 0:
            counts[rest[hex_start:hex_start + 7].lower()] = int(count)
    return counts


def read_bytes(path):
    with open(path, "rb") as data:
        return data.read()


def frame_extents(window_id):
    """(left, right, top, bottom) of the window manager's frame."""
    text = subprocess.run(["xprop", "-id", str(window_id), "_NET_FRAME_EXTENTS"],
                          capture_output=True, text=True).stdout
    if "=" not in text:
        return (0, 0, 0, 0)
    return tuple(int(value) for value in text.split("=")[1].split(","))


class PreviewSession(unittest.TestCase):
    NAMES = ["alpha.png", "Screenshot beta.png", "gamma.png"]  # oldest first
    # The program answers in its own (scaled) coordinates; xdotool and
    # xwininfo speak in screen pixels.
    SCALE = 1
    EXTRA_ENV = {}

    def setUp(self):
        self.home = FreshHome()
        self.home.env.update(self.EXTRA_ENV)
        self.write_files()
        self.app = RunningApp(BINARY, self.home)
        wait_until(lambda: "(id 6)" in self.app.output(), what="hotkeys")
        wait_until(lambda: call_app("ListedFiles") is not None, what="the D-Bus interface")
        call_app("SetShowOnlyQuillixItems", "boolean:false")
        wait_until(lambda: len(call_app("ListedFiles") or []) == len(self.NAMES),
                   what="every file listed")

    def write_files(self):
        for name in self.NAMES:
            make_png(self.path(name))
            time.sleep(0.1)  # distinct creation times: a known order

    def tearDown(self):
        try:
            self.app.stop_cleanly()  # also when it has quit by itself
        finally:
            if self._outcome.result.failures or self._outcome.result.errors:
                print(self.app.output()[-4000:])
            self.home.cleanup()

    def path(self, name):
        return os.path.join(self.home.folders["Desktop"], name)

    def locate(self, name):
        return tuple(value * self.SCALE for value in locate(name))

    def click(self, name):
        x, y = centre(self.locate(name))
        xdotool("mousemove", str(x), str(y))
        time.sleep(0.15)
        xdotool("click", "1")

    def open_gallery(self):
        if not viewable_windows(POPOVER):
            xdotool("key", "super+shift+1")
        wait_until(lambda: viewable_windows(POPOVER), what="the gallery popover")
        locate(call_app("ListedFiles")[0])
        time.sleep(0.4)  # the entrance slide

    def open_preview(self, name):
        self.open_gallery()
        self.click(name)
        title = os.path.splitext(name)[0]
        window = wait_until(lambda: viewable_windows(title), what=f"the preview of {name}")[0]
        time.sleep(0.6)  # fade-in and the picture's read
        return window


class UnsavedAnnotationsAndTheFileFollowed(PreviewSession):
    def draw_rectangle(self, window):
        self.click("Rectangle")
        x, y, width, height = window_geometry(window)
        start = (x + 44 + 120, y + height // 2 - 60)
        xdotool("mousemove", str(start[0]), str(start[1]))
        xdotool("mousedown", "1")
        for step in range(1, 11):
            xdotool("mousemove", str(start[0] + 16 * step), str(start[1] + 10 * step))
            time.sleep(0.02)
        xdotool("mouseup", "1")
        time.sleep(0.3)

    def has_outline(self, name):
        colours = colour_histogram(self.path(name))
        return sum(count for hexa, count in colours.items() if hexa != FILL) > 200

    def question_shown(self):
        return bool(viewable_windows(QUESTION))

    def cell_rect(self, name):
        """Where the gallery shows `name`. A preview window is named after
        its file as well, so the cells are located once, before any opens,
        and found again by their place in the list (newest first)."""
        if not hasattr(self, "cell_rects"):
            self.open_gallery()
            self.cell_rects = [self.locate(listed) for listed in call_app("ListedFiles")]
        return self.cell_rects[call_app("ListedFiles").index(name)]

    def context_menu(self, name, downs):
        x, y = centre(self.cell_rect(name))
        xdotool("mousemove", str(x), str(y))
        time.sleep(0.2)
        xdotool("click", "3")
        time.sleep(0.5)
        for _ in range(downs):
            xdotool("key", "Down")
            time.sleep(0.05)

    def test_closing_asks_and_the_preview_follows_renames_and_the_trash(self):
        self.cell_rect("gamma.png")
        gamma = self.path("gamma.png")
        original = read_bytes(gamma)
        window = self.open_preview("gamma.png")
        self.draw_rectangle(window)

        # Ctrl+W asks; Cancel (Escape) keeps the window and its drawing.
        xdotool("key", "ctrl+w")
        wait_until(self.question_shown, what="the question after Ctrl+W")
        xdotool("key", "Escape")
        wait_until(lambda: not self.question_shown(), what="Cancel to close the question")
        time.sleep(0.5)
        self.assertTrue(viewable_windows("gamma"), "Cancel closed the preview")
        self.assertEqual(read_bytes(gamma), original)

        # Escape asks too; Discard closes without writing.
        xdotool("windowactivate", "--sync", window)
        xdotool("key", "Escape")
        wait_until(self.question_shown, what="the question after Escape")
        self.click("Discard")
        wait_until(lambda: not viewable_windows("gamma"), what="Discard to close the preview")
        self.assertEqual(read_bytes(gamma), original)

        # The window's close button asks; Save (the default) writes, then closes.
        window = self.open_preview("gamma.png")
        self.draw_rectangle(window)
        x, y, width, _ = window_geometry(window)
        _, right, top, _ = frame_extents(window)
        xdotool("mousemove", str(x + width + right - 10), str(y - top // 2))
        time.sleep(0.2)
        xdotool("click", "1")
        wait_until(self.question_shown, what="the question after the close button")
        xdotool("key", "Return")
        wait_until(lambda: not viewable_windows("gamma"), what="Save to close the preview")
        self.assertTrue(self.has_outline("gamma.png"))

        # Renamed from the gallery while its preview is open: the preview
        # takes the new name, and Ctrl+S writes there.
        window = self.open_preview("alpha.png")
        self.draw_rectangle(window)
        self.open_gallery()
        self.context_menu("alpha.png", 4)  # Color Label, Add Event…, Copy Image, Rename…
        xdotool("key", "Return")
        time.sleep(0.6)
        xdotool("key", "ctrl+a")
        xdotool("type", "--delay", "40", "Bug 12")
        xdotool("key", "Return")
        wait_until(lambda: os.path.exists(self.path("Bug 12.png")), what="the renamed file")
        wait_until(lambda: viewable_windows("Bug 12"), what="the preview's new title")
        xdotool("windowactivate", "--sync", window)
        time.sleep(0.2)
        xdotool("key", "ctrl+s")
        wait_until(lambda: self.has_outline("Bug 12.png"), what="the drawing in the new name")
        time.sleep(0.5)
        self.assertFalse(os.path.exists(self.path("alpha.png")), "the old name came back")

        # Trashed from the gallery: the preview (nothing unsaved) closes.
        self.open_gallery()
        self.context_menu("Bug 12.png", 5)  # …, Rename…, Move to Trash
        xdotool("key", "Return")
        trashed = os.path.join(self.home.data, "Trash", "files", "Bug 12.png")
        wait_until(lambda: os.path.exists(trashed), what="Bug 12.png in the trash")
        wait_until(lambda: not viewable_windows("Bug 12"), what="its preview to close")
        self.assertFalse(os.path.exists(self.path("Bug 12.png")))

        # Quitting from the pill asks as well: Cancel keeps the program,
        # Discard quits without writing.
        beta = self.path("Screenshot beta.png")
        original = read_bytes(beta)
        window = self.open_preview("Screenshot beta.png")
        self.draw_rectangle(window)
        self.open_gallery()
        self.click("Quit")
        wait_until(self.question_shown, what="the question after Quit")
        xdotool("key", "Escape")
        wait_until(lambda: not self.question_shown(), what="Cancel")
        time.sleep(0.5)
        self.assertTrue(self.app.alive(), "Cancel did not keep the program running")
        self.assertTrue(viewable_windows("Screenshot beta"))
        self.open_gallery()
        self.click("Quit")
        wait_until(self.question_shown, what="the question after Quit again")
        self.click("Discard")
        wait_until(lambda: not self.app.alive(), what="the program to quit")
        self.assertEqual(self.app.process.returncode, 0)
        self.assertEqual(read_bytes(beta), original)


class KeysAndTextInThePreview(PreviewSession):
    NAMES = ["typed.png"]

    def changed_pixels(self):
        return sum(count for hexa, count in colour_histogram(self.path("typed.png")).items()
                   if hexa != FILL)

    def test_a_tool_key_picks_the_tool_and_ctrl_s_saves_text_still_being_typed(self):
        window = self.open_preview("typed.png")
        x, y, width, height = window_geometry(window)
        xdotool("key", "t")
        time.sleep(0.2)
        xdotool("mousemove", str(x + 44 + 120), str(y + height // 2), "click", "1")
        time.sleep(0.3)
        xdotool("type", "--delay", "30", "abc")
        # Escape in the text field drops the text and keeps the window.
        xdotool("key", "Escape")
        time.sleep(0.6)
        self.assertTrue(viewable_windows("typed"))
        self.assertFalse(viewable_windows(QUESTION))

        xdotool("click", "1")
        time.sleep(0.3)
        xdotool("type", "--delay", "30", "WWWW")
        xdotool("key", "ctrl+s")  # the text is still open: saved as it shows
        wait_until(lambda: self.changed_pixels() > 30, what="the text in the file")


class ScaledScreenAndAHugePicture(PreviewSession):
    NAMES = ["huge.png"]
    SCALE = 2
    EXTRA_ENV = {"QT_SCALE_FACTOR": "2"}

    def write_files(self):
        flat_png(self.path("huge.png"), 20000, 20000, FILL_RGB)

    def test_the_preview_fits_a_200_percent_screen_and_shows_a_20000_pixel_picture(self):
        self.open_gallery()
        # The gallery's cell shows the picture (its thumbnail is read small).
        def cell_has_picture():
            cell = self.locate("huge.png")
            shot = os.path.join(self.home.root, "cell.png")
            subprocess.run(["import", "-window", "root", "-crop",
                            f"{cell[2]}x{cell[3]}+{cell[0]}+{cell[1]}", shot], check=True)
            colours = colour_histogram(shot)
            return colours.get(FILL, 0) > cell[2] * cell[3] // 3
        wait_until(cell_has_picture, timeout=60, what="the huge picture's thumbnail")

        window = self.open_preview("huge.png")
        x, y, width, height = window_geometry(window)
        left, right, top, bottom = frame_extents(window)
        self.assertGreaterEqual(x - left, 0)
        self.assertGreaterEqual(y - top, 0, "the title bar is above the screen")
        self.assertLessEqual(x + width + right, 1920)
        self.assertLessEqual(y + height + bottom, 1080)

        def preview_shows_picture():
            shot = os.path.join(self.home.root, "preview.png")
            subprocess.run(["import", "-window", window, shot], check=True)
            return colour_histogram(shot).get(FILL, 0) > width * height // 4
        wait_until(preview_shows_picture, timeout=60, what="the huge picture in the preview")
        xdotool("key", "Escape")
        wait_until(lambda: not viewable_windows("huge"), what="Escape to close it")


if __name__ == "__main__":
    BINARY = sys.argv.pop(1)
    unittest.main(verbosity=2)
