#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Quillix developers

"""Holds a global key grab, as another program would, until killed.

  hold_key_grab.py KEYSYM MODIFIERS...   e.g. hold_key_grab.py 6 super

Prints "grabbed" once the X server has accepted the grab.
"""
import ctypes
import signal
import sys

MODIFIER_BITS = {"shift": 1 << 0, "control": 1 << 2, "alt": 1 << 3, "super": 1 << 6}
GRAB_MODE_ASYNC = 1


def main():
    xlib = ctypes.CDLL("libX11.so.6")
    xlib.XOpenDisplay.restype = ctypes.c_void_p
    xlib.XOpenDisplay.argtypes = [ctypes.c_char_p]
    xlib.XDefaultRootWindow.restype = ctypes.c_ulong
    xlib.XDefaultRootWindow.argtypes = [ctypes.c_void_p]
    xlib.XStringToKeysym.restype = ctypes.c_ulong
    xlib.XStringToKeysym.argtypes = [ctypes.c_char_p]
    xlib.XKeysymToKeycode.restype = ctypes.c_ubyte
    xlib.XKeysymToKeycode.argtypes = [ctypes.c_void_p, ctypes.c_ulong]
    xlib.XGrabKey.argtypes = [ctypes.c_void_p, ctypes.c_int, ctypes.c_uint, ctypes.c_ulong,
                              ctypes.c_int, ctypes.c_int, ctypes.c_int]
    xlib.XSync.argtypes = [ctypes.c_void_p, ctypes.c_int]

    display = xlib.XOpenDisplay(None)
    if not display:
        sys.exit("cannot open display")
    keycode = xlib.XKeysymToKeycode(display, xlib.XStringToKeysym(sys.argv[1].encode()))
    modifiers = 0
    for name in sys.argv[2:]:
        modifiers |= MODIFIER_BITS[name]
    root = xlib.XDefaultRootWindow(display)
    xlib.XGrabKey(display, keycode, modifiers, root, 1, GRAB_MODE_ASYNC, GRAB_MODE_ASYNC)
    xlib.XSync(display, 0)
    print("grabbed", flush=True)
    signal.sigwait({signal.SIGTERM, signal.SIGINT})


if __name__ == "__main__":
    signal.pthread_sigmask(signal.SIG_BLOCK, {signal.SIGTERM, signal.SIGINT})
    main()
