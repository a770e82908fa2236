#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Quillix developers

"""Idle memory of the running program with an empty library.

  scripts/with-desktop bench/idle_memory.py build/bin/quillix

Starts the program in a fresh HOME, waits until it is idle, and prints its
resident (RSS) and proportional (PSS) memory, a few times over.
"""
import os
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "..", "tests", "e2e"))
from quillix_session import FreshHome, RunningApp, tray_icon_embedded, wait_until  # noqa: E402


def memory_kib(pid):
    figures = {}
    with open(f"/proc/{pid}/smaps_rollup") as rollup:
        for line in rollup:
            key, _, value = line.partition(":")
            if key in ("Rss", "Pss"):
                figures[key] = int(value.split()[0])
    return figures


def main():
    home = FreshHome()
    app = RunningApp(sys.argv[1], home)
    try:
        wait_until(tray_icon_embedded, what="the tray icon")
        time.sleep(3)  # first scan, hotkeys, D-Bus: let start-up settle
        for sample in range(3):
            figures = memory_kib(app.process.pid)
            print(f"idle sample {sample + 1}: RSS {figures['Rss'] / 1024:.1f} MiB, "
                  f"PSS {figures['Pss'] / 1024:.1f} MiB")
            time.sleep(1)
    finally:
        app.stop()
        home.cleanup()


if __name__ == "__main__":
    main()
