#!/usr/bin/python3
"""Window capture in the running program, and what the library lists."""
import glob
import json
import os
import re
import shutil
import subprocess
import sys
import unittest

sys.path.insert(0, os.path.dirname(__file__))
from quillix_session import (FreshHome, NotificationMonitor, RunningApp, call_app,  # noqa: E402
                             differing_pixels, try_open_file, viewable_windows, wait_until)

BINARY = None
FILE_NAME = re.compile(r"^Screenshot_\d{4}-\d\d-\d\dT\d\d-\d\d-\d\dZ\.png$")


def make_pattern(path):
    """A 240 × 160 picture with gradients and sharp edges."""
    subprocess.run(["convert", "-size", "240x160", "gradient:#ff2020-#2040ff",
                    "-fill", "#10c010", "-draw", "rectangle 20,20 90,70",
                    "-fill", "white", "-draw", "circle 170,100 190,120", "-depth", "8",
                    f"PNG24:{path}"], check=True)


class WindowCapture(unittest.TestCase):
    def setUp(self):
        # Popups of earlier tests would take the place of ours in dunst's queue.
        subprocess.run(["dunstctl", "close-all"], check=True)
        self.home = FreshHome()
        self.app = None
        self.viewer = None
        self.monitor = None

    def tearDown(self):
        for stop in (lambda: self.monitor and self.monitor.stop(),
                     lambda: self.viewer and self.viewer.terminate(),
                     lambda: self.app and self.app.stop()):
            stop()
        if self.app and (self._outcome.result.failures or self._outcome.result.errors):
            print(self.app.output())
        self.home.cleanup()

    def start(self, defaults=""):
        if defaults:
            folder = os.path.join(self.home.config, "Quillix")
            os.makedirs(folder, exist_ok=True)
            with open(os.path.join(folder, "Quillix.conf"), "w") as conf:
                conf.write("[General]\n" + defaults)
        self.app = RunningApp(BINARY, self.home)
        wait_until(lambda: call_app("ListedFiles") is not None, what="the D-Bus interface")

    def show_pattern(self):
        pattern = os.path.join(self.home.root, "pattern.png")
        make_pattern(pattern)
        self.viewer = subprocess.Popen(["display", "-geometry", "+300+200", pattern])
        window = subprocess.run(["xdotool", "search", "--sync", "--onlyvisible", "--class",
                                 "display"], capture_output=True, text=True,
                                check=True).stdout.split()[0]
        return pattern, int(window)

    def capture(self, folder):
        pattern, window = self.show_pattern()
        self.monitor = NotificationMonitor(os.path.join(self.home.root, "notify.log"))
        self.assertIsNotNone(call_app("CaptureWindow", f"uint32:{window}"))
        files = wait_until(lambda: glob.glob(os.path.join(folder, "Screenshot_*.png")),
                           what="the capture file")
        self.assertEqual(len(files), 1, files)
        return pattern, files[0]

    def test_window_capture_saves_records_copies_and_notifies(self):
        self.start()
        pattern, capture = self.capture(self.home.folders["Desktop"])
        name = os.path.basename(capture)
        self.assertRegex(name, FILE_NAME)
        self.assertEqual(differing_pixels(pattern, capture), 0)

        registry = os.path.join(self.home.data_dir, "registry.bin")
        inode = os.stat(capture).st_ino
        wait_until(lambda: (lambda doc: doc is not None and inode in json.loads(doc))(
            try_open_file(registry)), what="the inode in registry.bin")

        clip = os.path.join(self.home.root, "clip.png")
        with open(clip, "wb") as out:
            subprocess.run(["xclip", "-selection", "clipboard", "-t", "image/png", "-o"],
                           stdout=out, check=True, timeout=10)
        self.assertEqual(differing_pixels(clip, capture), 0)

        wait_until(lambda: "Screenshot saved" in self.monitor.text(), what="the notification")
        notify = self.monitor.text()
        self.assertIn(f'string "{name}"', notify)
        self.assertIn('string "Quillix"', notify)
        self.assertIn("image-path", notify)
        self.assertIn(name, call_app("ListedFiles"))

        # A click on the notification finds the capture by its file name.
        subprocess.run(["dunstctl", "action", "0"], check=True)
        title = name[:-len(".png")]
        wait_until(lambda: viewable_windows(title), what="the capture's preview window")

    def test_custom_save_folder_is_created_when_missing(self):
        target = os.path.join(self.home.root, "captures", "nested", "deeper")
        self.start(f"customSaveFolder={target}\n")
        _, capture = self.capture(target)
        self.assertTrue(os.path.isfile(capture))
        self.assertEqual(glob.glob(os.path.join(self.home.folders["Desktop"], "*.png")), [])

    def test_failed_capture_writes_nothing(self):
        self.start()
        self.assertIsNotNone(call_app("CaptureWindow", "uint32:4194303"))
        self.assertIsNotNone(call_app("ListedFiles"))  # still answering
        self.assertEqual(glob.glob(os.path.join(self.home.folders["Desktop"], "*")), [])


class LibraryListing(unittest.TestCase):
    def setUp(self):
        self.home = FreshHome()
        self.app = RunningApp(BINARY, self.home)
        wait_until(lambda: call_app("ListedFiles") is not None, what="the D-Bus interface")

    def tearDown(self):
        try:
            self.app.stop_cleanly()
        finally:
            self.home.cleanup()

    def test_own_captures_filter_and_extensions(self):
        desktop = self.home.folders["Desktop"]
        pattern = os.path.join(self.home.root, "pattern.png")
        make_pattern(pattern)
        for name in ("X.PNG", "X.jpg", "other-tool.png", ".hidden.png"):
            shutil.copy(pattern, os.path.join(desktop, name))
        for name in ("a.mov", "b.mp4"):
            subprocess.run(["ffmpeg", "-v", "error", "-f", "lavfi", "-i",
                            "testsrc=size=160x120:rate=10", "-t", "0.5", "-pix_fmt", "yuv420p",
                            os.path.join(desktop, name)], check=True)

        # Another program's files are not listed while the filter is on...
        subprocess.run(["sleep", "1"])
        self.assertEqual(call_app("ListedFiles"), [])

        # ...and are, without a restart, once it is off.
        call_app("SetShowOnlyQuillixItems", "boolean:false")
        listed = wait_until(lambda: (lambda names: names if names and len(names) >= 4 else None)(
            call_app("ListedFiles")), what="the unfiltered list")
        self.assertEqual(sorted(listed), ["X.PNG", "a.mov", "b.mp4", "other-tool.png"])
        settings = try_open_file(os.path.join(self.home.data_dir, "settings.bin"))
        self.assertIn(b'"showOnlyQuillixItems":false', settings)


if __name__ == "__main__":
    BINARY = sys.argv.pop(1)
    unittest.main(verbosity=2)
