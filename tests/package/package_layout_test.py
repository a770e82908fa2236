#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Quillix developers

"""The two install layouts, from the tests' own build tree: the relocatable
Quillix.app folder still runs after a move, and the Debian package holds the
system layout with entries that the desktop, AppStream and lintian checks
accept.

Arguments: BUILD_DIR CMAKE CPACK."""
import os
import shutil
import subprocess
import sys
import tempfile
import unittest

BUILD_DIR, CMAKE, CPACK = sys.argv[1:4]
SYSTEM_FILES = [
    "usr/bin/quillix",
    "usr/bin/quillix-capture",
    "usr/share/applications/quillix.desktop",
    "usr/share/metainfo/io.github.quillix.Quillix.metainfo.xml",
    "usr/share/icons/hicolor/scalable/apps/quillix.svg",
    "usr/share/man/man1/quillix.1.gz",
    "usr/share/man/man1/quillix-capture.1.gz",
    "usr/share/doc/quillix/copyright",
    "usr/share/doc/quillix/changelog.gz",
] + [f"usr/share/icons/hicolor/{s}x{s}/apps/quillix.png" for s in (16, 22, 24, 32, 48, 64, 128, 256)]


def cache_value(name):
    with open(os.path.join(BUILD_DIR, "CMakeCache.txt"), encoding="utf-8") as cache:
        for line in cache:
            if line.startswith(name + ":"):
                return line.split("=", 1)[1].strip()
    return ""


def project_version():
    return cache_value("CMAKE_PROJECT_VERSION")


def run(*command, cwd=None):
    return subprocess.run(command, cwd=cwd, capture_output=True, text=True, timeout=300, check=False)


def files_under(root):
    return sorted(os.path.relpath(os.path.join(folder, name), root)
                  for folder, _, names in os.walk(root) for name in names)


class PackageLayoutTest(unittest.TestCase):
    def setUp(self):
        self.temp = tempfile.mkdtemp(prefix="quillix-package-")
        self.addCleanup(shutil.rmtree, self.temp, ignore_errors=True)

    def assert_no_rpath(self, program):
        dynamic = run("readelf", "-d", program)
        self.assertEqual(dynamic.returncode, 0, dynamic.stderr)
        self.assertNotIn("RPATH", dynamic.stdout)
        self.assertNotIn("RUNPATH", dynamic.stdout)

    def assert_runs(self, folder):
        version = run(os.path.join(folder, "quillix"), "--version")
        self.assertEqual((version.returncode, version.stdout.strip()),
                         (0, f"Quillix {project_version()}"), version.stderr)
        capture = run(os.path.join(folder, "quillix-capture"), "--help")
        self.assertEqual(capture.returncode, 0, capture.stderr)
        self.assertTrue(capture.stdout.startswith("Usage: quillix-capture"), capture.stdout)

    def test_relocatable_folder_runs_after_a_move(self):
        prefix = os.path.join(self.temp, "prefix")
        install = run(CMAKE, "--install", BUILD_DIR, "--component", "bundle", "--prefix", prefix)
        self.assertEqual(install.returncode, 0, install.stdout + install.stderr)
        self.assertEqual(files_under(prefix), ["Quillix.app/bin/quillix",
                                               "Quillix.app/bin/quillix-capture"])
        moved = os.path.join(self.temp, "elsewhere", "Quillix.app")
        shutil.copytree(os.path.join(prefix, "Quillix.app"), moved, symlinks=True)
        shutil.rmtree(prefix)
        for program in ("quillix", "quillix-capture"):
            self.assert_no_rpath(os.path.join(moved, "bin", program))
        self.assert_runs(os.path.join(moved, "bin"))

    def test_debian_package_holds_the_system_layout(self):
        packages = os.path.join(self.temp, "packages")
        cpack = run(CPACK, "--config", os.path.join(BUILD_DIR, "CPackConfig.cmake"), "-G", "DEB",
                    "-B", packages, cwd=BUILD_DIR)
        self.assertEqual(cpack.returncode, 0, cpack.stdout + cpack.stderr)
        arch = run("dpkg", "--print-architecture").stdout.strip()
        deb = os.path.join(packages, f"quillix_{project_version()}_{arch}.deb")
        self.assertTrue(os.path.isfile(deb), os.listdir(packages))

        listing = run("dpkg-deb", "-c", deb).stdout
        for path in SYSTEM_FILES:
            self.assertIn(f"./{path}\n", listing)
        control = run("dpkg-deb", "-f", deb, "Package", "Section", "Depends").stdout
        self.assertIn("Package: quillix\n", control)
        self.assertIn("Section: graphics\n", control)
        self.assertIn("libqt6widgets6", control)  # dpkg-shlibdeps read the program

        root = os.path.join(self.temp, "root")
        self.assertEqual(run("dpkg-deb", "-x", deb, root).returncode, 0)
        self.assert_runs(os.path.join(root, "usr", "bin"))
        desktop = run("desktop-file-validate",
                      os.path.join(root, "usr/share/applications/quillix.desktop"))
        self.assertEqual((desktop.returncode, desktop.stdout), (0, ""))
        metainfo = run("appstreamcli", "validate", "--no-net",
                       os.path.join(root, SYSTEM_FILES[3]))
        self.assertEqual(metainfo.returncode, 0, metainfo.stdout)
        # Only a plain build is ever shipped; a sanitizer build's binaries
        # are no Debian policy matter.
        if cache_value("QUILLIX_SANITIZE") != "ON":
            lintian = run("lintian", "--fail-on", "error", deb)
            self.assertEqual(lintian.returncode, 0, lintian.stdout)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
