# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Quillix developers

"""End-to-end checks of quillix-capture against real windows on the virtual desktop.

Usage: quillix_capture_test.py PATH_TO_QUILLIX_CAPTURE

Windows of known content come from ImageMagick's `display` (a real third-party
client; it asks for backing store, so the server keeps its pixels) and from a
small libxcb client in this file (`--pattern-window`) that keeps nothing and
repaints on Expose, optionally slowly, at depth 24 or 32 (ARGB). Pixels are
compared exactly, against the pattern or against ImageMagick's `import`.
"""
import ctypes
import os
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "..", "e2e"))
from quillix_session import wait_until  # noqa: E402

TOOL = None  # set from the command line


# --- the pattern both the windows and the checks use -------------------------

def pattern_pixel(x, y, width, seed, with_alpha):
    """(r, g, b, a), unpremultiplied; neighbouring pixels all differ. ARGB patterns
    have three bands from left to right: opaque, half transparent, transparent."""
    r = (x * 7 + seed * 31) % 256
    g = (y * 13 + seed * 17) % 256
    b = ((x + y) * 3 + seed * 5) % 256
    a = (255, 128, 0)[x * 3 // width] if with_alpha else 255
    return r, g, b, a


def premultiplied(r, g, b, a):
    return r * a // 255, g * a // 255, b * a // 255, a


def pattern_rgba(width, height, seed, with_alpha=False):
    out = bytearray()
    for y in range(height):
        for x in range(width):
            out += bytes(pattern_pixel(x, y, width, seed, with_alpha))
    return bytes(out)


# --- the pattern window client (runs as a child process) ---------------------

class _Iterator(ctypes.Structure):
    _fields_ = [("data", ctypes.c_void_p), ("rem", ctypes.c_int), ("index", ctypes.c_int)]


class _Screen(ctypes.Structure):
    _fields_ = [("root", ctypes.c_uint32), ("default_colormap", ctypes.c_uint32),
                ("white_pixel", ctypes.c_uint32), ("black_pixel", ctypes.c_uint32),
                ("current_input_masks", ctypes.c_uint32), ("width", ctypes.c_uint16),
                ("height", ctypes.c_uint16), ("width_mm", ctypes.c_uint16),
                ("height_mm", ctypes.c_uint16), ("min_maps", ctypes.c_uint16),
                ("max_maps", ctypes.c_uint16), ("root_visual", ctypes.c_uint32),
                ("backing_stores", ctypes.c_uint8), ("save_unders", ctypes.c_uint8),
                ("root_depth", ctypes.c_uint8), ("allowed_depths_len", ctypes.c_uint8)]


class _Depth(ctypes.Structure):
    _fields_ = [("depth", ctypes.c_uint8), ("pad0", ctypes.c_uint8),
                ("visuals_len", ctypes.c_uint16), ("pad1", ctypes.c_uint8 * 4)]


class _Visual(ctypes.Structure):
    _fields_ = [("visual_id", ctypes.c_uint32), ("klass", ctypes.c_uint8),
                ("bits_per_rgb", ctypes.c_uint8), ("colormap_entries", ctypes.c_uint16),
                ("red_mask", ctypes.c_uint32), ("green_mask", ctypes.c_uint32),
                ("blue_mask", ctypes.c_uint32), ("pad0", ctypes.c_uint8 * 4)]


def _load_xcb():
    xcb = ctypes.CDLL("libxcb.so.1")
    p, u32, u16, i16, u8 = (ctypes.c_void_p, ctypes.c_uint32, ctypes.c_uint16,
                            ctypes.c_int16, ctypes.c_uint8)
    signatures = {
        "xcb_connect": (p, [ctypes.c_char_p, p]),
        "xcb_connection_has_error": (ctypes.c_int, [p]),
        "xcb_get_setup": (p, [p]),
        "xcb_setup_roots_iterator": (_Iterator, [p]),
        "xcb_screen_allowed_depths_iterator": (_Iterator, [p]),
        "xcb_depth_visuals_iterator": (_Iterator, [p]),
        "xcb_depth_next": (None, [ctypes.POINTER(_Iterator)]),
        "xcb_visualtype_next": (None, [ctypes.POINTER(_Iterator)]),
        "xcb_generate_id": (u32, [p]),
        "xcb_create_colormap": (ctypes.c_uint, [p, u8, u32, u32, u32]),
        "xcb_create_window": (ctypes.c_uint, [p, u8, u32, u32, i16, i16, u16, u16, u16, u16,
                                              u32, u32, ctypes.POINTER(u32)]),
        "xcb_change_property": (ctypes.c_uint, [p, u8, u32, u32, u32, u8, u32, ctypes.c_char_p]),
        "xcb_create_gc": (ctypes.c_uint, [p, u32, u32, u32, p]),
        "xcb_put_image": (ctypes.c_uint, [p, u8, u32, u32, u16, u16, i16, i16, u8, u8, u32,
                                          ctypes.c_char_p]),
        "xcb_map_window": (ctypes.c_uint, [p, u32]),
        "xcb_flush": (ctypes.c_int, [p]),
        "xcb_wait_for_event": (p, [p]),
        "xcb_get_input_focus": (ctypes.c_uint, [p]),
        "xcb_get_input_focus_reply": (p, [p, ctypes.c_uint, p]),
    }
    for name, (restype, argtypes) in signatures.items():
        function = getattr(xcb, name)
        function.restype = restype
        function.argtypes = argtypes
    return xcb


def _find_visual(xcb, screen_pointer, depth):
    depths = xcb.xcb_screen_allowed_depths_iterator(screen_pointer)
    while depths.rem > 0:
        if ctypes.cast(depths.data, ctypes.POINTER(_Depth)).contents.depth == depth:
            visuals = xcb.xcb_depth_visuals_iterator(depths.data)
            while visuals.rem > 0:
                visual = ctypes.cast(visuals.data, ctypes.POINTER(_Visual)).contents
                if visual.klass == 4:  # TrueColor
                    return visual.visual_id
                xcb.xcb_visualtype_next(ctypes.byref(visuals))
        xcb.xcb_depth_next(ctypes.byref(depths))
    raise SystemExit(f"no TrueColor visual of depth {depth}")


def run_pattern_window(title, x, y, width, height, depth, seed, repaint_delay, border,
                       override_redirect):
    """Shows the pattern, repaints it on every Expose, prints 'ready WID'. The
    border is magenta; an override-redirect window is left alone by the window
    manager."""
    libc = ctypes.CDLL(None)
    libc.free.argtypes = [ctypes.c_void_p]
    xcb = _load_xcb()
    connection = xcb.xcb_connect(None, None)
    if xcb.xcb_connection_has_error(connection):
        raise SystemExit("cannot connect to the X server")
    screen_pointer = xcb.xcb_setup_roots_iterator(xcb.xcb_get_setup(connection)).data
    screen = ctypes.cast(screen_pointer, ctypes.POINTER(_Screen)).contents
    window = xcb.xcb_generate_id(connection)
    if depth == screen.root_depth:
        visual, colormap = screen.root_visual, screen.default_colormap
    else:
        visual = _find_visual(xcb, screen_pointer, depth)
        colormap = xcb.xcb_generate_id(connection)
        xcb.xcb_create_colormap(connection, 0, colormap, screen.root, visual)
    # back pixel, border pixel, override redirect, event mask (Exposure),
    # colormap: in the order of their mask bits.
    values = (ctypes.c_uint32 * 5)(0, 0xFFFF00FF, int(override_redirect), 1 << 15, colormap)
    mask = 0x2 | 0x8 | 0x200 | 0x800 | 0x2000
    xcb.xcb_create_window(connection, depth, window, screen.root, x, y, width, height, border,
                          1, visual, mask, values)
    name = title.encode()
    xcb.xcb_change_property(connection, 0, window, 39, 31, 8, len(name), name)  # WM_NAME
    # WM_NORMAL_HINTS with a user-given position, so the window manager keeps it.
    hints = (ctypes.c_uint32 * 18)(1 | 2, x, y, width, height)
    xcb.xcb_change_property(connection, 0, window, 40, 41, 32, 18,
                            ctypes.cast(hints, ctypes.c_char_p))
    gc = xcb.xcb_generate_id(connection)
    xcb.xcb_create_gc(connection, gc, window, 0, None)

    rgba = pattern_rgba(width, height, seed, with_alpha=(depth == 32))
    pixels = bytearray(len(rgba))
    for i in range(0, len(rgba), 4):
        r, g, b, a = rgba[i:i + 4]
        if depth == 32:
            r, g, b, a = premultiplied(r, g, b, a)
        else:
            a = 0
        pixels[i:i + 4] = bytes((b, g, r, a))  # ZPixmap, 32 bits, LSB first
    rows_per_request = max(1, 60000 // (width * 4))

    def paint():
        for top in range(0, height, rows_per_request):
            rows = min(rows_per_request, height - top)
            strip = bytes(pixels[top * width * 4:(top + rows) * width * 4])
            xcb.xcb_put_image(connection, 2, window, gc, width, rows, 0, top, 0, depth,
                              len(strip), strip)
        xcb.xcb_flush(connection)

    xcb.xcb_map_window(connection, window)
    xcb.xcb_flush(connection)
    announced = False
    while True:
        event = xcb.xcb_wait_for_event(connection)
        if not event:
            return
        raw = ctypes.string_at(event, 32)
        libc.free(event)
        if raw[0] & 0x7F != 12:  # Expose
            continue
        if int.from_bytes(raw[16:18], "little") != 0:  # more Expose events follow
            continue
        if announced and repaint_delay > 0:
            time.sleep(repaint_delay)
        paint()
        if not announced:
            reply = xcb.xcb_get_input_focus_reply(connection, xcb.xcb_get_input_focus(connection),
                                                  None)
            libc.free(reply)
            print(f"ready {window}", flush=True)
            announced = True


# --- helpers for the checks ---------------------------------------------------

def run_tool(*args, env=None):
    return subprocess.run([TOOL, *args], capture_output=True, text=True, timeout=60, env=env)


def read_png(path):
    """(width, height, RGBA bytes) of a PNG file, through ImageMagick."""
    size = subprocess.run(["identify", "-format", "%w %h", path], check=True,
                          capture_output=True, text=True).stdout.split()
    rgba = subprocess.run(["convert", path, "-depth", "8", "rgba:-"], check=True,
                          capture_output=True).stdout
    return int(size[0]), int(size[1]), rgba


def screen_rgba():
    """The whole screen as (width, height, RGBA bytes), through ImageMagick's import."""
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "root.png")
        subprocess.run(["import", "-window", "root", path], check=True, capture_output=True)
        return read_png(path)


def crop(image, x, y, width, height):
    image_width, _, rgba = image
    return b"".join(rgba[((y + row) * image_width + x) * 4:((y + row) * image_width + x + width) * 4]
                    for row in range(height))


def window_position(window):
    """Where the window's contents start on the screen (xwininfo gives the border's corner)."""
    info = subprocess.run(["xwininfo", "-id", str(window)], check=True, capture_output=True,
                          text=True).stdout
    x = int(re.search(r"Absolute upper-left X:\s+(-?\d+)", info).group(1))
    y = int(re.search(r"Absolute upper-left Y:\s+(-?\d+)", info).group(1))
    border = int(re.search(r"Border width:\s+(\d+)", info).group(1))
    return x + border, y + border


def differing_pixels(expected, actual):
    return sum(1 for i in range(0, min(len(expected), len(actual)), 4)
               if expected[i:i + 4] != actual[i:i + 4])


class PatternWindow:
    """A window of the pattern client, stopped by PID."""

    def __init__(self, title, x, y, width, height, seed, depth=24, repaint_delay=0.0, border=0,
                 override_redirect=False, env=None):
        self.width, self.height, self.seed, self.depth = width, height, seed, depth
        self.process = subprocess.Popen(
            [sys.executable, os.path.abspath(__file__), "--pattern-window", title, str(x), str(y),
             str(width), str(height), str(depth), str(seed), str(repaint_delay), str(border),
             str(int(override_redirect))],
            stdout=subprocess.PIPE, text=True, env=env)
        line = self.process.stdout.readline().split()
        if len(line) != 2 or line[0] != "ready":
            self.stop()
            raise AssertionError(f"the pattern window {title} did not start")
        self.id = int(line[1])

    def expected(self):
        return pattern_rgba(self.width, self.height, self.seed, with_alpha=(self.depth == 32))

    def stop(self):
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGTERM)
            self.process.wait(timeout=10)
        self.process.stdout.close()


def move_window(window, x, y):
    subprocess.run(["xdotool", "windowmove", str(window), str(x), str(y)], check=True)


def wait_until_shown(window, width, height, expected):
    """Waits until the screen shows `expected` where the window sits; returns its position."""
    def shown():
        x, y = window_position(window)
        return crop(screen_rgba(), x, y, width, height) == expected
    wait_until(shown, what=f"window {window} to show its pattern")
    return window_position(window)


# --- the checks ----------------------------------------------------------------

class CaptureCase(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="quillix-capture-")
        self.windows = []
        self.processes = []

    def tearDown(self):
        for window in self.windows:
            window.stop()
        for process in self.processes:
            if process.poll() is None:
                process.terminate()
                process.wait(timeout=10)
        shutil.rmtree(self.folder, ignore_errors=True)

    def path(self, name):
        return os.path.join(self.folder, name)

    def show(self, *args, **kwargs):
        window = PatternWindow(*args, **kwargs)
        self.windows.append(window)
        return window

    def capture_window(self, window_id, name, env=None):
        path = self.path(name)
        result = run_tool("-l", str(window_id), "-x", path, env=env)
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(result.stderr, "")
        return read_png(path)

    def assertImage(self, image, width, height, expected):
        self.assertEqual(image[:2], (width, height))
        self.assertEqual(differing_pixels(expected, image[2]), 0)

    def assertFailure(self, result, status):
        self.assertEqual(result.returncode, status, result.stderr)
        line = result.stderr
        self.assertTrue(line.startswith("quillix-capture: ") and line.endswith("\n"), line)
        self.assertEqual(line.count("\n"), 1, line)

    def assertFolderEmpty(self, folder=None):
        self.assertEqual(os.listdir(folder or self.folder), [])


class WindowCaptureTest(CaptureCase):
    def test_window_pixels_exact_even_when_covered_and_the_screen_is_left_alone(self):
        plain = self.show("qc-plain", 100, 200, 301, 203, seed=1)
        expected = plain.expected()
        wait_until_shown(plain.id, plain.width, plain.height, expected)
        self.assertImage(self.capture_window(plain.id, "plain.png"), 301, 203, expected)

        # Cover the middle of the window with another one, then capture again.
        x, y = window_position(plain.id)
        cover = self.show("qc-cover", 400, 500, 160, 120, seed=2)
        move_window(cover.id, x + 60, y + 40)
        cover_expected = cover.expected()
        cover_x, cover_y = wait_until_shown(cover.id, 160, 120, cover_expected)
        self.assertLess(cover_x, x + plain.width)
        self.assertLess(cover_y, y + plain.height)
        self.assertImage(self.capture_window(plain.id, "covered.png"), 301, 203, expected)
        # The screen still shows the cover where it overlaps.
        self.assertEqual(crop(screen_rgba(), cover_x, cover_y, 160, 120), cover_expected)

        # The same by hexadecimal id.
        self.assertImage(self.capture_window(hex(plain.id), "hex.png"), 301, 203, expected)

    def test_partly_off_screen_window_with_a_slow_owner(self):
        slow = self.show("qc-slow", 300, 300, 173, 91, seed=3, repaint_delay=0.2)
        expected = slow.expected()
        wait_until_shown(slow.id, 173, 91, expected)
        move_window(slow.id, 1850, 1040)
        wait_until(lambda: window_position(slow.id)[0] > 1800, what="the window to move")
        x, y = window_position(slow.id)
        self.assertGreater(x + 173, 1920)
        self.assertGreater(y + 91, 1080)
        self.assertImage(self.capture_window(slow.id, "slow.png"), 173, 91, expected)

    def test_bordered_window_outside_window_management(self):
        # Override-redirect windows keep their border; the capture leaves it out.
        framed = self.show("qc-framed", 1000, 600, 211, 111, seed=11, border=7,
                           override_redirect=True)
        expected = framed.expected()
        self.assertEqual(window_position(framed.id), (1007, 607))
        wait_until_shown(framed.id, 211, 111, expected)
        cover = self.show("qc-framed-cover", 1100, 650, 80, 60, seed=12, override_redirect=True)
        wait_until_shown(cover.id, 80, 60, cover.expected())
        self.assertImage(self.capture_window(framed.id, "framed.png"), 211, 111, expected)

    def test_argb_window_keeps_its_alpha(self):
        argb = self.show("qc-argb", 700, 200, 151, 97, seed=4, depth=32)
        width, height, rgba = self.capture_window(argb.id, "argb.png")
        self.assertEqual((width, height), (151, 97))
        expected = argb.expected()
        for i in range(0, len(expected), 4):
            want, got = expected[i:i + 4], rgba[i:i + 4]
            self.assertEqual(got[3], want[3], f"alpha of pixel {i // 4}")
            if want[3] == 255:
                self.assertEqual(got, want, f"pixel {i // 4}")
            elif want[3] > 0:  # premultiplied and back: within one step
                premul = premultiplied(*want)
                self.assertTrue(all(abs(got[c] * want[3] // 255 - premul[c]) <= 1
                                    for c in range(3)), f"pixel {i // 4}: {got} vs {want}")

    def test_third_party_window_with_backing_store(self):
        width, height = 123, 77
        pattern_path = self.path("pattern.png")
        expected = pattern_rgba(width, height, seed=5)
        subprocess.run(["convert", "-size", f"{width}x{height}", "-depth", "8", "rgba:-",
                        "-alpha", "off", pattern_path], input=expected, check=True)
        self.processes.append(subprocess.Popen(
            ["display", "-title", "qc-display", "-geometry", "+900+400", pattern_path]))
        found = subprocess.run(["xdotool", "search", "--sync", "--name", "^qc-display$"],
                               capture_output=True, text=True, timeout=30).stdout.split()
        window = int(found[0])
        wait_until_shown(window, width, height, expected)
        cover = self.show("qc-cover2", 400, 500, 50, 50, seed=6)
        x, y = window_position(window)
        move_window(cover.id, x + 20, y + 10)
        wait_until_shown(cover.id, 50, 50, cover.expected())
        self.assertImage(self.capture_window(window, "display.png"), width, height, expected)

    def test_window_that_is_gone_or_not_shown(self):
        window = self.show("qc-gone", 200, 700, 40, 30, seed=7)
        subprocess.run(["xdotool", "windowminimize", "--sync", str(window.id)], check=True)
        result = run_tool("-l", str(window.id), "-x", self.path("minimised.png"))
        self.assertFailure(result, 5)
        window.stop()
        result = run_tool("-l", str(window.id), "-x", self.path("gone.png"))
        self.assertFailure(result, 4)
        self.assertIn(hex(window.id), result.stderr)
        self.assertFolderEmpty()


class AreaCaptureTest(CaptureCase):
    def setUp(self):
        super().setUp()
        self.show("qc-area", 50, 100, 120, 90, seed=8)

    def assertMatchesScreen(self, args, x, y, width, height):
        # The screen is still; a few tries only cover a notification coming or going.
        path = self.path("area.png")
        for _ in range(3):
            result = run_tool(*args, path)
            self.assertEqual(result.returncode, 0, result.stderr)
            image = read_png(path)
            self.assertEqual(image[:2], (width, height))
            if image[2] == crop(screen_rgba(), x, y, width, height):
                return
        self.fail(f"{args} does not match the screen")

    def test_rectangles_and_whole_screen_and_none_outside_it(self):
        self.assertMatchesScreen(["-R", "40,90,141,111"], 40, 90, 141, 111)
        self.assertMatchesScreen(["-R", "1850,1000,300,200"], 1850, 1000, 70, 80)  # clamped
        self.assertMatchesScreen(["-R", "-10,-20,30,40"], 0, 0, 20, 20)
        self.assertMatchesScreen([], 0, 0, 1920, 1080)
        self.assertMatchesScreen(["-x"], 0, 0, 1920, 1080)
        os.remove(self.path("area.png"))
        self.assertFailure(run_tool("-R", "1920,0,10,10", self.path("out.png")), 6)
        self.assertFailure(run_tool("-R", "-50,-50,50,50", self.path("out.png")), 6)
        self.assertFolderEmpty()


class FileAndArgumentTest(CaptureCase):
    def test_unwritable_paths_leave_nothing_behind(self):
        missing = self.path("no/such/folder/shot.png")
        self.assertFailure(run_tool("-R", "0,0,10,10", missing), 7)
        os.mkdir(self.path("taken"))
        self.assertFailure(run_tool("-R", "0,0,10,10", self.path("taken")), 7)
        self.assertEqual(os.listdir(self.folder), ["taken"])
        self.assertFolderEmpty(self.path("taken"))

    def test_existing_file_is_replaced_whole(self):
        path = self.path("shot.png")
        with open(path, "wb") as old:
            old.write(b"old contents" * 1000)
        self.assertEqual(run_tool("-R", "0,0,7,5", path).returncode, 0)
        self.assertEqual(read_png(path)[:2], (7, 5))
        self.assertEqual(os.listdir(self.folder), ["shot.png"])

    def test_bad_arguments(self):
        out = self.path("out.png")
        for args in (["-q", out], ["-l"], ["-l", "abc", out], ["-l", "12x", out],
                     ["-l", "0", out], ["-l", "-5", out], ["-l", "99999999999", out],
                     ["-R", "1,2,3", out], ["-R", "1,2,0,4", out], ["-R", "a,b,c,d", out],
                     ["-R", "1, 2,3,4", out], ["-R"], ["-l", "5", "-R", "0,0,1,1", out],
                     [], ["-x"], [out, out + "2"], ["-"]):
            with self.subTest(args=args):
                self.assertFailure(run_tool(*args), 2)
        self.assertFolderEmpty()

    def test_help(self):
        for flag in ("--help", "-h"):
            result = run_tool(flag)
            self.assertEqual(result.returncode, 0)
            self.assertIn("Usage: quillix-capture", result.stdout)
            self.assertIn("-l WINDOW_ID", result.stdout)
            self.assertEqual(result.stderr, "")

    def test_no_display(self):
        env = dict(os.environ)
        env.pop("DISPLAY", None)
        self.assertFailure(run_tool("-R", "0,0,1,1", self.path("a.png"), env=env), 3)
        env["DISPLAY"] = ":4097"
        self.assertFailure(run_tool("-R", "0,0,1,1", self.path("a.png"), env=env), 3)
        self.assertFolderEmpty()


class WithoutCompositeTest(CaptureCase):
    """A second X server without the Composite extension: the plain GetImage path."""

    def setUp(self):
        super().setUp()
        read_end, write_end = os.pipe()
        server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write_end), "-screen", "0", "640x480x24", "-nolisten",
             "tcp", "-extension", "Composite"],
            pass_fds=(write_end,), stderr=subprocess.DEVNULL)
        os.close(write_end)
        self.processes.append(server)
        with os.fdopen(read_end) as ready:
            number = ready.readline().strip()
        self.assertTrue(number, "the second X server did not start")
        self.env = dict(os.environ, DISPLAY=f":{number}")
        probe = subprocess.run(["xdpyinfo"], env=self.env, capture_output=True, text=True)
        self.assertNotIn("Composite", probe.stdout)

    def test_visible_and_partly_off_screen_windows(self):
        # No window manager here: windows sit exactly where they are created.
        inside = self.show("qc-inside", 20, 30, 97, 61, seed=9, env=self.env)
        self.assertImage(self.capture_window(inside.id, "inside.png", self.env), 97, 61,
                         inside.expected())

        edge = self.show("qc-edge", 597, 447, 97, 61, seed=10, border=3, env=self.env)
        width, height, rgba = self.capture_window(edge.id, "edge.png", self.env)
        self.assertEqual((width, height), (97, 61))
        expected = edge.expected()
        visible = (40, 30)  # the part of the window inside the 640x480 screen
        self.assertEqual(crop((width, height, rgba), 0, 0, *visible),
                         crop((width, height, expected), 0, 0, *visible))
        self.assertEqual(crop((width, height, rgba), 40, 30, 57, 31), bytes((0, 0, 0, 255)) * 57 * 31)


if __name__ == "__main__":
    if len(sys.argv) >= 2 and sys.argv[1] == "--pattern-window":
        title, x, y, width, height, depth, seed, delay, border, override = sys.argv[2:12]
        run_pattern_window(title, int(x), int(y), int(width), int(height), int(depth), int(seed),
                           float(delay), int(border), override == "1")
        sys.exit(0)
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    TOOL = os.path.abspath(sys.argv.pop(1))
    unittest.main(verbosity=2)
