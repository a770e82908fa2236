#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Quillix developers

"""The tray shell driven like a user, on one program with a full gallery: the
open-menu hotkey and the tray icon, the popover and pill, presses in the
program's own menus and dialogs, see-through corners, and what the area
hotkey leaves on screen."""
import os
import subprocess
import sys
import time

sys.path.insert(0, os.path.dirname(__file__))
from quillix_session import (OVERLAY, PILL, POPOVER, TOOLBAR, AppTestCase,  # noqa: E402
                             call_app, captures_in, centre, click_at, click_control, drag, main, open_cell_menu, open_gallery, pixels, screen_shot,
                             tray_icon_window, viewable_windows, wait_for_no_window,
                             wait_for_window, wait_until, window_geometry, write_pictures,
                             xdotool)

NAMES = [f"shot{index:02d}.png" for index in range(18)]  # six rows, oldest first
PREVIEW = os.path.splitext(NAMES[-1])[0]  # a preview's title: its file name without extension
ROOT_COLOUR = (0x33, 0x66, 0x99)


def own_menus():
    """Geometry of the program's viewable override-redirect windows (menus)."""
    found = []
    tree = subprocess.run(["xwininfo", "-root", "-children"], capture_output=True,
                          text=True).stdout
    for line in tree.splitlines():
        if '("quillix" "Quillix")' in line:
            info = subprocess.run(["xwininfo", "-id", line.split()[0]], capture_output=True,
                                  text=True).stdout
            if "IsViewable" in info and "Override Redirect State: yes" in info:
                found.append(window_geometry(line.split()[0]))
    return found


def shown(*names):
    return all(viewable_windows(name) for name in names)


class Shell(AppTestCase):
    LISTING = len(NAMES)

    @classmethod
    def prepare(cls):
        subprocess.run(["xsetroot", "-solid", "#%02x%02x%02x" % ROOT_COLOUR], check=True)
        write_pictures(cls.home.folders["Desktop"], NAMES)

    def wait_closed(self, what):
        wait_until(lambda: not viewable_windows(POPOVER) and not viewable_windows(PILL),
                   what=what)

    def test_1_hotkey_and_tray_icon_toggle_the_popover_and_outside_presses_close_it(self):
        xdotool("key", "super+shift+1")
        wait_until(lambda: shown(POPOVER, PILL), what="popover and pill")
        popover = window_geometry(viewable_windows(POPOVER)[0])
        pill = window_geometry(viewable_windows(PILL)[0])
        self.assertEqual(popover[1], 24, "the popover hangs under the tray panel")
        self.assertEqual(pill[0], popover[0])
        self.assertGreater(pill[1], popover[1] + popover[3], "the pill sits under the popover")
        # A press in the pill keeps both; the hotkey again closes them.
        click_at(*centre(pill))
        time.sleep(0.5)
        self.assertTrue(shown(POPOVER, PILL))
        xdotool("key", "super+shift+1")
        self.wait_closed("the hotkey to close the popover")
        # A press on the desktop closes them.
        xdotool("key", "super+shift+1")
        wait_until(lambda: shown(POPOVER, PILL), what="popover and pill again")
        xdotool("mousemove", "400", "700", "click", "1")
        self.wait_closed("an outside click to close the popover")

        # A click on the tray icon opens it under the icon, pushed left only
        # as far as the screen's edge needs; a press on the icon must not
        # close it only for the click to open it again.
        x, y = centre(window_geometry(tray_icon_window()))
        xdotool("mousemove", str(x), str(y), "click", "1")
        wait_until(lambda: shown(POPOVER, PILL), what="the popover from the tray icon")
        left, top, width, _ = window_geometry(viewable_windows(POPOVER)[0])
        self.assertEqual(left, min(x - width // 2, 1920 - width))
        self.assertEqual(top, 24)
        xdotool("mousemove", str(x), str(y), "click", "1")
        self.wait_closed("a second tray click to close it")

    def test_2_corners_show_the_desktop_without_a_compositor(self):
        open_gallery()
        time.sleep(0.2)  # the pill's fade
        popover = window_geometry(viewable_windows(POPOVER)[0])
        pill = window_geometry(viewable_windows(PILL)[0])
        shot = screen_shot(os.path.join(self.home.root, "corners.png"))
        corners = []
        for x, y, width, height in (popover, pill):
            corners += [(x, y), (x + width - 1, y), (x, y + height - 1),
                        (x + width - 1, y + height - 1)]
        self.assertEqual(pixels(shot, *corners), [ROOT_COLOUR] * len(corners))
        # The panels themselves are still there, edge to edge.
        middle = [(popover[0] + popover[2] // 2, popover[1] + 1), centre(pill)]
        self.assertNotIn(ROOT_COLOUR, pixels(shot, *middle))

    def test_3_presses_in_our_own_menu_and_dialog_keep_the_gallery_open(self):
        open_gallery()
        popover = window_geometry(viewable_windows(POPOVER)[0])
        pill = window_geometry(viewable_windows(PILL)[0])
        # The oldest picture sits in the last row: its menu reaches past the
        # bottom of the pill.
        open_cell_menu(NAMES[0])
        menu = wait_until(lambda: [w for w in own_menus() if w[1] + w[3] > pill[1] + pill[3]],
                          what="the cell's menu below the pill")[0]
        # "Rename…" is the second row from the bottom of the menu, below the pill.
        item_y = menu[1] + menu[3] - 36
        self.assertGreater(item_y, pill[1] + pill[3])
        click_at(menu[0] + 40, item_y)
        dialog = wait_for_window("Rename Screenshot", "the rename dialog")
        time.sleep(0.3)
        self.assertTrue(viewable_windows(POPOVER), "a press in our menu closed the gallery")

        x, y, width, height = window_geometry(dialog)
        self.assertFalse(x < popover[0] + popover[2] and popover[0] < x + width and
                         y < popover[1] + popover[3] and popover[1] < y + height,
                         "the dialog must lie outside the popover for this test")
        xdotool("mousemove", str(x + 12), str(y + height // 2), "click", "1")
        time.sleep(0.5)
        self.assertTrue(viewable_windows(POPOVER), "a press in our dialog closed the gallery")
        xdotool("key", "Escape")
        wait_for_no_window("Rename Screenshot")
        self.assertTrue(viewable_windows(POPOVER))
        self.assertTrue(os.path.exists(self.home.desktop(NAMES[0])))

        xdotool("mousemove", "400", "700", "click", "1")
        wait_for_no_window(POPOVER, "a press on the desktop to close it")

    def assert_tray_icon_and_preview_stay(self, after):
        icon = tray_icon_window()
        self.assertIsNotNone(icon, f"tray icon embedded after {after}")
        # The tray host shrinks to a sliver when the icon window is unmapped.
        info = subprocess.run(["xwininfo", "-id", icon], capture_output=True, text=True).stdout
        self.assertIn("IsViewable", info, after)
        self.assertEqual(window_geometry(icon)[2], 22, after)
        self.assertTrue(viewable_windows(PREVIEW), f"the preview is still shown after {after}")

    def test_4_the_area_hotkey_leaves_the_tray_icon_and_an_open_preview_alone(self):
        open_gallery()
        click_control(NAMES[-1])
        wait_for_window(PREVIEW, "the preview window")
        time.sleep(0.5)

        xdotool("key", "super+2")
        wait_for_window(OVERLAY, "the area overlay")
        time.sleep(0.3)
        xdotool("key", "Escape")
        wait_for_no_window(OVERLAY)
        time.sleep(0.5)
        self.assert_tray_icon_and_preview_stay("Super+2 and Escape")

        xdotool("key", "super+2")
        wait_for_window(OVERLAY, "the area overlay")
        time.sleep(0.3)
        drag((250, 150), (550, 350), steps=2, pause=0)
        toolbar = wait_for_window(TOOLBAR, "the toolbar")
        time.sleep(0.5)
        # Without a compositor a transparent window corner shows black: the
        # toolbar's corner must show what lies under it, like its neighbour.
        x, y, _, _ = window_geometry(toolbar)
        shot = screen_shot(os.path.join(self.home.root, "toolbar.png"))
        corner, beside = pixels(shot, (x, y), (x - 1, y))
        self.assertEqual(corner, beside, "the toolbar's corner is not see-through")
        xdotool("key", "Return")
        wait_until(lambda: captures_in(self.home.folders["Desktop"]), what="the saved capture")
        wait_for_no_window(OVERLAY)
        time.sleep(0.5)
        self.assert_tray_icon_and_preview_stay("Super+2, a drag and Return")

    def test_5_other_hotkeys_do_nothing_while_the_editor_is_open(self):
        xdotool("key", "super+2")
        first = wait_for_window(OVERLAY, "the area overlay")
        xdotool("key", "super+2")
        time.sleep(0.8)  # longer than any capture start
        self.assertEqual(viewable_windows(OVERLAY), [first], "one editor, the first one")

        xdotool("key", "super+shift+1")
        time.sleep(0.5)
        self.assertEqual(call_app("IsPopoverShown"), [False])
        self.assertFalse(viewable_windows(POPOVER))
        xdotool("key", "Escape")
        wait_for_no_window(OVERLAY, "Escape to close the editor")
        self.assertFalse(viewable_windows(POPOVER))

        # Afterwards the hotkeys work as before.
        xdotool("key", "super+shift+1")
        wait_for_window(POPOVER, "the gallery after the editor")
        xdotool("key", "super+shift+1")
        wait_for_no_window(POPOVER)


if __name__ == "__main__":
    main()
