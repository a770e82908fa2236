"""Helpers for end-to-end tests that run the real program in the virtual desktop.

Each test gets a fresh HOME with its own XDG folders, starts the program there,
reads its log from a file (never from a pipe) and stops it by PID.
"""
import hashlib
import os
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "..", "storage"))
import aesgcm_peer  # noqa: E402  (the independent envelope implementation)

seal = aesgcm_peer.seal
open_envelope = aesgcm_peer.open_envelope


def wait_until(predicate, timeout=20.0, interval=0.05, what="condition"):
    deadline = time.monotonic() + timeout
    while time.monotonic() < deadline:
        value = predicate()
        if value:
            return value
        time.sleep(interval)
    raise AssertionError(f"timed out after {timeout:.0f} s waiting for {what}")


class FreshHome:
    """A temporary HOME with Desktop, Documents, Pictures and Videos."""

    def __init__(self):
        self.root = tempfile.mkdtemp(prefix="quillix-e2e-")
        self.home = os.path.join(self.root, "home")
        self.folders = {}
        for name in ("Desktop", "Documents", "Pictures", "Videos"):
            path = os.path.join(self.home, name)
            os.makedirs(path)
            self.folders[name] = path
        os.makedirs(os.path.join(self.folders["Pictures"], "Screenshots"))
        # Sounds play into nothing, as on a machine without a sound card.
        with open(os.path.join(self.home, ".asoundrc"), "w") as asoundrc:
            asoundrc.write("pcm.!default { type null }\n")
        self.config = os.path.join(self.home, ".config")
        self.data = os.path.join(self.home, ".local", "share")
        os.makedirs(self.config)
        os.makedirs(self.data)
        with open(os.path.join(self.config, "user-dirs.dirs"), "w") as dirs:
            for key, name in (("DESKTOP", "Desktop"), ("DOCUMENTS", "Documents"),
                              ("PICTURES", "Pictures"), ("VIDEOS", "Videos")):
                dirs.write(f'XDG_{key}_DIR="$HOME/{name}"\n')
        runtime = os.path.join(self.root, "runtime")
        os.makedirs(runtime, mode=0o700)
        self.env = dict(os.environ)
        self.env.update({
            "HOME": self.home,
            "XDG_CONFIG_HOME": self.config,
            "XDG_DATA_HOME": self.data,
            "XDG_CACHE_HOME": os.path.join(self.home, ".cache"),
            "XDG_STATE_HOME": os.path.join(self.home, ".local", "state"),
            "XDG_RUNTIME_DIR": runtime,
        })
        for key in ("XDG_DESKTOP_DIR", "XDG_DOCUMENTS_DIR", "XDG_PICTURES_DIR",
                    "XDG_VIDEOS_DIR"):
            self.env.pop(key, None)

    @property
    def data_dir(self):
        return os.path.join(self.data, "Quillix")

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
    def listing_every_file(cls, binary, home, count, without_leak_check=False):
        """Starts the program, waits until it is ready (hotkeys, tray icon,
        D-Bus) and shows every file of the home, not only its own captures,
        and until `count` files are listed."""
        app = cls(binary, home, without_leak_check=without_leak_check)
        wait_until(lambda: "(id 6)" in app.output(), what="hotkeys")
        wait_until(tray_icon_embedded, what="the tray icon")
        wait_until(lambda: call_app("ListedFiles") is not None, what="the D-Bus interface")
        call_app("SetShowOnlyQuillixItems", "boolean:false")
        wait_until(lambda: len(call_app("ListedFiles") or []) == count,
                   what=f"{count} listed files")
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
        """Stops the program and checks that it quit normally: exit status 0,
        which under the sanitizers also means no leak or error report."""
        code = self.stop()
        if code != 0:
            raise AssertionError(f"quillix exited with {code}:\n{self.output()[-4000:]}")


def window_tree():
    return subprocess.run(["xwininfo", "-root", "-tree"], capture_output=True, text=True,
                          check=True).stdout


def tray_icon_embedded(binary_name="quillix"):
    """Whether a window of the program sits inside trayer's panel."""
    inside_tray = False
    tray_indent = None
    for line in window_tree().splitlines():
        indent = len(line) - len(line.lstrip())
        if '("panel" "trayer")' in line or '("trayer" ' in line:
            inside_tray, tray_indent = True, indent
            continue
        if inside_tray and indent <= tray_indent and line.strip():
            inside_tray = False
        if inside_tray and f'("{binary_name}"' in line:
            return True
    return False


def storage_key():
    return hashlib.sha256(aesgcm_peer.PASSPHRASE).digest()


def try_open_file(path):
    """The plaintext of a sealed file, or None while it is missing or not sealed."""
    try:
        with open(path, "rb") as sealed:
            return open_envelope(sealed.read())
    except (OSError, aesgcm_peer.InvalidTag):
        return None


def xdotool(*arguments):
    subprocess.run(["xdotool", *arguments], check=True)


def viewable_windows(name):
    """Ids of the viewable windows whose title is exactly `name` (taken
    literally: a capture's "(2)" is no regular-expression group)."""
    found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name",
                            f"^{re.escape(name)}$"],
                           capture_output=True, text=True).stdout.split()
    return found


def window_geometry(window_id):
    """(x, y, width, height) of a window, from xwininfo."""
    info = subprocess.run(["xwininfo", "-id", str(window_id)], capture_output=True, text=True,
                          check=True).stdout
    fields = {}
    for line in info.splitlines():
        if ":" in line:
            key, _, value = line.strip().partition(":")
            fields[key] = value.strip()
    return (int(fields["Absolute upper-left X"]), int(fields["Absolute upper-left Y"]),
            int(fields["Width"]), int(fields["Height"]))


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


def differing_pixels(first, second):
    """How many pixels differ between two images (ImageMagick's compare)."""
    result = subprocess.run(["compare", "-metric", "AE", first, second, "null:"],
                            capture_output=True, text=True)
    try:
        return int(float(result.stderr.split()[0]))
    except (ValueError, IndexError):
        raise AssertionError(f"compare failed: {result.stderr}")


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


def is_shown(name):
    reply = call_app("LocateControl", f"string:{name}")
    return bool(reply and reply[0])


def centre(rect):
    x, y, width, height = rect
    return x + width // 2, y + height // 2


def click_control(name, button="1"):
    x, y = centre(locate(name))
    xdotool("mousemove", str(x), str(y))
    time.sleep(0.15)
    xdotool("click", button)
