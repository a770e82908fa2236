#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Quillix developers
"""Recording the screen and a window in the running program, driven with the
hotkeys and the status panel's Stop like a user; the files checked with ffprobe
and decoded pictures. The cases run in name order on one program, which the
last one kills and starts again."""
import json
import os
import re
import signal
import subprocess
import sys
import time

sys.path.insert(0, os.path.dirname(__file__))
import quillix_session  # noqa: E402
from quillix_session import (AppTestCase, RunningApp, click_control, frame_extents,  # noqa: E402
                             is_shown, listed, locate, open_test_window, wait_until,
                             window_geometry, xdotool)

TEST_WINDOW = None  # test_window, from the command line
FILE_NAME = re.compile(r"^Recording_(\d+)\.mp4$")
RED = (208, 32, 32)
BLUE = (32, 64, 208)


def probe(path):
    """What ffprobe says of the video stream, frames counted by decoding."""
    out = subprocess.run(
        ["ffprobe", "-v", "error", "-count_frames", "-select_streams", "v:0",
         "-show_entries", "stream=codec_name,width,height,avg_frame_rate,nb_read_frames",
         "-show_entries", "format=duration", "-of", "json", path],
        capture_output=True, text=True, check=True).stdout
    document = json.loads(out)
    stream = document["streams"][0]
    return {"codec": stream["codec_name"], "width": stream["width"],
            "height": stream["height"], "rate": stream["avg_frame_rate"],
            "frames": int(stream["nb_read_frames"]),
            "duration": float(document["format"]["duration"])}


def frame_colour(video, seconds, x, y, folder):
    """The mean colour of a 20 × 20 square around (x, y) of the picture shown
    at `seconds`."""
    picture = os.path.join(folder, "frame.png")
    subprocess.run(["ffmpeg", "-v", "error", "-y", "-ss", str(seconds), "-i", video,
                    "-frames:v", "1", picture], check=True)
    text = subprocess.run(
        ["convert", picture, "-crop", f"20x20+{x - 10}+{y - 10}", "+repage", "-scale", "1x1!",
         "-format", "%[fx:int(255*r)],%[fx:int(255*g)],%[fx:int(255*b)]", "info:"],
        capture_output=True, text=True, check=True).stdout
    return tuple(int(value) for value in text.split(","))


def close_to(colour, expected, tolerance=24):
    return all(abs(a - b) <= tolerance for a, b in zip(colour, expected))


def own_visible_windows():
    return subprocess.run(["xdotool", "search", "--onlyvisible", "--class", "^quillix$"],
                          capture_output=True, text=True).stdout.split()


class Recording(AppTestCase):
    windows = []

    @classmethod
    def prepare(cls):
        cls.sound = os.path.join(cls.home.root, "sound.raw")
        # Sounds are written to a file instead of a sound card.
        with open(os.path.join(cls.home.home, ".asoundrc"), "w") as asoundrc:
            asoundrc.write('pcm.!default {\n type file\n slave.pcm "null"\n'
                           f' file "{cls.sound}"\n format "raw"\n}}\n')
        cls.desktop = cls.home.folders["Desktop"]

    @classmethod
    def tearDownClass(cls):
        for window in cls.windows:
            window.terminate()
            window.wait(timeout=10)
        super().tearDownClass()

    @classmethod
    def open_window(cls, x, y, width, height, colour, title):
        """A window of another process; its X id once it is on screen."""
        process, window = open_test_window(TEST_WINDOW, x, y, width, height, colour, title)
        cls.windows.append(process)
        return window

    def recordings(self):
        return sorted(name for name in os.listdir(self.desktop) if FILE_NAME.match(name))

    def wait_for_panel(self):
        locate("Stop")
        return time.monotonic()

    def stop_and_wait(self, count):
        """Clicks Stop; the newest of `count` finished recordings."""
        click_control("Stop")
        clicked = time.monotonic()
        xdotool("mousemove", "100", "900")
        wait_until(lambda: self.app.output().count("[VideoRecorder] Saved →") == count,
                   timeout=30, what="the finished file")
        self.assertFalse(is_shown("Stop"))
        files = self.recordings()
        self.assertEqual(len(files), count, files)
        return clicked

    def test_1_the_screen_is_recorded_until_stop(self):
        window = self.open_window(300, 400, 400, 300, RED, "Red target")
        x, y, width, height = window_geometry(window)
        started_at = time.time()
        xdotool("key", "super+7")
        shown = self.wait_for_panel()

        # The clock runs, and the window being worked in keeps the keyboard.
        wait_until(lambda: is_shown("0:02"), timeout=5, what="0:02 on the panel")
        focused = subprocess.run(["xdotool", "getwindowfocus"], capture_output=True, text=True,
                                 check=True).stdout.strip()
        self.assertEqual(int(focused), window)
        xdotool("key", "super+7")  # ignored while recording
        xdotool("key", "super+6")
        time.sleep(max(0.0, shown + 3.0 - time.monotonic()))
        clicked = self.stop_and_wait(1)

        name = self.recordings()[0]
        self.assertLessEqual(abs(int(FILE_NAME.match(name)[1]) - started_at), 3)
        video = os.path.join(self.desktop, name)
        info = probe(video)
        self.assertEqual((info["codec"], info["width"], info["height"], info["rate"]),
                         ("h264", 1920, 1080, "30/1"))
        self.assertLessEqual(abs(info["frames"] - 30 * info["duration"]), 1, info)
        self.assertLess(abs(info["duration"] - (clicked - shown)), 0.5, info)
        self.assertTrue(close_to(frame_colour(video, 1.0, x + width // 2, y + height // 2,
                                              self.home.root), RED))

        wait_until(lambda: listed()[:1] == [name],
                   what="the recording first in the gallery")
        wait_until(lambda: os.path.exists(self.sound) and os.path.getsize(self.sound) > 0,
                   what="the shutter sound")

    def test_2_a_picked_window_is_recorded_with_its_frame(self):
        window = self.open_window(900, 300, 501, 321, BLUE, "Blue target")
        x, y, width, height = window_geometry(window)
        left, right, top, bottom = frame_extents(window)
        xdotool("key", "super+6")
        time.sleep(0.6)  # the pick has taken the pointer
        xdotool("mousemove", str(x + width // 2), str(y + height // 2))
        time.sleep(0.3)
        xdotool("click", "1")
        self.wait_for_panel()
        xdotool("mousemove", "100", "900")
        time.sleep(2.0)
        self.stop_and_wait(2)

        video = os.path.join(self.desktop, self.recordings()[-1])
        info = probe(video)
        frame_width, frame_height = left + width + right, top + height + bottom
        # An odd size is padded by one edge pixel.
        self.assertEqual((info["width"], info["height"]),
                         (frame_width + frame_width % 2, frame_height + frame_height % 2))
        self.assertTrue(close_to(frame_colour(video, 1.0, left + width // 2, top + height // 2,
                                              self.home.root), BLUE))
        # The title bar is recorded too.
        self.assertFalse(close_to(frame_colour(video, 1.0, frame_width // 2, top // 2,
                                               self.home.root), BLUE))
        wait_until(lambda: listed()[:1] == [os.path.basename(video)],
                   what="the window recording first in the gallery")

    def test_3_escape_leaves_nothing_and_records_nothing(self):
        window = self.open_window(200, 250, 300, 200, BLUE, "Escape target")
        x, y, width, height = window_geometry(window)
        before = own_visible_windows()
        xdotool("key", "super+6")
        time.sleep(0.6)
        xdotool("mousemove", str(x + width // 2), str(y + height // 2))
        wait_until(lambda: len(own_visible_windows()) > len(before),
                   what="the outline")
        xdotool("key", "Escape")
        wait_until(lambda: own_visible_windows() == before,
                   what="the outline gone")
        time.sleep(1.0)
        self.assertEqual(len(self.recordings()), 2)
        self.assertFalse(is_shown("Stop"))
        # The picker is idle again: the screen hotkey records.
        xdotool("key", "super+7")
        self.wait_for_panel()
        time.sleep(1.0)
        self.stop_and_wait(3)

    def test_4_a_killed_recording_plays_and_a_quit_finishes_the_file(self):
        xdotool("key", "super+7")
        self.wait_for_panel()
        time.sleep(4.5)  # two key frames, so two fragments, are on disk
        self.assertEqual(len(self.recordings()), 4)
        partial = os.path.join(self.desktop, self.recordings()[-1])
        self.app.process.send_signal(signal.SIGKILL)
        self.app.process.wait()
        info = probe(partial)
        self.assertEqual(info["codec"], "h264")
        self.assertGreaterEqual(info["duration"], 1.9, info)
        self.assertGreater(info["frames"], 50, info)

        # After a restart a recording works, and a quit during it finishes
        # the file rather than leaving it fragmented.
        type(self).app = RunningApp.ready(self.home)
        time.sleep(1.1)  # a new second: a new file name
        xdotool("key", "super+7")
        self.wait_for_panel()
        time.sleep(2.0)
        self.assertEqual(self.app.stop(), 0, self.app.output()[-4000:])
        self.assertEqual(len(self.recordings()), 5)
        finished = os.path.join(self.desktop, self.recordings()[-1])
        with open(finished, "rb") as video:
            data = video.read()
        self.assertNotIn(b"moof", data)  # one index in front, no fragments
        self.assertLess(data.index(b"moov"), data.index(b"mdat"))
        info = probe(finished)
        self.assertLessEqual(abs(info["frames"] - 30 * info["duration"]), 1, info)
        self.assertGreater(info["duration"], 1.5, info)


if __name__ == "__main__":
    TEST_WINDOW = os.path.abspath(sys.argv.pop(2))
    quillix_session.main()
