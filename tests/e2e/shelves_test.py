#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Quillix developers

"""The shelves window opened from the pill and driven like a user: a shelf
made from the "New Shelf" card, a taken name refused, a blank name
dropped, a capture dragged from the gallery onto the opened shelf, whose
tile then opens its preview, and shelf folders renamed and deleted in a
shell."""
import json
import os
import shutil
import sys
import time

sys.path.insert(0, os.path.dirname(__file__))
from quillix_session import (AppTestCase, centre, click_control, drag, is_shown,  # noqa: E402
                             listed, locate, main, open_gallery, try_open_file,
                             wait_for_no_window, wait_for_window, wait_until, write_pictures,
                             xdotool)

NAMES = ["alpha.png", "beta.png"]


class Shelves(AppTestCase):
    LISTING = len(NAMES)

    @classmethod
    def prepare(cls):
        write_pictures(cls.home.folders["Desktop"], NAMES)

    def name_new_shelf(self, typed):
        click_control("New Shelf")
        time.sleep(0.3)
        xdotool("type", "--delay", "40", typed)
        xdotool("key", "Return")

    def test_1_the_new_shelf_card_makes_refuses_and_drops_names(self):
        open_gallery()
        click_control("Shelves")
        wait_for_window("Shelves", "the shelves window")
        self.name_new_shelf("Design")
        folder = self.home.desktop("Design:shelf")
        wait_until(lambda: os.path.isdir(folder), what="the shelf folder")
        wait_until(lambda: is_shown("Shelf Design"), what="the shelf's card")

        self.name_new_shelf("Design")
        wait_until(lambda: is_shown("Error message"), what="the error line")
        self.assertTrue(is_shown("Shelf name"))
        xdotool("key", "Escape")
        wait_until(lambda: not is_shown("Shelf name"), what="the card to close")

        self.name_new_shelf("   ")
        wait_until(lambda: not is_shown("Shelf name"), what="the blank card to close")
        self.assertEqual(sorted(os.listdir(self.home.desktop(""))),
                         ["Design:shelf", *NAMES])

    def test_2_a_capture_dragged_onto_the_shelf_moves_into_its_folder(self):
        click_control("Shelf Design")
        wait_until(lambda: is_shown("Drop files here"), what="the empty shelf")
        target = centre(locate("Drop area"))
        open_gallery()
        drag(centre(locate("alpha.png")), target, steps=30, pause=0.03, hold=0.3)
        moved = os.path.join(self.home.desktop("Design:shelf"), "alpha.png")
        wait_until(lambda: os.path.exists(moved), what="alpha.png in the shelf")
        self.assertFalse(os.path.exists(self.home.desktop("alpha.png")))
        wait_until(lambda: "alpha.png" not in listed(), what="the gallery's list")

        # The moved file's tile opens its preview.
        wait_until(lambda: is_shown("alpha.png"), what="the tile of alpha.png")
        click_control("alpha.png")
        wait_for_window("alpha", "the preview of the moved file")

    def test_3_folders_renamed_or_deleted_in_a_shell_leave_the_list(self):
        preview = wait_for_window("alpha")
        xdotool("windowactivate", "--sync", preview)
        xdotool("key", "Escape")
        wait_for_no_window("alpha", "the preview to close")
        click_control("Back")
        for name in ("Notes", "Scratch"):
            self.name_new_shelf(name)
            wait_until(lambda: is_shown(f"Shelf {name}"), what=f"the card of {name}")
        os.rename(self.home.desktop("Notes:shelf"), self.home.desktop("Elsewhere"))
        shutil.rmtree(self.home.desktop("Scratch:shelf"))
        wait_until(lambda: not is_shown("Shelf Notes") and not is_shown("Shelf Scratch"),
                   what="the two cards to go")
        self.assertTrue(is_shown("Shelf Design"))
        # The rewritten file opens, with another AES-256-GCM, to what is left.
        shelves = os.path.join(self.home.data_dir, "shelves.bin")
        wait_until(lambda: [shelf["name"] for shelf in
                            json.loads(try_open_file(shelves) or "[]")] == ["Design"],
                   what="shelves.bin holding Design alone")


if __name__ == "__main__":
    main()
