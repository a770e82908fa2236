#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Quillix developers

"""Window and area captures in the running program and what becomes of their
files: the own-captures list (with a damaged registry entry), captures in one
second, the clipboard and notifications, the preview's rewrite, a save folder
that cannot be written, and a quit right after Return."""
import glob
import json
import os
import re
import shutil
import signal
import subprocess
import sys
import time

sys.path.insert(0, os.path.dirname(__file__))
from quillix_session import (OVERLAY, AppTestCase, NotificationMonitor,  # noqa: E402
                             call_app, captures_in, click_control, clipboard_png,
                             differing_pixels, drag, image_size, listed, main, pixels, seal,
                             select_area, show_picture, screen_shot, viewable_windows,
                             wait_for_no_window, wait_for_window, wait_until, write_pattern,
                             xdotool)

FILE_NAME = re.compile(r"^Screenshot_\d{4}-\d\d-\d\dT\d\d-\d\d-\d\dZ( \(\d\))?\.png$")


class CaptureSession(AppTestCase):
    """A pattern window to capture, and the notifications recorded."""

    @classmethod
    def prepare(cls):
        cls.pattern = os.path.join(cls.home.root, "pattern.png")
        write_pattern(cls.pattern)
        cls.viewer, cls.window = show_picture(cls.pattern)
        cls.monitor = NotificationMonitor(os.path.join(cls.home.root, "notify.log"))

    @classmethod
    def tearDownClass(cls):
        cls.monitor.stop()
        cls.viewer.terminate()
        super().tearDownClass()

    def capture_window(self):
        self.assertIsNotNone(call_app("CaptureWindow", f"uint32:{self.window}"))

    def wait_recorded(self, path):
        inode = os.stat(path).st_ino
        wait_until(lambda: inode in self.home.registry_inodes(), what=f"{path} in registry.bin")


class OwnCaptures(CaptureSession):
    """Two earlier own captures (and a registry entry that cannot be an
    inode) beside another program's picture on the Desktop."""
    EARLIER = ["earlier-a.png", "earlier-b.png"]

    @classmethod
    def prepare(cls):
        subprocess.run(["xsetroot", "-solid", "#336699"], check=True)
        super().prepare()
        for name in cls.EARLIER + ["other-tool.png"]:
            shutil.copy(cls.pattern, cls.home.desktop(name))
        inodes = [os.stat(cls.home.desktop(name)).st_ino for name in cls.EARLIER]
        os.makedirs(cls.home.data_dir)
        with open(os.path.join(cls.home.data_dir, "registry.bin"), "wb") as registry:
            registry.write(seal(json.dumps([inodes[0], -1, inodes[1]]).encode()))

    def desktop_captures(self):
        return captures_in(self.home.folders["Desktop"])

    def test_1_only_own_captures_are_listed_and_a_window_that_is_gone_gives_nothing(self):
        wait_until(lambda: sorted(listed()) == self.EARLIER, what="the earlier captures listed")
        self.assertIsNotNone(call_app("CaptureWindow", "uint32:4194303"))
        self.assertEqual(sorted(listed()), self.EARLIER)  # still answering
        self.assertEqual(self.desktop_captures(), [])

    def test_2_window_captures_in_one_second_are_saved_copied_notified_and_rewritten(self):
        started = time.monotonic()
        for _ in range(3):
            self.capture_window()
        files = wait_until(lambda: (lambda found: found if len(found) == 3 else None)(
            self.desktop_captures()), what="three capture files")
        names = [os.path.basename(path) for path in files]
        if time.monotonic() - started < 1.0:  # two of them shared a second: none replaced
            self.assertTrue(any(name.endswith("Z (2).png") for name in names), names)
        for path in files:
            self.assertRegex(os.path.basename(path), FILE_NAME)
            self.assertEqual(differing_pixels(self.pattern, path), 0)
            self.wait_recorded(path)
        wait_until(lambda: len(listed()) == 5, what="five listed files")
        clip = clipboard_png(os.path.join(self.home.root, "clip.png"))
        self.assertEqual(differing_pixels(clip, self.pattern), 0)
        wait_until(lambda: all(name in self.monitor.text() for name in names),
                   what="the notifications naming the captures")
        for text in ('string "Screenshot saved"', 'string "Quillix"', "image-path"):
            self.assertIn(text, self.monitor.text())

        # A click on a notification opens its capture, whose Ctrl+S rewrites
        # the file (a new inode) that stays own.
        subprocess.run(["dunstctl", "action", "0"], check=True)
        titles = [name[:-len(".png")] for name in names]
        title = wait_until(lambda: next((t for t in titles if viewable_windows(t)), None),
                           what="a capture's preview window")
        target = files[titles.index(title)]
        old_inode = os.stat(target).st_ino
        time.sleep(0.6)
        xdotool("key", "ctrl+s")
        wait_until(lambda: os.stat(target).st_ino != old_inode, what="the rewritten file")
        self.wait_recorded(target)
        time.sleep(0.5)
        self.assertIn(os.path.basename(target), listed())
        self.assertEqual(len(listed()), 5)
        xdotool("key", "Escape")  # nothing drawn: it closes at once
        wait_for_no_window(title)

    def test_3_an_area_capture_keeps_the_screen_pixels_around_a_rectangle(self):
        subprocess.run(["dunstctl", "close-all"], check=True)
        time.sleep(0.3)
        x, y, width, height = 250, 150, 300, 200
        screen = screen_shot(os.path.join(self.home.root, "screen.png"))
        before = self.desktop_captures()
        select_area(x, y, width, height)
        click_control("Rectangle")
        drag((x + 50, y + 40), (x + 150, y + 120))
        drag((x + 200, y + 20), (x + 280, y + 100))
        xdotool("key", "ctrl+z")  # takes the second rectangle back
        xdotool("key", "Return")
        capture = wait_until(lambda: [path for path in self.desktop_captures()
                                      if path not in before], what="the area capture")[0]
        wait_for_no_window(OVERLAY)
        self.assertEqual(image_size(capture), f"{width}x{height}")
        (red,) = pixels(capture, (100, 40))  # the rectangle's top edge
        self.assertTrue(red[0] > 200 and red[1] < 120, red)
        # Right of the rectangle, the undone one included: the screen's pixels.
        parts = []
        for source, rect in ((capture, "140x200+160+0"), (screen, f"140x200+{x + 160}+{y}")):
            parts.append(os.path.join(self.home.root, f"part{len(parts)}.png"))
            subprocess.run(["convert", source, "-crop", rect, "+repage", parts[-1]], check=True)
        self.assertEqual(differing_pixels(*parts), 0)
        self.wait_recorded(capture)
        self.assertEqual(differing_pixels(clipboard_png(
            os.path.join(self.home.root, "clip-area.png")), capture), 0)


class UnwritableSaveFolder(CaptureSession):
    @classmethod
    def prepare(cls):
        # A Desktop that is a file: no folder can be made there, not even by root.
        os.rmdir(cls.home.folders["Desktop"])
        with open(cls.home.folders["Desktop"], "w") as blocker:
            blocker.write("not a folder")
        super().prepare()

    def test_captures_go_to_pictures_then_stay_on_the_clipboard(self):
        desktop, pictures = self.home.folders["Desktop"], self.home.folders["Pictures"]
        # A window capture lands in Pictures, own and listed, on the clipboard.
        self.capture_window()
        first = wait_until(lambda: captures_in(pictures), what="the capture in Pictures")[0]
        self.assertEqual(differing_pixels(self.pattern, first), 0)
        self.wait_recorded(first)
        wait_until(lambda: os.path.basename(first) in listed(), what="the listed capture")
        self.assertEqual(differing_pixels(clipboard_png(
            os.path.join(self.home.root, "clip1.png")), first), 0)
        wait_until(lambda: first in self.monitor.text(), what="the notification naming it")
        self.assertIn('string "Screenshot saved"', self.monitor.text())
        self.assertIn(desktop, self.monitor.text())
        self.assertIn("⚠️ Quillix: ", self.app.output())
        self.assertIn(first, self.app.output())

        # So does an area capture (its notification alone on screen, to be
        # clicked below).
        subprocess.run(["dunstctl", "close-all"], check=True)
        select_area(300, 200, 120, 80)
        time.sleep(0.3)
        xdotool("key", "Return")
        second = wait_until(lambda: [path for path in captures_in(pictures) if path != first],
                            what="the area capture in Pictures")[0]
        self.assertEqual(image_size(second), "120x80")
        wait_until(lambda: second in self.monitor.text(), what="the area capture's notice")
        self.wait_recorded(second)
        # A click on its notification opens the capture where it went.
        subprocess.run(["dunstctl", "action", "0"], check=True)
        wait_for_window(os.path.splitext(os.path.basename(second))[0],
                        "the preview from the notification")

        # With no fallback left either, the picture stays on the clipboard and
        # the notification says why.
        for folder in (pictures, self.home.data_dir):
            os.rename(folder, folder + ".away")
            with open(folder, "w") as blocker:
                blocker.write("not a folder")
        subprocess.run(["xclip", "-selection", "clipboard", "-i", "/dev/null"], check=True)
        self.capture_window()
        wait_until(lambda: "Screenshot not saved" in self.monitor.text(),
                   what="the not-saved notification")
        self.assertEqual(differing_pixels(clipboard_png(
            os.path.join(self.home.root, "clip3.png")), self.pattern), 0)
        self.assertIn("⚠️ Quillix: screenshot not saved", self.app.output())
        everywhere = glob.glob(os.path.join(self.home.home, "**", "Screenshot_*"), recursive=True)
        self.assertEqual(len(everywhere), 2, everywhere)


class QuitRightAfterReturn(AppTestCase):
    @classmethod
    def prepare(cls):
        # A large window of noise makes a PNG that takes a while to encode.
        noise = os.path.join(cls.home.root, "noise.png")
        subprocess.run(["convert", "-size", "1600x900", "xc:", "+noise", "Random", noise],
                       check=True)
        cls.viewer, _ = show_picture(noise, "+0+40")

    @classmethod
    def tearDownClass(cls):
        cls.viewer.terminate()
        super().tearDownClass()

    def test_sigterm_while_the_capture_is_written_still_records_it(self):
        select_area(2, 30, 1700, 1000)
        time.sleep(0.3)
        xdotool("key", "Return")
        wait_until(lambda: not viewable_windows(OVERLAY), timeout=10, interval=0.005,
                   what="the overlay to close")
        self.app.process.send_signal(signal.SIGTERM)
        self.assertEqual(self.app.process.wait(timeout=20), 0, self.app.output()[-4000:])
        files = captures_in(self.home.folders["Desktop"])
        self.assertEqual(len(files), 1, files)
        self.assertIn(os.stat(files[0]).st_ino, self.home.registry_inodes())


if __name__ == "__main__":
    main()
