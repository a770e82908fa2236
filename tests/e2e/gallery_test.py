#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Quillix developers

"""The gallery popover driven like a user with the real pointer and keyboard:
typing a search, the cell menu's dialogs, a drag onto the pill's trash and a
clip playing in the preview."""
import os
import subprocess
import sys
import time

sys.path.insert(0, os.path.dirname(__file__))
from quillix_session import (AppTestCase, answer_dialog, centre, click_control,  # noqa: E402
                             drag, is_shown, listed, locate, main, open_cell_menu, open_gallery,
                             wait_for_window, wait_until, write_pictures, xdotool)

NAMES = ["alpha.png", "Screenshot beta.png", "gamma.png"]  # oldest first


class Gallery(AppTestCase):
    LISTING = len(NAMES) + 1
    WITHOUT_LEAK_CHECK = True  # the clip plays: see RunningApp

    @classmethod
    def prepare(cls):
        write_pictures(cls.home.folders["Desktop"], NAMES)
        subprocess.run(["ffmpeg", "-v", "error", "-y", "-f", "lavfi", "-i",
                        "testsrc=size=320x240:rate=25", "-t", "6", "-pix_fmt", "yuv420p",
                        "-c:v", "libx264", "-f", "mov", cls.home.desktop("clip.MOV")], check=True)

    def test_1_a_search_typed_into_the_filter_field_narrows_the_cells(self):
        open_gallery()
        click_control("Filter")
        time.sleep(0.4)
        xdotool("type", "--delay", "60", "SHOT")
        wait_until(lambda: is_shown("1 of 4"), what="the caption 1 of 4")
        self.assertTrue(is_shown("Screenshot beta.png"))
        self.assertFalse(is_shown("alpha.png"))
        click_control("Filter")  # closes the panel and clears the search
        wait_until(lambda: all(is_shown(name) for name in NAMES), what="every cell back")

    def test_2_the_cell_menu_adds_an_event_and_renames(self):
        open_gallery()
        open_cell_menu("alpha.png", 2)  # Color Label, Add Event…
        answer_dialog("Design review")
        wait_until(lambda: self.home.metadata().get("alpha.png") ==
                   {"event": {"title": "Design review", "note": ""}}, what="the event")

        open_cell_menu("gamma.png", 4)  # Color Label, Add Event…, Copy Image, Rename…
        answer_dialog("Bug 12")
        wait_until(lambda: os.path.exists(self.home.desktop("Bug 12.png")),
                   what="the renamed file")
        self.assertFalse(os.path.exists(self.home.desktop("gamma.png")))
        wait_until(lambda: "Bug 12.png" in listed(), what="the rescan")

    def test_3_dragging_a_cell_onto_the_pill_trash_moves_it_to_the_trash(self):
        open_gallery()
        drag(centre(locate("alpha.png")), centre(locate("Trash")), steps=25, pause=0.03,
             hold=0.3)
        trashed = os.path.join(self.home.data, "Trash", "files", "alpha.png")
        wait_until(lambda: os.path.exists(trashed), what="alpha.png in the trash")
        self.assertFalse(os.path.exists(self.home.desktop("alpha.png")))
        wait_until(lambda: "alpha.png" not in listed(), what="the list")
        wait_until(lambda: not is_shown("alpha.png"), what="the cell to leave")

    def test_4_a_capitalised_mov_plays_in_the_preview(self):
        open_gallery()
        click_control("clip.MOV")
        window = wait_for_window("clip", "the preview of the clip")
        time.sleep(1.0)
        shots = []
        for index in range(2):
            shots.append(os.path.join(self.home.root, f"frame{index}.png"))
            subprocess.run(["import", "-window", window, shots[-1]], check=True)
            time.sleep(1.2)
        result = subprocess.run(["compare", "-metric", "AE", *shots, "null:"],
                                capture_output=True, text=True)
        self.assertGreater(int(float(result.stderr.split()[0])), 100,
                           "the picture did not change: the clip is not playing")


if __name__ == "__main__":
    main()
