#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Quillix developers

"""Takes the README's pictures of the running program in the virtual desktop.

Usage: take-screenshots.py QUILLIX_BINARY OUTPUT_FOLDER
"""
import json
import os
import shutil
import subprocess
import sys
import time
import uuid

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "..", "..", "tests", "e2e"))
from quillix_session import (FreshHome, RunningApp, call_app, centre,  # noqa: E402
                             click_control, locate, seal, viewable_windows, wait_for_window,
                             wait_until, window_geometry, xdotool)

SETTINGS_SECTIONS = ["General", "Hotkeys", "Storage", "Shelves", "Help", "About"]
SHELVES = {"Design": ["Design review.png", "Dashboard.png"], "Bugs": ["Bug 12 crash dialog.png"]}

SAMPLES = [
    # name, size, two gradient colours, a drawn shape
    ("Screenshot 2026-11-20 at 09.12.04.png", "1280x800", "#2b5876-#4e4376", "roundrectangle 120,120 700,520 30,30"),
    ("Design review.png", "1440x900", "#f7971e-#ffd200", "circle 700,450 700,700"),
    ("Bug 12 crash dialog.png", "1024x640", "#cb2d3e-#ef473a", "rectangle 200,160 820,480"),
    ("Onboarding flow.png", "1600x1000", "#11998e-#38ef7d", "roundrectangle 300,200 1300,800 40,40"),
    ("Release notes draft.png", "1280x720", "#8e2de2-#4a00e0", "rectangle 100,100 500,620"),
    ("Dashboard.png", "1920x1080", "#373b44-#4286f4", "roundrectangle 160,140 1760,940 24,24"),
    ("Login page.png", "1280x800", "#ee9ca7-#ffdde1", "roundrectangle 440,200 840,600 20,20"),
]


def grab(output, name, rect):
    x, y, width, height = rect
    path = os.path.join(output, name)
    subprocess.run(["import", "-window", "root", "-crop", f"{width}x{height}+{x}+{y}", "+repage",
                    path], check=True)
    print("wrote", path)


def union(*rects):
    left = min(r[0] for r in rects)
    top = min(r[1] for r in rects)
    right = max(r[0] + r[2] for r in rects)
    bottom = max(r[1] + r[3] for r in rects)
    return left, top, right - left, bottom - top


def grown(rect, margin, screen=(1920, 1080)):
    x, y, width, height = rect
    left, top = max(0, x - margin), max(0, y - margin)
    right = min(screen[0], x + width + margin)
    bottom = min(screen[1], y + height + margin)
    return left, top, right - left, bottom - top


def main():
    binary, output = sys.argv[1], sys.argv[2]
    subprocess.run(["xsetroot", "-solid", "#5d6d7e"], check=True)
    home = FreshHome(first_run=True)
    desktop = home.folders["Desktop"]
    for name, size, colours, shape in SAMPLES:
        subprocess.run(["convert", "-size", size, f"gradient:{colours}", "-fill", "#ffffffcc",
                        "-draw", shape, f"PNG24:{os.path.join(desktop, name)}"], check=True)
        time.sleep(0.05)
    metadata = {
        "Design review.png": {"colorLabel": "orange",
                              "event": {"title": "Design review", "note": ""}},
        "Bug 12 crash dialog.png": {"colorLabel": "red"},
        "Dashboard.png": {"colorLabel": "blue"},
        "Onboarding flow.png": {"event": {"title": "Sprint demo", "note": ""}},
    }
    os.makedirs(home.data_dir, mode=0o700, exist_ok=True)
    with open(os.path.join(home.data_dir, "metadata.bin"), "wb") as sealed:
        sealed.write(seal(json.dumps(metadata).encode()))
    write_shelves(home, desktop)

    app = RunningApp(binary, home)
    try:
        take_welcome_slides(output)
        wait_until(lambda: "(id 6)" in app.output(), what="hotkeys")
        wait_until(lambda: call_app("ListedFiles") is not None, what="D-Bus")
        call_app("SetShowOnlyQuillixItems", "boolean:false")
        wait_until(lambda: len(call_app("ListedFiles") or []) == len(SAMPLES), what="the list")
        time.sleep(1.5)  # thumbnails

        xdotool("key", "super+shift+1")
        wait_until(lambda: viewable_windows("Quillix gallery"), what="the popover")
        time.sleep(1.0)
        popover = locate("Quillix gallery")
        pill = locate("Quillix controls")
        grab(output, "gallery.png", grown(union(popover, pill), 16))

        x, y = centre(locate("Design review.png"))
        xdotool("mousemove", str(x), str(y))
        time.sleep(0.8)
        grab(output, "hover-card.png", grown(union(popover, pill), 16))

        click_control("Filter")
        time.sleep(0.5)
        xdotool("type", "--delay", "50", "re")
        time.sleep(0.5)
        grab(output, "filters.png", grown(union(popover, pill), 16))
        click_control("Filter")
        time.sleep(0.4)

        click_control("Dashboard.png")
        wait_until(lambda: viewable_windows("Dashboard"), what="the preview")
        time.sleep(0.8)
        preview = viewable_windows("Dashboard")[0]
        wx, wy, width, height = window_geometry(preview)
        click_control("Rectangle")
        drag((wx + 200, wy + 200), (wx + 420, wy + 330))
        click_control("Arrow")
        drag((wx + 560, wy + 470), (wx + 440, wy + 350))
        time.sleep(0.4)
        grab(output, "preview.png", grown((wx, wy, width, height), 12))
        xdotool("key", "--window", preview, "ctrl+w")
        time.sleep(0.5)

        xdotool("key", "super+2")
        wait_until(lambda: viewable_windows("Area selection"), what="the area editor")
        time.sleep(0.5)
        drag((560, 260), (1360, 760))
        time.sleep(0.6)
        grab(output, "area-editor.png", (360, 160, 1200, 760))
        xdotool("key", "Escape")
        time.sleep(0.8)
        take_settings(output)
    finally:
        app.stop()
        home.cleanup()


def write_shelves(home, desktop):
    """Two shelves beside the samples, each holding copies of some of them."""
    shelves = []
    for name, files in SHELVES.items():
        folder = os.path.join(desktop, f"{name}:shelf")
        os.makedirs(folder)
        for file in files:
            shutil.copy(os.path.join(desktop, file), folder)
        shelves.append({"id": str(uuid.uuid4()).upper(), "name": name,
                        "folderURLPath": folder, "createdAt": 786000000.0})
    with open(os.path.join(home.data_dir, "shelves.bin"), "wb") as sealed:
        sealed.write(seal(json.dumps(shelves).encode()))


def window_rect(title):
    window = viewable_windows(title)[0]
    return window_geometry(window)


def take_welcome_slides(output):
    wait_for_window("Welcome to Quillix", "the welcome slides")
    for slide in range(1, 6):
        time.sleep(0.9)  # the slide's entrance
        grab(output, f"welcome-{slide}.png", grown(window_rect("Welcome to Quillix"), 0))
        click_control("Next" if slide < 5 else "Done")
    wait_until(lambda: not viewable_windows("Welcome to Quillix"), what="the slides to close")


def take_settings(output):
    xdotool("key", "super+shift+1")
    wait_until(lambda: viewable_windows("Quillix gallery"), what="the popover")
    time.sleep(0.6)
    click_control("Settings")
    wait_for_window("Settings", "the settings window")
    time.sleep(0.6)
    for section in SETTINGS_SECTIONS:
        click_control(section)
        time.sleep(0.6)
        grab(output, f"settings-{section.lower()}.png", grown(window_rect("Settings"), 0))


def drag(start, end, steps=12):
    xdotool("mousemove", str(start[0]), str(start[1]))
    time.sleep(0.1)
    xdotool("mousedown", "1")
    for step in range(1, steps + 1):
        x = start[0] + (end[0] - start[0]) * step // steps
        y = start[1] + (end[1] - start[1]) * step // steps
        xdotool("mousemove", str(x), str(y))
        time.sleep(0.02)
    xdotool("mouseup", "1")
    time.sleep(0.2)


if __name__ == "__main__":
    main()
