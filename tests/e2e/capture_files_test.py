#!/usr/bin/python3
"""What becomes of capture files in the running program: a save folder that
cannot be written, captures in the same second, a quit right after Return,
the preview's rewrite of an own capture, and a registry with a bad entry."""
import glob
import json
import os
import signal
import subprocess
import sys
import time
import unittest

sys.path.insert(0, os.path.dirname(__file__))
from quillix_session import (FreshHome, NotificationMonitor, RunningApp, call_app,  # noqa: E402
                             click_control, differing_pixels, seal, try_open_file,
                             viewable_windows, wait_until, xdotool)

BINARY = None
OVERLAY = "Area selection"


def make_pattern(path, size="240x160"):
    subprocess.run(["convert", "-size", size, "gradient:#ff2020-#2040ff", "-fill", "#10c010",
                    "-draw", "rectangle 20,20 90,70", "-depth", "8", f"PNG24:{path}"], check=True)


def clipboard_png(path):
    with open(path, "wb") as out:
        subprocess.run(["xclip", "-selection", "clipboard", "-t", "image/png", "-o"],
                       stdout=out, check=True, timeout=10)
    return path


def registry_inodes(home):
    text = try_open_file(os.path.join(home.data_dir, "registry.bin"))
    return set(json.loads(text)) if text is not None else set()


def captures_in(folder):
    return sorted(glob.glob(os.path.join(folder, "Screenshot_*.png")))


class Session(unittest.TestCase):
    """One program per test, with a pattern window to capture."""

    def setUp(self):
        subprocess.run(["dunstctl", "close-all"], check=True)
        self.home = FreshHome()
        self.app = None
        self.viewer = None
        self.monitor = None

    def tearDown(self):
        try:
            for stop in (lambda: self.monitor and self.monitor.stop(),
                         lambda: self.viewer and self.viewer.terminate()):
                stop()
            if self.app:
                self.app.stop_cleanly()
        finally:
            if self.app and (self._outcome.result.failures or self._outcome.result.errors):
                print(self.app.output()[-4000:])
            self.home.cleanup()

    def start(self):
        self.app = RunningApp(BINARY, self.home)
        wait_until(lambda: "(id 6)" in self.app.output(), what="hotkeys")
        wait_until(lambda: call_app("ListedFiles") is not None, what="the D-Bus interface")
        self.monitor = NotificationMonitor(os.path.join(self.home.root, "notify.log"))

    def show_pattern(self):
        self.pattern = os.path.join(self.home.root, "pattern.png")
        make_pattern(self.pattern)
        self.viewer = subprocess.Popen(["display", "-geometry", "+300+200", self.pattern])
        found = subprocess.run(["xdotool", "search", "--sync", "--onlyvisible", "--class",
                                "display"], capture_output=True, text=True, check=True)
        return int(found.stdout.split()[0])

    def area_capture(self, x, y, width, height):
        xdotool("key", "super+2")
        wait_until(lambda: viewable_windows(OVERLAY), what="the area overlay")
        time.sleep(0.2)
        xdotool("mousemove", str(x), str(y), "mousedown", "1", "mousemove", str(x + width // 2),
                str(y + height // 2), "mousemove", str(x + width), str(y + height), "mouseup", "1")
        time.sleep(0.3)
        xdotool("key", "Return")

    def notifications(self):
        return self.monitor.text()


class UnwritableSaveFolder(Session):
    def test_captures_go_to_pictures_then_stay_on_the_clipboard(self):
        # A Desktop that is a file: no folder can be made there, not even by root.
        desktop = self.home.folders["Desktop"]
        os.rmdir(desktop)
        with open(desktop, "w") as blocker:
            blocker.write("not a folder")
        pictures = self.home.folders["Pictures"]
        window = self.show_pattern()
        self.start()

        # A window capture lands in Pictures, own and listed, on the clipboard.
        self.assertIsNotNone(call_app("CaptureWindow", f"uint32:{window}"))
        first = wait_until(lambda: captures_in(pictures), what="the capture in Pictures")[0]
        self.assertEqual(differing_pixels(self.pattern, first), 0)
        name = os.path.basename(first)
        wait_until(lambda: os.stat(first).st_ino in registry_inodes(self.home),
                   what="the inode in registry.bin")
        wait_until(lambda: name in (call_app("ListedFiles") or []), what="the listed capture")
        self.assertEqual(differing_pixels(clipboard_png(
            os.path.join(self.home.root, "clip1.png")), first), 0)
        wait_until(lambda: first in self.notifications(), what="the notification naming it")
        self.assertIn('string "Screenshot saved"', self.notifications())
        self.assertIn(desktop, self.notifications())
        log = self.app.output()
        self.assertIn("⚠️ Quillix: ", log)
        self.assertIn(first, log)

        # So does an area capture (its notification alone on screen, to be
        # clicked below).
        subprocess.run(["dunstctl", "close-all"], check=True)
        self.area_capture(300, 200, 120, 80)
        second = wait_until(lambda: [path for path in captures_in(pictures) if path != first],
                            what="the area capture in Pictures")[0]
        self.assertEqual(subprocess.run(["identify", "-format", "%wx%h", second],
                                        capture_output=True, text=True).stdout, "120x80")
        wait_until(lambda: second in self.notifications(), what="the area capture's notice")
        wait_until(lambda: os.stat(second).st_ino in registry_inodes(self.home),
                   what="the area capture's inode in registry.bin")
        # A click on its notification opens the capture where it went.
        subprocess.run(["dunstctl", "action", "0"], check=True)
        title = os.path.splitext(os.path.basename(second))[0]
        wait_until(lambda: viewable_windows(title), what="the preview from the notification")

        # With no fallback left either, the picture stays on the clipboard and
        # the notification says why.
        os.rename(pictures, pictures + ".away")
        with open(pictures, "w") as blocker:
            blocker.write("not a folder")
        os.rename(self.home.data_dir, self.home.data_dir + ".away")
        with open(self.home.data_dir, "w") as blocker:
            blocker.write("not a folder")
        subprocess.run(["xclip", "-selection", "clipboard", "-i", "/dev/null"], check=True)
        self.assertIsNotNone(call_app("CaptureWindow", f"uint32:{window}"))
        wait_until(lambda: "Screenshot not saved" in self.notifications(),
                   what="the not-saved notification")
        self.assertEqual(differing_pixels(clipboard_png(
            os.path.join(self.home.root, "clip3.png")), self.pattern), 0)
        self.assertIn("⚠️ Quillix: screenshot not saved", self.app.output())
        everywhere = glob.glob(os.path.join(self.home.home, "**", "Screenshot_*"), recursive=True)
        self.assertEqual(len(everywhere), 2, everywhere)


class SameSecondAndRewrites(Session):
    def test_bad_registry_entry_same_second_captures_and_a_preview_save(self):
        desktop = self.home.folders["Desktop"]
        # Two earlier own captures, and one registry entry that cannot be an inode.
        earlier = [os.path.join(desktop, name) for name in ("earlier-a.png", "earlier-b.png")]
        for path in earlier:
            make_pattern(path)
        os.makedirs(self.home.data_dir)
        inodes = [os.stat(path).st_ino for path in earlier]
        with open(os.path.join(self.home.data_dir, "registry.bin"), "wb") as registry:
            registry.write(seal(json.dumps([inodes[0], -1, inodes[1]]).encode()))
        window = self.show_pattern()
        self.start()
        wait_until(lambda: sorted(call_app("ListedFiles") or []) == ["earlier-a.png",
                                                                     "earlier-b.png"],
                   what="both earlier captures listed")

        # Three window captures within one second: three files, none replaced.
        started = time.monotonic()
        for _ in range(3):
            self.assertIsNotNone(call_app("CaptureWindow", f"uint32:{window}"))
        files = wait_until(lambda: (lambda found: found if len(found) == 3 else None)(
            captures_in(desktop)), what="three capture files")
        if time.monotonic() - started < 1.0:  # two of them shared a second
            self.assertTrue(any(path.endswith("Z (2).png") for path in files), files)
        for path in files:
            self.assertEqual(differing_pixels(self.pattern, path), 0)
        wait_until(lambda: len(call_app("ListedFiles") or []) == 5, what="five listed files")

        # Ctrl+S in the preview rewrites the file (a new inode) and it stays own.
        target = next(path for path in files if "(" not in path)  # a plain window title
        name = os.path.basename(target)
        old_inode = os.stat(target).st_ino
        subprocess.run(["dunstctl", "close-all"], check=True)  # they cover the gallery
        call_app("TogglePopover")
        wait_until(lambda: call_app("IsPopoverShown") == [True], what="the gallery")
        time.sleep(0.4)
        click_control(name)
        title = name[:-len(".png")]
        wait_until(lambda: viewable_windows(title), what="the preview window")
        time.sleep(0.6)
        xdotool("key", "ctrl+s")
        wait_until(lambda: os.stat(target).st_ino != old_inode, what="the rewritten file")
        new_inode = os.stat(target).st_ino
        wait_until(lambda: new_inode in registry_inodes(self.home),
                   what="the new inode in registry.bin")
        time.sleep(0.5)
        wait_until(lambda: name in (call_app("ListedFiles") or []), what="the rewritten capture")
        self.assertEqual(len(call_app("ListedFiles")), 5)


class QuitRightAfterReturn(Session):
    def test_sigterm_while_the_capture_is_written_still_records_it(self):
        # A large window of noise makes a PNG that takes a while to encode.
        noise = os.path.join(self.home.root, "noise.png")
        subprocess.run(["convert", "-size", "1600x900", "xc:", "+noise", "Random", noise],
                       check=True)
        self.viewer = subprocess.Popen(["display", "-geometry", "+0+40", noise])
        subprocess.run(["xdotool", "search", "--sync", "--onlyvisible", "--class", "display"],
                       capture_output=True, check=True)
        self.start()
        self.area_capture(2, 30, 1700, 1000)
        wait_until(lambda: not viewable_windows(OVERLAY), timeout=10, interval=0.005,
                   what="the overlay to close")
        self.app.process.send_signal(signal.SIGTERM)
        self.assertEqual(self.app.process.wait(timeout=20), 0, self.app.output()[-4000:])
        files = captures_in(self.home.folders["Desktop"])
        self.assertEqual(len(files), 1, files)
        self.assertIn(os.stat(files[0]).st_ino, registry_inodes(self.home))


if __name__ == "__main__":
    BINARY = sys.argv.pop(1)
    unittest.main(verbosity=2)
