#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Quillix developers

"""The preview window with the real program: the question before unsaved
annotations are thrown away by the window manager's close button or the
pill's Quit, and the window on a 200 % screen showing a picture beyond Qt's
default size limit."""
import os
import struct
import subprocess
import sys
import time
import zlib

sys.path.insert(0, os.path.dirname(__file__))
from quillix_session import (FILL, AppTestCase, centre, click_at, click_control,  # noqa: E402
                             colour_histogram, drag, frame_extents, locate, main, open_gallery,
                             screen_shot, wait_for_no_window, wait_for_window, wait_until,
                             window_geometry, write_pictures, xdotool)

QUESTION = "Unsaved Annotations"


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


def read_bytes(path):
    with open(path, "rb") as data:
        return data.read()


def open_preview(name, scale=1):
    """Clicks the gallery cell (the program answers in its own, scaled
    coordinates; xdotool speaks in screen pixels) and waits for the preview."""
    open_gallery()
    click_at(*centre(tuple(value * scale for value in locate(name))))
    window = wait_for_window(os.path.splitext(name)[0], f"the preview of {name}")
    time.sleep(0.6)  # fade-in and the picture's read
    return window


class UnsavedAnnotations(AppTestCase):
    NAMES = ["Screenshot beta.png", "gamma.png"]
    LISTING = len(NAMES)

    @classmethod
    def prepare(cls):
        write_pictures(cls.home.folders["Desktop"], cls.NAMES)

    def draw_rectangle(self, window):
        click_control("Rectangle")
        x, y, _, height = window_geometry(window)
        start = (x + 44 + 120, y + height // 2 - 60)  # in the picture, left of the sidebar
        drag(start, (start[0] + 160, start[1] + 100))
        time.sleep(0.1)

    def question_shown(self):
        return wait_for_window(QUESTION, "the question")

    def test_1_the_close_button_asks_and_save_writes_then_closes(self):
        window = open_preview("gamma.png")
        self.draw_rectangle(window)
        x, y, width, _ = window_geometry(window)
        _, right, top, _ = frame_extents(window)
        click_at(x + width + right - 10, y - top // 2)
        self.question_shown()
        xdotool("key", "Return")  # Save, the default
        wait_for_no_window("gamma", "Save to close the preview")
        colours = colour_histogram(self.home.desktop("gamma.png"))
        self.assertGreater(sum(count for hexa, count in colours.items() if hexa != FILL), 200)

    def test_2_quitting_asks_cancel_keeps_the_program_and_discard_quits_unwritten(self):
        beta = self.home.desktop("Screenshot beta.png")
        original = read_bytes(beta)
        self.draw_rectangle(open_preview("Screenshot beta.png"))
        open_gallery()
        click_control("Quit")
        self.question_shown()
        xdotool("key", "Escape")
        wait_for_no_window(QUESTION, "Cancel")
        time.sleep(0.5)
        self.assertTrue(self.app.alive(), "Cancel did not keep the program running")
        wait_for_window("Screenshot beta")
        open_gallery()
        click_control("Quit")
        self.question_shown()
        click_control("Discard")
        wait_until(lambda: not self.app.alive(), what="the program to quit")
        self.assertEqual(self.app.process.returncode, 0)
        self.assertEqual(read_bytes(beta), original)


class ScaledScreenAndAHugePicture(AppTestCase):
    ENV = {"QT_SCALE_FACTOR": "2"}
    LISTING = 1

    @classmethod
    def prepare(cls):
        flat_png(cls.home.desktop("huge.png"), 20000, 20000, bytes.fromhex(FILL[1:]))

    def test_the_preview_fits_a_200_percent_screen_and_shows_a_20000_pixel_picture(self):
        open_gallery()

        def cell_has_picture():  # its thumbnail is read small
            x, y, width, height = (value * 2 for value in locate("huge.png"))
            shot = screen_shot(os.path.join(self.home.root, "cell.png"),
                               f"{width}x{height}+{x}+{y}")
            return colour_histogram(shot).get(FILL, 0) > width * height // 3
        wait_until(cell_has_picture, timeout=60, what="the huge picture's thumbnail")

        window = open_preview("huge.png", scale=2)
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
        wait_for_no_window("huge", "Escape to close it")


if __name__ == "__main__":
    main()
