#!/usr/bin/python3
"""The program's first start in the virtual desktop: data files and tray icon."""
import json
import os
import stat
import sys
import unittest

sys.path.insert(0, os.path.dirname(__file__))
from quillix_session import (FreshHome, RunningApp, open_envelope, seal,  # noqa: E402
                             tray_icon_embedded, try_open_file,
                             wait_until)

BINARY = None

DEFAULT_DOCUMENT = (
    b'{"hotkeys":{"openMenu":{"keyCode":18,"modifiers":768},'
    b'"showHUD":{"keyCode":19,"modifiers":768},'
    b'"captureArea":{"keyCode":19,"modifiers":256},'
    b'"captureWindow":{"keyCode":20,"modifiers":256},'
    b'"captureScreen":{"keyCode":21,"modifiers":256},'
    b'"recordWindow":{"keyCode":22,"modifiers":256},'
    b'"recordScreen":{"keyCode":26,"modifiers":256}},'
    b'"showOnlyQuillixItems":true}')


class FirstRun(unittest.TestCase):
    def setUp(self):
        self.home = FreshHome()
        self.app = None

    def tearDown(self):
        if self.app:
            code = self.app.stop()
            if code not in (0, -15):
                print(self.app.output())
        self.home.cleanup()

    def settings_path(self):
        return os.path.join(self.home.data_dir, "settings.bin")

    def start(self):
        self.app = RunningApp(BINARY, self.home)

    def test_first_run_writes_the_sealed_default_settings(self):
        self.start()
        wait_until(lambda: os.path.exists(self.settings_path()), what="settings.bin")
        # The load ends with two saves; wait until the file is complete and stable.
        wait_until(lambda: os.path.getsize(self.settings_path()) == len(DEFAULT_DOCUMENT) + 28,
                   what="the whole document")
        with open(self.settings_path(), "rb") as sealed:
            envelope = sealed.read()
        self.assertEqual(len(envelope), len(DEFAULT_DOCUMENT) + 28)
        self.assertEqual(open_envelope(envelope), DEFAULT_DOCUMENT)
        self.assertEqual(stat.S_IMODE(os.stat(self.settings_path()).st_mode), 0o600)
        self.assertEqual(stat.S_IMODE(os.stat(self.home.data_dir).st_mode), 0o700)
        self.assertTrue(self.app.alive(), self.app.output())

    def test_tray_icon_is_embedded_in_the_tray_host(self):
        self.start()
        wait_until(tray_icon_embedded, what="the tray icon inside trayer")
        self.assertTrue(self.app.alive(), self.app.output())

    def test_settings_sealed_by_another_implementation_load_and_survive_the_rewrite(self):
        os.makedirs(self.home.data_dir)
        hotkeys = json.loads(DEFAULT_DOCUMENT)["hotkeys"]
        hotkeys["captureArea"] = {"keyCode": 23, "modifiers": 4096 | 512}
        document = {"hotkeys": hotkeys, "lastShelfLocation": "/srv/shelves/ünï",
                    "showOnlyQuillixItems": False}
        plaintext = json.dumps(document, separators=(",", ":"), ensure_ascii=False).encode()
        original = seal(plaintext)
        with open(self.settings_path(), "wb") as sealed:
            sealed.write(original)

        self.start()

        def rewritten():
            with open(self.settings_path(), "rb") as sealed:
                current = sealed.read()
            return current if current != original and len(current) == len(original) else None

        envelope = wait_until(rewritten, what="settings.bin to be rewritten")
        self.assertEqual(open_envelope(envelope), plaintext)

    def test_legacy_bindings_in_documents_move_in_and_are_upgraded(self):
        legacy_dir = os.path.join(self.home.folders["Documents"], "Quillix")
        os.makedirs(legacy_dir)
        bindings = json.loads(DEFAULT_DOCUMENT)["hotkeys"]
        bindings["openMenu"] = {"keyCode": 0, "modifiers": 2048}
        with open(os.path.join(legacy_dir, "settings.bin"), "w") as legacy:
            json.dump(bindings, legacy)

        self.start()
        upgraded = wait_until(
            lambda: (lambda text: text if text and text.startswith(b'{"hotkeys"') else None)(
                try_open_file(self.settings_path())),
            what="the upgraded settings.bin")
        stored = json.loads(upgraded)
        self.assertEqual(stored["hotkeys"]["openMenu"], {"keyCode": 0, "modifiers": 2048})
        self.assertIs(stored["showOnlyQuillixItems"], True)
        self.assertFalse(os.path.exists(os.path.join(legacy_dir, "settings.bin")))


if __name__ == "__main__":
    BINARY = sys.argv.pop(1)
    unittest.main(verbosity=2)
