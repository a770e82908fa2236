#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Quillix developers

"""How soon the real program answers a user, measured from outside it.

  scripts/with-desktop bench/hotkey_latency.py build/bin/quillix [--runs N]
  scripts/with-desktop cmake --build build --target bench_hotkey_latency

Starts the program in a fresh HOME and prints, per case, the median and the
maximum over N runs (20 by default):
  area, nothing shown: the area hotkey (Super+2, sent with XTEST) to the X
                       server's MapNotify of the window titled "Area selection";
  area, popover open:  the same with the gallery popover and its pill open;
  preview:             a click on a gallery cell (XTEST) to the MapNotify of
                       the preview window (or of its window-manager frame);
  HUD:                 the HUD hotkey (Super+Shift+2) to the MapNotify of the
                       window titled "Capture HUD".
Events are read on a second X connection that watches the root window.
"""
import ctypes
import ctypes.util
import os
import select
import statistics
import subprocess
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "..", "tests", "e2e"))
from quillix_session import (FreshHome, RunningApp, call_app, centre, locate,  # noqa: E402
                             tray_icon_embedded, wait_until)

MAP_NOTIFY = 19
UNMAP_NOTIFY = 18
SUBSTRUCTURE_NOTIFY = 0x80000
CW_EVENT_MASK = 0x800
WM_NAME = 39
OVERLAY = b"Area selection"
HUD = b"Capture HUD"
PICTURE = "bench.png"

xcb = ctypes.CDLL(ctypes.util.find_library("xcb"))
x11 = ctypes.CDLL(ctypes.util.find_library("X11"))
xtst = ctypes.CDLL(ctypes.util.find_library("Xtst"))
libc = ctypes.CDLL(None)


class Screen(ctypes.Structure):
    _fields_ = [("root", ctypes.c_uint32)]  # the rest is not needed


class ScreenIterator(ctypes.Structure):
    _fields_ = [("data", ctypes.POINTER(Screen)), ("rem", ctypes.c_int),
                ("index", ctypes.c_int)]


class Cookie(ctypes.Structure):
    _fields_ = [("sequence", ctypes.c_uint)]


class Event(ctypes.Structure):
    """The head shared by MapNotify and UnmapNotify."""
    _fields_ = [("response_type", ctypes.c_uint8), ("pad", ctypes.c_uint8),
                ("sequence", ctypes.c_uint16), ("event", ctypes.c_uint32),
                ("window", ctypes.c_uint32)]


class AtomReply(ctypes.Structure):
    _fields_ = [("response_type", ctypes.c_uint8), ("pad0", ctypes.c_uint8),
                ("sequence", ctypes.c_uint16), ("length", ctypes.c_uint32),
                ("atom", ctypes.c_uint32)]


class ClientMessage(ctypes.Structure):
    _fields_ = [("response_type", ctypes.c_uint8), ("format", ctypes.c_uint8),
                ("sequence", ctypes.c_uint16), ("window", ctypes.c_uint32),
                ("type", ctypes.c_uint32), ("data", ctypes.c_uint32 * 5)]


class TreeReply(ctypes.Structure):
    _fields_ = [("response_type", ctypes.c_uint8), ("pad0", ctypes.c_uint8),
                ("sequence", ctypes.c_uint16), ("length", ctypes.c_uint32),
                ("root", ctypes.c_uint32), ("parent", ctypes.c_uint32),
                ("children_len", ctypes.c_uint16)]


xcb.xcb_connect.restype = ctypes.c_void_p
xcb.xcb_get_setup.restype = ctypes.c_void_p
xcb.xcb_get_setup.argtypes = [ctypes.c_void_p]
xcb.xcb_setup_roots_iterator.restype = ScreenIterator
xcb.xcb_setup_roots_iterator.argtypes = [ctypes.c_void_p]
xcb.xcb_get_file_descriptor.argtypes = [ctypes.c_void_p]
xcb.xcb_poll_for_event.restype = ctypes.POINTER(Event)
xcb.xcb_poll_for_event.argtypes = [ctypes.c_void_p]
xcb.xcb_flush.argtypes = [ctypes.c_void_p]
xcb.xcb_change_window_attributes.argtypes = [ctypes.c_void_p, ctypes.c_uint32, ctypes.c_uint32,
                                             ctypes.POINTER(ctypes.c_uint32)]
xcb.xcb_change_window_attributes.restype = Cookie
xcb.xcb_get_property.restype = Cookie
xcb.xcb_get_property.argtypes = [ctypes.c_void_p, ctypes.c_uint8, ctypes.c_uint32,
                                 ctypes.c_uint32, ctypes.c_uint32, ctypes.c_uint32,
                                 ctypes.c_uint32]
xcb.xcb_get_property_reply.restype = ctypes.c_void_p
xcb.xcb_get_property_reply.argtypes = [ctypes.c_void_p, Cookie, ctypes.c_void_p]
xcb.xcb_get_property_value.restype = ctypes.c_void_p
xcb.xcb_get_property_value.argtypes = [ctypes.c_void_p]
xcb.xcb_get_property_value_length.argtypes = [ctypes.c_void_p]
xcb.xcb_query_tree.restype = Cookie
xcb.xcb_query_tree.argtypes = [ctypes.c_void_p, ctypes.c_uint32]
xcb.xcb_query_tree_reply.restype = ctypes.POINTER(TreeReply)
xcb.xcb_query_tree_reply.argtypes = [ctypes.c_void_p, Cookie, ctypes.c_void_p]
xcb.xcb_query_tree_children.restype = ctypes.POINTER(ctypes.c_uint32)
xcb.xcb_query_tree_children.argtypes = [ctypes.c_void_p]
xcb.xcb_intern_atom.restype = Cookie
xcb.xcb_intern_atom.argtypes = [ctypes.c_void_p, ctypes.c_uint8, ctypes.c_uint16,
                                ctypes.c_char_p]
xcb.xcb_intern_atom_reply.restype = ctypes.POINTER(AtomReply)
xcb.xcb_intern_atom_reply.argtypes = [ctypes.c_void_p, Cookie, ctypes.c_void_p]
xcb.xcb_send_event.argtypes = [ctypes.c_void_p, ctypes.c_uint8, ctypes.c_uint32,
                               ctypes.c_uint32, ctypes.c_void_p]
libc.free.argtypes = [ctypes.c_void_p]
x11.XOpenDisplay.restype = ctypes.c_void_p
x11.XStringToKeysym.restype = ctypes.c_ulong
x11.XKeysymToKeycode.argtypes = [ctypes.c_void_p, ctypes.c_ulong]
x11.XFlush.argtypes = [ctypes.c_void_p]
xtst.XTestFakeKeyEvent.argtypes = [ctypes.c_void_p, ctypes.c_uint, ctypes.c_int, ctypes.c_ulong]
xtst.XTestFakeButtonEvent.argtypes = [ctypes.c_void_p, ctypes.c_uint, ctypes.c_int,
                                      ctypes.c_ulong]
xtst.XTestFakeMotionEvent.argtypes = [ctypes.c_void_p, ctypes.c_int, ctypes.c_int,
                                      ctypes.c_int, ctypes.c_ulong]


class RootWatcher:
    """Map and unmap events of the root window's children, on its own connection."""

    def __init__(self):
        self.connection = xcb.xcb_connect(None, None)
        self.root = xcb.xcb_setup_roots_iterator(xcb.xcb_get_setup(self.connection)).data[0].root
        mask = ctypes.c_uint32(SUBSTRUCTURE_NOTIFY)
        xcb.xcb_change_window_attributes(self.connection, self.root, CW_EVENT_MASK,
                                         ctypes.byref(mask))
        xcb.xcb_flush(self.connection)
        self.fd = xcb.xcb_get_file_descriptor(self.connection)

    def drain(self):
        while True:
            event = xcb.xcb_poll_for_event(self.connection)
            if not event:
                return
            libc.free(event)

    def next_event(self, timeout):
        """(type, window, time seen) of the next map or unmap, or None."""
        deadline = time.perf_counter() + timeout
        while True:
            event = xcb.xcb_poll_for_event(self.connection)
            if event:
                seen = time.perf_counter()
                kind, window = event[0].response_type & 0x7F, event[0].window
                libc.free(event)
                if kind in (MAP_NOTIFY, UNMAP_NOTIFY):
                    return kind, window, seen
                continue
            left = deadline - time.perf_counter()
            if left <= 0:
                return None
            select.select([self.fd], [], [], left)

    def title(self, window):
        reply = xcb.xcb_get_property_reply(
            self.connection,
            xcb.xcb_get_property(self.connection, 0, window, WM_NAME, 0, 0, 256), None)
        if not reply:
            return b""
        value = ctypes.string_at(xcb.xcb_get_property_value(reply),
                                 xcb.xcb_get_property_value_length(reply))
        libc.free(reply)
        return value

    def titles_within(self, window):
        """The titles of a window and of its children (a frame holds its client)."""
        titles = [self.title(window)]
        reply = xcb.xcb_query_tree_reply(self.connection,
                                         xcb.xcb_query_tree(self.connection, window), None)
        if reply:
            children = xcb.xcb_query_tree_children(reply)
            titles += [self.title(children[i]) for i in range(reply[0].children_len)]
            libc.free(reply)
        return titles

    def atom(self, name):
        reply = xcb.xcb_intern_atom_reply(
            self.connection, xcb.xcb_intern_atom(self.connection, 0, len(name), name), None)
        value = reply[0].atom
        libc.free(reply)
        return value

    def close(self, window, title):
        """Asks the window titled `title` in `window` (or `window` itself) to close,
        as a window manager's close button does (WM_DELETE_WINDOW)."""
        reply = xcb.xcb_query_tree_reply(self.connection,
                                         xcb.xcb_query_tree(self.connection, window), None)
        candidates = [window]
        if reply:
            children = xcb.xcb_query_tree_children(reply)
            candidates += [children[i] for i in range(reply[0].children_len)]
            libc.free(reply)
        client = next(w for w in candidates if self.title(w) == title)
        message = ClientMessage(response_type=33, format=32, window=client,
                                type=self.atom(b"WM_PROTOCOLS"))
        message.data[0] = self.atom(b"WM_DELETE_WINDOW")
        xcb.xcb_send_event(self.connection, 0, client, 0, ctypes.byref(message))
        xcb.xcb_flush(self.connection)

    def wait_for_map(self, title, timeout=5.0):
        """(window, time seen) of the first window mapped whose title, or a child's, is `title`."""
        deadline = time.perf_counter() + timeout
        while time.perf_counter() < deadline:
            found = self.next_event(deadline - time.perf_counter())
            if found and found[0] == MAP_NOTIFY and title in self.titles_within(found[1]):
                return found[1], found[2]
        raise AssertionError(f"no window {title!r} was mapped")

    def wait_for_unmap(self, window, timeout=5.0):
        deadline = time.perf_counter() + timeout
        while time.perf_counter() < deadline:
            found = self.next_event(deadline - time.perf_counter())
            if found and found[0] == UNMAP_NOTIFY and found[1] == window:
                return
        raise AssertionError("the window was not unmapped")


class Keyboard:
    """Keys and clicks sent through the XTEST extension."""

    def __init__(self):
        self.display = x11.XOpenDisplay(None)

    def code(self, name):
        return x11.XKeysymToKeycode(self.display, x11.XStringToKeysym(name.encode()))

    def key(self, name, down):
        xtst.XTestFakeKeyEvent(self.display, self.code(name), 1 if down else 0, 0)
        x11.XFlush(self.display)

    def combination(self, *names):
        for name in names:
            self.key(name, True)
        for name in reversed(names):
            self.key(name, False)

    def move(self, x, y):
        xtst.XTestFakeMotionEvent(self.display, -1, x, y, 0)
        x11.XFlush(self.display)

    def click(self):
        xtst.XTestFakeButtonEvent(self.display, 1, 1, 0)
        xtst.XTestFakeButtonEvent(self.display, 1, 0, 0)
        x11.XFlush(self.display)


def popover_shown():
    return call_app("IsPopoverShown") == [True]


def area_latency(watcher, keys, with_popover):
    if with_popover:
        keys.combination("Super_L", "Shift_L", "1")
        wait_until(popover_shown, what="the popover")
        time.sleep(0.5)  # the pill's fade-in ends
    return hotkey_to_window(watcher, keys, ["Super_L"], "2", OVERLAY)


def hotkey_to_window(watcher, keys, modifiers, key, title):
    """Milliseconds from the press of `key` (its `modifiers` held) to the map
    of the window `title`, which Escape then closes."""
    watcher.drain()
    for modifier in modifiers:
        keys.key(modifier, True)
    sent = time.perf_counter()
    keys.key(key, True)
    keys.key(key, False)
    for modifier in reversed(modifiers):
        keys.key(modifier, False)
    window, seen = watcher.wait_for_map(title)
    time.sleep(0.3)
    keys.combination("Escape")
    watcher.wait_for_unmap(window)
    time.sleep(0.3)
    return (seen - sent) * 1000


def preview_latency(watcher, keys):
    keys.combination("Super_L", "Shift_L", "1")
    wait_until(popover_shown, what="the popover")
    time.sleep(0.5)  # the entrance slide ends
    keys.move(*centre(locate(PICTURE)))
    time.sleep(0.2)  # the cell sees the pointer arrive
    watcher.drain()
    sent = time.perf_counter()
    keys.click()
    frame, seen = watcher.wait_for_map(PICTURE[:-4].encode())
    time.sleep(0.5)
    watcher.close(frame, PICTURE[:-4].encode())
    watcher.wait_for_unmap(frame)
    time.sleep(0.3)
    return (seen - sent) * 1000


def hud_latency(watcher, keys):
    keys.move(700, 400)
    return hotkey_to_window(watcher, keys, ["Super_L", "Shift_L"], "2", HUD)


def report(name, figures):
    print(f"{name:<28} median {statistics.median(figures):6.1f} ms   "
          f"max {max(figures):6.1f} ms   ({len(figures)} runs)", flush=True)


def main():
    binary = sys.argv[1]
    runs = int(sys.argv[sys.argv.index("--runs") + 1]) if "--runs" in sys.argv else 20
    home = FreshHome()
    subprocess.run(["convert", "-size", "480x300", "xc:#3a7d44",
                    f"PNG24:{os.path.join(home.folders['Desktop'], PICTURE)}"], check=True)
    app = RunningApp(binary, home)
    try:
        wait_until(tray_icon_embedded, what="the tray icon")
        wait_until(lambda: "(id 6)" in app.output(), what="the hotkeys")
        wait_until(lambda: call_app("ListedFiles") is not None, what="the D-Bus interface")
        call_app("SetShowOnlyQuillixItems", "boolean:false")
        wait_until(lambda: call_app("ListedFiles") == [PICTURE], what="the picture listed")
        time.sleep(1)  # start-up settles (first scan, the warm-up grab)
        watcher, keys = RootWatcher(), Keyboard()
        screen = subprocess.run(["xdpyinfo"], capture_output=True, text=True).stdout
        print("screen", screen.split("dimensions:")[1].split()[0])
        report("area, nothing shown", [area_latency(watcher, keys, False) for _ in range(runs)])
        report("area, popover open", [area_latency(watcher, keys, True) for _ in range(runs)])
        report("preview after a cell click",
               [preview_latency(watcher, keys) for _ in range(max(1, runs // 2))])
        report("HUD", [hud_latency(watcher, keys) for _ in range(runs)])
    finally:
        app.stop()
        home.cleanup()


if __name__ == "__main__":
    main()
