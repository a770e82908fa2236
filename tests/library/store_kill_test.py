#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Quillix developers

"""Crash safety of the data files: each store saves state after state in a
helper process that is killed with SIGKILL at a random moment, again and
again. After every kill the store opens its file to the last state it
finished saving or to the one it was saving, never to anything else and never
to the unreadable fallback; the temporary files of saves cut short are gone
once the store has started again.

Arguments: STORE_SAVE_LOOP [KILLS_PER_STORE]"""
import os
import random
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

HELPER = None
KILLS = 50
# The store, its file, and the number of states before they come round again.
STORES = [("settings", "settings.bin", None), ("registry", "registry.bin", 64),
          ("metadata", "metadata.bin", None), ("shelves", "shelves.bin", None)]


def leftovers(folder, file_name):
    prefix = f".{file_name}."
    return [name for name in os.listdir(folder)
            if name.startswith(prefix) and len(name) == len(prefix) + 6]


class StoreKillTest(unittest.TestCase):
    def run_helper(self, mode, store, folder):
        return subprocess.run([HELPER, mode, store, folder], capture_output=True, text=True,
                              timeout=60, check=False)

    def read_state(self, store, folder):
        result = self.run_helper("read", store, folder)
        self.assertEqual(result.returncode, 0, result.stderr)
        text = result.stdout.strip()
        return None if text == "none" else int(text)

    def save_until_killed(self, store, folder, rng):
        """Starts the saving loop, kills it once it has saved at least once,
        and returns the last state it announced."""
        child = subprocess.Popen([HELPER, "save", store, folder], stdout=subprocess.PIPE,
                                 stderr=subprocess.PIPE, text=True)
        first = child.stdout.readline()
        if not first:
            child.wait()
            self.fail(f"{store}: the save loop ended: {child.stderr.read()}")
        time.sleep(rng.uniform(0, 0.03))
        child.send_signal(signal.SIGKILL)
        child.wait(timeout=30)
        # Read through the same buffered pipe as the first line: lines that
        # readline() already buffered are part of what was announced.
        rest = child.stdout.read()
        child.stdout.close()
        child.stderr.close()
        lines = (first + rest).split("\n")
        # A line cut short by the kill is the next state, not yet announced.
        complete = [line for line in lines[:-1] if line]
        return int(complete[-1])

    def kill_repeatedly(self, store, file_name, ring):
        folder = tempfile.mkdtemp(prefix=f"quillix-kill-{store}-")
        self.addCleanup(shutil.rmtree, folder, ignore_errors=True)
        rng = random.Random(store)
        interrupted = 0
        for kill in range(KILLS):
            announced = self.save_until_killed(store, folder, rng)
            if leftovers(folder, file_name):
                interrupted += 1
            state = self.read_state(store, folder)
            valid = {announced, announced + 1}
            if ring:
                valid = {value % ring for value in valid}
            self.assertIn(state, valid, f"{store}: kill {kill + 1} left state {state}, "
                                        f"announced {announced}")
            self.assertEqual([name for name in os.listdir(folder) if "unreadable" in name], [])
            self.assertEqual(leftovers(folder, file_name), [],
                             f"{store}: temporary files stayed after the store started")
        print(f"{store}: {KILLS} kills, {interrupted} during a save, 0 torn files",
              file=sys.stderr)

    def test_every_kill_leaves_the_previous_or_the_new_document(self):
        for store, file_name, ring in STORES:
            with self.subTest(store=store):
                self.kill_repeatedly(store, file_name, ring)


if __name__ == "__main__":
    HELPER = sys.argv.pop(1)
    if len(sys.argv) > 1 and sys.argv[1].isdigit():
        KILLS = int(sys.argv.pop(1))
    unittest.main(verbosity=2)
