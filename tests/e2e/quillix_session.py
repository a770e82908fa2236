# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Quillix developers

"""Helpers for end-to-end tests that run the real program in the virtual desktop.

Each test class gets a fresh HOME with its own XDG folders, starts the program
there once, reads its log from a file (never from a pipe) and stops it by PID.
"""
import configparser
import glob
import json
import os
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "..", "storage"))
import aesgcm_peer  # noqa: E402  (the independent envelope implementation)

seal = aesgcm_peer.seal
BINARY = None  # the program under test, from the command line (see main)
POPOVER = "Quillix gallery"
PILL = "Quillix controls"
OVERLAY = "Area selection"
TOOLBAR = "Annotation toolbar"
FILL = "#3a7d44"


def main():
    global BINARY
    BINARY = sys.argv.pop(1)
    unittest.main(verbosity=2)


def wait_until(predicate, timeout=20.0, interval=0.05, what="condition"):
    deadline = time.monotonic() + timeout
    while time.monotonic() < deadline:
        value = predicate()
        if value:
            return value
        time.sleep(interval)
    raise AssertionError(f"timed out after {timeout:.0f} s waiting for {what}")


class FreshHome:
    """A temporary HOME with Desktop, Documents, Pictures and Videos. The
    welcome slides count as seen unless `first_run`."""

    def __init__(self, first_run=False):
        self.root = tempfile.mkdtemp(prefix="quillix-e2e-")
        self.home = os.path.join(self.root, "home")
        self.folders = {}
        for name in ("Desktop", "Documents", "Pictures", "Videos"):
            self.folders[name] = os.path.join(self.home, name)
            os.makedirs(self.folders[name])
        os.makedirs(os.path.join(self.folders["Pictures"], "Screenshots"))
        # Sounds play into nothing, as on a machine without a sound card.
        with open(os.path.join(self.home, ".asoundrc"), "w") as asoundrc:
            asoundrc.write("pcm.!default { type null }\n")
        self.config = os.path.join(self.home, ".config")
        self.data = os.path.join(self.home, ".local", "share")
        os.makedirs(self.config)
        os.makedirs(self.data)
        with open(os.path.join(self.config, "user-dirs.dirs"), "w") as dirs:
            for name in ("Desktop", "Documents", "Pictures", "Videos"):
                dirs.write(f'XDG_{name.upper()}_DIR="$HOME/{name}"\n')
        runtime = os.path.join(self.root, "runtime")
        os.makedirs(runtime, mode=0o700)
        self.env = {key: value for key, value in os.environ.items()
                    if key not in ("XDG_DESKTOP_DIR", "XDG_DOCUMENTS_DIR",
                                   "XDG_PICTURES_DIR", "XDG_VIDEOS_DIR")}
        self.env.update({
            "HOME": self.home,
            "XDG_CONFIG_HOME": self.config,
            "XDG_DATA_HOME": self.data,
            "XDG_CACHE_HOME": os.path.join(self.home, ".cache"),
            "XDG_STATE_HOME": os.path.join(self.home, ".local", "state"),
            "XDG_RUNTIME_DIR": runtime,
        })
        self.first_run = first_run
        self.write_preferences()

    @property
    def preferences_path(self):
        return os.path.join(self.config, "Quillix", "Quillix.conf")

    def write_preferences(self, **values):
        """Quillix.conf holding `values`, the welcome slides counted as seen
        and no automatic update checks."""
        if not self.first_run:
            values.setdefault("hasSeenOnboarding", "true")
        # No test reaches out to the real update feed.
        values.setdefault("checkForUpdatesAutomatically", "false")
        os.makedirs(os.path.dirname(self.preferences_path), exist_ok=True)
        with open(self.preferences_path, "w") as conf:
            conf.write("[General]\n")
            conf.writelines(f"{key}={value}\n" for key, value in values.items())

    def preferences(self):
        """Quillix.conf as a dict of its [General] keys."""
        parser = configparser.ConfigParser(interpolation=None)
        parser.optionxform = str
        parser.read(self.preferences_path)
        return dict(parser["General"]) if parser.has_section("General") else {}

    @property
    def data_dir(self):
        return os.path.join(self.data, "Quillix")

    def desktop(self, name):
        return os.path.join(self.folders["Desktop"], name)

    def registry_inodes(self):
        text = try_open_file(os.path.join(self.data_dir, "registry.bin"))
        return set(json.loads(text)) if text is not None else set()

    def metadata(self):
        text = try_open_file(os.path.join(self.data_dir, "metadata.bin"))
        return json.loads(text) if text is not None else {}

    def cleanup(self):
        shutil.rmtree(self.root, ignore_errors=True)


class RunningApp:
    """The program started in a FreshHome; its output goes to a log file."""

    def __init__(self, binary, home, without_leak_check=False):
        self.home = home
        self.log_path = os.path.join(home.root, "quillix.log")
        self.log = open(self.log_path, "wb")
        env = dict(home.env)
        if without_leak_check:
            # Qt Multimedia unloads its GStreamer plugin at exit, so what the
            # plugin still holds is reported as leaked from an unnamed module
            # that no suppression can match. Other sanitizer checks stay on.
            env["ASAN_OPTIONS"] = env.get("ASAN_OPTIONS", "") + ":detect_leaks=0"
        # A popup left by an earlier test's program would lie over the
        # gallery under the tray icon and take the clicks meant for it.
        subprocess.run(["dunstctl", "close-all"], check=False)
        self.process = subprocess.Popen([binary], env=env, stdout=self.log,
                                        stderr=subprocess.STDOUT, stdin=subprocess.DEVNULL)

    @classmethod
    def ready(cls, home, listing=None, without_leak_check=False):
        """Starts the program and waits until it is ready: hotkeys, tray icon
        and D-Bus. With `listing`, it shows every file of the home, not only
        its own captures, and waits until that many are listed."""
        app = cls(BINARY, home, without_leak_check=without_leak_check)
        wait_until(lambda: "(id 6)" in app.output(), what="hotkeys")
        wait_until(tray_icon_window, what="the tray icon")
        wait_until(lambda: call_app("ListedFiles") is not None, what="the D-Bus interface")
        if listing is not None:
            call_app("SetShowOnlyQuillixItems", "boolean:false")
            wait_until(lambda: len(call_app("ListedFiles") or []) == listing,
                       what=f"{listing} listed files")
        return app

    def output(self):
        with open(self.log_path, "rb") as log:
            return log.read().decode("utf-8", "replace")

    def alive(self):
        return self.process.poll() is None

    def stop(self):
        if self.alive():
            self.process.send_signal(signal.SIGTERM)
            try:
                self.process.wait(timeout=10)
            except subprocess.TimeoutExpired:
                self.process.kill()
                self.process.wait()
        self.log.close()
        return self.process.returncode

    def stop_cleanly(self):
        """Stops the program (if it has not quit by itself) and checks that it
        quit normally: exit status 0, which under the sanitizers also means
        no leak or error report."""
        code = self.stop()
        if code != 0:
            raise AssertionError(f"quillix exited with {code}:\n{self.output()[-4000:]}")


class AppTestCase(unittest.TestCase):
    """One program for every case of the class, started in a fresh home that
    `prepare` fills first. Its cases run in name order on the same program;
    the log is printed when one fails."""
    ENV = {}
    LISTING = None  # see RunningApp.ready
    WITHOUT_LEAK_CHECK = False

    @classmethod
    def prepare(cls):
        pass

    @classmethod
    def setUpClass(cls):
        cls.home = FreshHome()
        cls.home.env.update(cls.ENV)
        cls.prepare()
        cls.app = RunningApp.ready(cls.home, cls.LISTING, cls.WITHOUT_LEAK_CHECK)

    @classmethod
    def tearDownClass(cls):
        try:
            cls.app.stop_cleanly()
        finally:
            cls.home.cleanup()

    def tearDown(self):
        if self._outcome.result.failures or self._outcome.result.errors:
            print(self.app.output()[-4000:])


# --- pictures and files ---------------------------------------------------------

def write_pictures(folder, names):
    """Flat pictures, oldest first: distinct creation times give a known order."""
    for name in names:
        subprocess.run(["convert", "-size", "480x300", f"xc:{FILL}",
                        f"PNG24:{os.path.join(folder, name)}"], check=True)
        time.sleep(0.05)


def write_pattern(path, size="240x160"):
    """A picture with gradients and sharp edges."""
    subprocess.run(["convert", "-size", size, "gradient:#ff2020-#2040ff", "-fill", "#10c010",
                    "-draw", "rectangle 20,20 90,70", "-depth", "8", f"PNG24:{path}"], check=True)


def show_picture(path, geometry="+300+200"):
    """ImageMagick's display showing `path`: (its process, its window id)."""
    viewer = subprocess.Popen(["display", "-geometry", geometry, path])
    found = subprocess.run(["xdotool", "search", "--sync", "--onlyvisible", "--class", "display"],
                           capture_output=True, text=True, check=True).stdout
    return viewer, int(found.split()[0])


def captures_in(folder):
    return sorted(glob.glob(os.path.join(folder, "Screenshot_*.png")))


def image_size(path):
    return subprocess.run(["identify", "-format", "%wx%h", path], capture_output=True,
                          text=True).stdout


def pixels(path, *points):
    """(red, green, blue) of each (x, y) of an image."""
    found = []
    for x, y in points:
        text = subprocess.run(["convert", path, "-format", f"%[pixel:p{{{x},{y}}}]", "info:"],
                              capture_output=True, text=True, check=True).stdout
        values = text[text.index("(") + 1:text.index(")")].split(",")
        found.append(tuple(int(float(v)) for v in values[:3]))
    return found


def screen_shot(path, crop=None):
    """The whole screen (or a WxH+X+Y part of it) into `path`."""
    subprocess.run(["import", "-window", "root", *(["-crop", crop] if crop else []), path],
                   check=True)
    return path


def colour_histogram(path, crop=None):
    """{colour hex: pixel count} of an image (or of a WxH+X+Y part of it)."""
    text = subprocess.run(["convert", path, *(["-crop", crop, "+repage"] if crop else []),
                           "-format", "%c", "histogram:info:-"],
                          capture_output=True, text=True, check=True).stdout
    counts = {}
    for line in text.splitlines():
        count, _, rest = line.strip().partition(":")
        hex_start = rest.find("#")
        if hex_start >= 0:
            counts[rest[hex_start:hex_start + 7].lower()] = int(count)
    return counts


def differing_pixels(first, second):
    """How many pixels differ between two images (ImageMagick's compare)."""
    result = subprocess.run(["compare", "-metric", "AE", first, second, "null:"],
                            capture_output=True, text=True)
    try:
        return int(float(result.stderr.split()[0]))
    except (ValueError, IndexError):
        raise AssertionError(f"compare failed: {result.stderr}")


def clipboard_png(path):
    """What xclip reads back from the clipboard as PNG, written to `path`."""
    with open(path, "wb") as out:
        subprocess.run(["xclip", "-selection", "clipboard", "-t", "image/png", "-o"],
                       stdout=out, check=True, timeout=10)
    return path


def try_open_file(path):
    """The plaintext of a sealed file, or None while it is missing or not sealed."""
    try:
        with open(path, "rb") as sealed:
            return aesgcm_peer.open_envelope(sealed.read())
    except (OSError, aesgcm_peer.InvalidTag):
        return None


# --- windows ----------------------------------------------------------------------

def window_tree():
    return subprocess.run(["xwininfo", "-root", "-tree"], capture_output=True, text=True,
                          check=True).stdout


def tray_icon_window():
    """Id of the program's window inside trayer's panel, or None."""
    inside_tray, tray_indent = False, None
    for line in window_tree().splitlines():
        indent = len(line) - len(line.lstrip())
        if '("panel" "trayer")' in line or '("trayer" ' in line:
            inside_tray, tray_indent = True, indent
            continue
        if inside_tray and indent <= tray_indent and line.strip():
            inside_tray = False
        if inside_tray and '("quillix"' in line:
            return line.split()[0]
    return None


tray_icon_embedded = tray_icon_window  # the name the benchmarks use


def viewable_windows(name):
    """Ids of the viewable windows whose title is exactly `name` (taken
    literally: a capture's "(2)" is no regular-expression group)."""
    return subprocess.run(["xdotool", "search", "--onlyvisible", "--name",
                           f"^{re.escape(name)}$"], capture_output=True, text=True).stdout.split()


def wait_for_window(name, what=None):
    """The id of the window `name` once it is shown. A search may miss a
    window while others come and go: use the answer that found it."""
    return wait_until(lambda: viewable_windows(name), what=what or f"the window {name!r}")[0]


def wait_for_no_window(name, what=None):
    wait_until(lambda: not viewable_windows(name), what=what or f"{name!r} to close")


def window_geometry(window_id):
    """(x, y, width, height) of a window, from xwininfo."""
    info = subprocess.run(["xwininfo", "-id", str(window_id)], capture_output=True, text=True,
                          check=True).stdout
    fields = dict(line.strip().partition(":")[::2] for line in info.splitlines() if ":" in line)
    return tuple(int(fields[key].strip()) for key in ("Absolute upper-left X",
                                                      "Absolute upper-left Y", "Width", "Height"))


def frame_extents(window_id):
    """(left, right, top, bottom) of the window manager's frame."""
    text = subprocess.run(["xprop", "-id", str(window_id), "_NET_FRAME_EXTENTS"],
                          capture_output=True, text=True).stdout
    if "=" not in text:
        return (0, 0, 0, 0)
    return tuple(int(value) for value in text.split("=")[1].split(","))


def open_test_window(program, x, y, width, height, colour, title):
    """A flat window of `colour` from another process (the tests' test_window
    `program`), on screen and painted: (process, X id)."""
    process = subprocess.Popen([program, str(x), str(y), str(width), str(height),
                                "#%02x%02x%02x" % colour, title],
                               stdout=subprocess.PIPE, text=True)
    window = int(process.stdout.readline())
    xdotool("windowactivate", "--sync", str(window))
    time.sleep(0.3)  # painted
    return process, window


# --- input ------------------------------------------------------------------------

def xdotool(*arguments):
    subprocess.run(["xdotool", *arguments], check=True)


def click_at(x, y, button="1"):
    xdotool("mousemove", str(x), str(y))
    time.sleep(0.15)
    xdotool("click", button)


def drag(start, end, steps=10, pause=0.02, hold=0.0):
    """Presses at `start`, moves to `end` in steps, waits `hold` s, releases."""
    xdotool("mousemove", str(start[0]), str(start[1]))
    time.sleep(0.1)
    xdotool("mousedown", "1")
    for step in range(1, steps + 1):
        xdotool("mousemove", str(start[0] + (end[0] - start[0]) * step // steps),
                str(start[1] + (end[1] - start[1]) * step // steps))
        time.sleep(pause)
    time.sleep(hold)
    xdotool("mouseup", "1")
    time.sleep(0.2)


def select_area(x, y, width, height):
    """Super+2, then a drag over the rectangle in the area editor."""
    xdotool("key", "super+2")
    wait_for_window(OVERLAY, "the area overlay")
    time.sleep(0.2)
    drag((x, y), (x + width, y + height), steps=2, pause=0)


class KeyGrabHolder:
    """Another X client holding a global key combination."""

    def __init__(self, keysym, *modifiers):
        script = os.path.join(os.path.dirname(__file__), "hold_key_grab.py")
        self.process = subprocess.Popen(["/usr/bin/python3", script, keysym, *modifiers],
                                        stdout=subprocess.PIPE, text=True)
        if self.process.stdout.readline().strip() != "grabbed":
            raise AssertionError("the key grab helper did not start")

    def release(self):
        self.process.terminate()
        self.process.wait(timeout=10)


# --- the program's D-Bus interface, notifications and the gallery -------------------

def call_app(method, *arguments):
    """Calls a method of the running program's D-Bus interface; the reply's strings,
    booleans and numbers as a list, or None when the call failed."""
    reply = subprocess.run(
        ["dbus-send", "--session", "--print-reply", "--dest=org.quillix.Quillix",
         "/org/quillix/Quillix", f"org.quillix.Quillix.{method}", *arguments],
        capture_output=True, text=True)
    if reply.returncode != 0:
        return None
    values = []
    for line in reply.stdout.splitlines()[1:]:
        kind, _, value = line.strip().partition(" ")
        if kind == "string":
            values.append(value[1:-1])
        elif kind == "boolean":
            values.append(value == "true")
    return values


def listed():
    return call_app("ListedFiles") or []


class NotificationMonitor:
    """Records the Notify calls on the session bus."""

    def __init__(self, log_path):
        self.log_path = log_path
        self.log = open(log_path, "wb")
        self.process = subprocess.Popen(
            ["dbus-monitor", "--session",
             "type='method_call',interface='org.freedesktop.Notifications',member='Notify'"],
            stdout=self.log, stderr=subprocess.DEVNULL)
        time.sleep(0.3)  # let the monitor register its match rule

    def text(self):
        with open(self.log_path, "rb") as log:
            return log.read().decode("utf-8", "replace")

    def stop(self):
        self.process.terminate()
        self.process.wait(timeout=10)
        self.log.close()


def locate(name, timeout=10.0):
    """(x, y, width, height) on screen of the program's visible control whose
    accessible name (for a gallery cell: its file name) is `name`."""
    def found():
        reply = call_app("LocateControl", f"string:{name}")
        return reply[0] if reply and reply[0] else None
    text = wait_until(found, timeout=timeout, what=f"the control {name!r}")
    return tuple(int(value) for value in text.split(","))


def locate_settled(name, timeout=10.0):
    """Like `locate`, once the control has stopped moving (a panel that
    slides in)."""
    previous = locate(name, timeout)
    while True:
        time.sleep(0.2)
        current = locate(name, timeout)
        if current == previous:
            return current
        previous = current


def is_shown(name):
    reply = call_app("LocateControl", f"string:{name}")
    return bool(reply and reply[0])


def centre(rect):
    x, y, width, height = rect
    return x + width // 2, y + height // 2


def click_control(name, button="1"):
    click_at(*centre(locate(name)), button)


def open_gallery():
    """Opens the gallery with its hotkey (unless it is open) and waits until
    its cells are laid out and the entrance slide is over."""
    if not viewable_windows(POPOVER):
        xdotool("key", "super+shift+1")
    wait_for_window(POPOVER, "the gallery popover")
    if listed():
        locate(listed()[0])
    time.sleep(0.4)


def open_cell_menu(name, downs=0, rect=None):
    """Right-clicks the gallery cell `name` (or `rect`) and moves `downs`
    entries down its menu."""
    click_at(*centre(rect or locate(name)), "3")
    time.sleep(0.5)
    for _ in range(downs):
        xdotool("key", "Down")
        time.sleep(0.05)


def answer_dialog(text):
    """Types `text` into the dialog the menu entry just opened, then Return."""
    xdotool("key", "Return")
    time.sleep(0.6)
    xdotool("key", "ctrl+a")
    xdotool("type", "--delay", "40", text)
    xdotool("key", "Return")
