#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Quillix developers

"""Self-update of the running program. The program runs from a Quillix.app
folder copied out of the build tree; a local HTTPS feed (its certificate
trusted through "updateCAFile") offers a zip of a Quillix.app whose program
was built with a higher version. "Update & Restart" replaces the folder and
the new version starts from it; a download that fails its checksum leaves
the folder and the program as they were.

Arguments: QUILLIX QUILLIX_CAPTURE NEXT_QUILLIX NEXT_VERSION"""
import hashlib
import json
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

import quillix_session as session
from quillix_session import (FreshHome, RunningApp, call_app, click_control,
                             locate_settled, wait_for_window, wait_until)

CAPTURE_TOOL = NEXT_PROGRAM = NEXT_VERSION = None
SERVER = os.path.join(os.path.dirname(__file__), "..", "updates", "https_server.py")


def make_bundle(folder, program):
    """A Quillix.app at `folder` holding `program` and the capture tool."""
    os.makedirs(os.path.join(folder, "bin"))
    shutil.copy2(program, os.path.join(folder, "bin", "quillix"))
    shutil.copy2(CAPTURE_TOOL, os.path.join(folder, "bin", "quillix-capture"))


def tree_digest(folder):
    """Every relative path, mode and byte under `folder`."""
    digest = hashlib.sha256()
    for parent, folders, names in sorted(os.walk(folder)):
        folders.sort()
        for name in sorted(names):
            path = os.path.join(parent, name)
            digest.update(os.path.relpath(path, folder).encode())
            digest.update(oct(os.stat(path).st_mode).encode())
            with open(path, "rb") as data:
                digest.update(hashlib.sha256(data.read()).digest())
    return digest.hexdigest()


def file_sha256(path):
    with open(path, "rb") as data:
        return hashlib.sha256(data.read()).hexdigest()


def processes_running(program):
    """PIDs of the processes whose executable is `program` now."""
    found = []
    for entry in os.listdir("/proc"):
        if entry.isdigit():
            try:
                if os.readlink(f"/proc/{entry}/exe") == program:
                    found.append(int(entry))
            except OSError:
                pass
    return found


class SelfUpdateTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.served = tempfile.mkdtemp(prefix="quillix-feed-")
        staging = tempfile.mkdtemp(prefix="quillix-next-")
        cls.addClassCleanup(shutil.rmtree, cls.served, ignore_errors=True)
        cls.addClassCleanup(shutil.rmtree, staging, ignore_errors=True)
        cls.next_bundle = os.path.join(staging, "Quillix.app")
        make_bundle(cls.next_bundle, NEXT_PROGRAM)
        cls.archive = os.path.join(cls.served, f"Quillix-{NEXT_VERSION}.zip")
        subprocess.run(["zip", "-qry", cls.archive, "Quillix.app"], cwd=staging, check=True)
        cls.certificate = os.path.join(cls.served, "cert.pem")
        cls.server = subprocess.Popen(
            [sys.executable, SERVER, cls.served, cls.certificate,
             os.path.join(staging, "requests.log")], stdout=subprocess.PIPE, text=True)
        cls.addClassCleanup(cls.server.wait)
        cls.addClassCleanup(cls.server.kill)
        cls.base = f"https://127.0.0.1:{cls.server.stdout.readline().strip()}/"

    def setUp(self):
        self.home = FreshHome()
        self.addCleanup(self.home.cleanup)
        self.installed = os.path.join(self.home.root, "apps", "Quillix.app")
        self.program = os.path.join(self.installed, "bin", "quillix")
        make_bundle(self.installed, session.BINARY)
        # The program's temporary folder, where the update is unpacked.
        self.temp = os.path.join(self.home.root, "tmp")
        os.makedirs(self.temp)
        self.home.env["TMPDIR"] = self.temp

    def start_with_offer(self, sha256):
        """Starts the installed program with automatic checks on, the feed
        offering the next version, and waits for the update toast."""
        feed = f"appcast-{self._testMethodName}.json"
        with open(os.path.join(self.served, feed), "w", encoding="utf-8") as appcast:
            json.dump({"version": NEXT_VERSION, "downloadURL": self.base + os.path.basename(
                self.archive), "sha256": sha256, "releaseNotes": "Faster."}, appcast)
        self.home.write_preferences(appcastURL=self.base + feed, updateCAFile=self.certificate,
                                    checkForUpdatesAutomatically="true")
        started = time.monotonic()
        app = RunningApp(self.program, self.home)
        self.addCleanup(app.stop)
        locate_settled("Update & Restart", timeout=60)
        print(f"update toast {time.monotonic() - started:.1f} s after launch", file=sys.stderr)
        self.assertTrue(session.is_shown(f"Quillix {NEXT_VERSION} available"))
        return app

    def test_update_and_restart_starts_the_new_version_from_the_same_folder(self):
        app = self.start_with_offer(file_sha256(self.archive))
        old_pid = app.process.pid
        click_control("Update & Restart")
        self.assertEqual(app.process.wait(timeout=60), 0, app.output()[-4000:])

        restarted = wait_until(lambda: processes_running(self.program), timeout=60,
                               what="the new program to start")
        self.assertNotIn(old_pid, restarted)
        self.addCleanup(self.stop_processes, restarted, self.program)
        wait_until(lambda: call_app("ListedFiles") is not None, timeout=60,
                   what="the new program's D-Bus interface")
        version = subprocess.run([self.program, "--version"], capture_output=True, text=True,
                                 timeout=30, check=False)
        self.assertEqual(version.stdout, f"Quillix {NEXT_VERSION}\n")
        self.assertEqual(tree_digest(self.installed), tree_digest(self.next_bundle))
        # The script has deleted itself.
        wait_until(lambda: not os.path.exists(os.path.join(self.temp, "quillix-update.sh")),
                   what="the install script to go")
        self.assertIn(f"Quillix: installing update {NEXT_VERSION} over {self.installed}",
                      app.output())

    def test_a_download_that_fails_its_checksum_changes_nothing(self):
        before = tree_digest(self.installed)
        app = self.start_with_offer("0" * 64)
        click_control("Update & Restart")
        wait_for_window("Update Failed")
        self.assertIn("Quillix: update install failed: "
                      "The downloaded update does not match its checksum.", app.output())
        time.sleep(2)  # a wrongly started script would have waited 1 s and run
        self.assertTrue(app.alive())
        self.assertEqual(tree_digest(self.installed), before)
        self.assertFalse(os.path.exists(os.path.join(self.temp, "quillix-update.sh")))
        app.stop_cleanly()

    @staticmethod
    def stop_processes(pids, program):
        for pid in pids:
            try:
                os.kill(pid, signal.SIGTERM)
            except ProcessLookupError:
                pass
        # Not our child: once it has exited, its executable link is gone even
        # before anything reaps it.
        wait_until(lambda: not set(pids) & set(processes_running(program)),
                   what="the new program to quit")


if __name__ == "__main__":
    _, CAPTURE_TOOL, NEXT_PROGRAM, NEXT_VERSION = sys.argv[1:5]
    del sys.argv[2:5]
    session.main()
