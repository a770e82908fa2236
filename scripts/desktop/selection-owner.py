#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Quillix developers

"""Print the window that owns an X selection, or 0 when nobody owns it.

    selection-owner.py NAME        e.g. _NET_SYSTEM_TRAY_S0

No stock command-line tool answers this, and a tray host counts as
running only once it owns _NET_SYSTEM_TRAY_S<screen>. Uses $DISPLAY.
Exit status: 0 on an answer (owner or not), 1 if the display cannot be
opened, 2 on bad usage.
"""

import ctypes
import sys


def main(argv):
    if len(argv) != 2 or not argv[1]:
        print("usage: selection-owner.py SELECTION_NAME", file=sys.stderr)
        return 2

    xlib = ctypes.CDLL("libX11.so.6")
    xlib.XOpenDisplay.restype = ctypes.c_void_p
    xlib.XOpenDisplay.argtypes = [ctypes.c_char_p]
    xlib.XInternAtom.restype = ctypes.c_ulong
    xlib.XInternAtom.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_int]
    xlib.XGetSelectionOwner.restype = ctypes.c_ulong
    xlib.XGetSelectionOwner.argtypes = [ctypes.c_void_p, ctypes.c_ulong]
    xlib.XCloseDisplay.argtypes = [ctypes.c_void_p]

    display = xlib.XOpenDisplay(None)
    if not display:
        print("selection-owner.py: cannot open the X display", file=sys.stderr)
        return 1
    try:
        # only_if_exists=True: asking must not create the atom as a side effect.
        atom = xlib.XInternAtom(display, argv[1].encode(), True)
        owner = xlib.XGetSelectionOwner(display, atom) if atom else 0
    finally:
        xlib.XCloseDisplay(display)

    print(hex(owner) if owner else "0")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
