#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Quillix developers

"""The program's first start in a home that holds only an older version's
bindings: where its sealed settings go, and the tray icon."""
import json
import os
import stat
import sys

sys.path.insert(0, os.path.dirname(__file__))
from quillix_session import AppTestCase, main, try_open_file, wait_until  # noqa: E402

LEGACY_OPEN_MENU = {"keyCode": 0, "modifiers": 2048}


class FirstRun(AppTestCase):
    @classmethod
    def prepare(cls):
        # Bare bindings in Documents, as an older version kept them.
        cls.legacy = os.path.join(cls.home.folders["Documents"], "Quillix", "settings.bin")
        os.makedirs(os.path.dirname(cls.legacy))
        bindings = {action: {"keyCode": 18 + index, "modifiers": 256} for index, action in
                    enumerate(("openMenu", "showHUD", "captureArea", "captureWindow",
                               "captureScreen", "recordWindow", "recordScreen"))}
        bindings["openMenu"] = LEGACY_OPEN_MENU
        with open(cls.legacy, "w") as legacy:
            json.dump(bindings, legacy)

    def test_legacy_bindings_move_into_private_sealed_settings(self):
        settings = os.path.join(self.home.data_dir, "settings.bin")
        upgraded = wait_until(
            lambda: (lambda text: text if text and text.startswith(b'{"hotkeys"') else None)(
                try_open_file(settings)), what="the sealed, upgraded settings.bin")
        stored = json.loads(upgraded)
        self.assertEqual(stored["hotkeys"]["openMenu"], LEGACY_OPEN_MENU)
        self.assertIs(stored["showOnlyQuillixItems"], True)
        self.assertFalse(os.path.exists(self.legacy))
        self.assertEqual(stat.S_IMODE(os.stat(settings).st_mode), 0o600)
        self.assertEqual(stat.S_IMODE(os.stat(self.home.data_dir).st_mode), 0o700)


if __name__ == "__main__":
    main()
