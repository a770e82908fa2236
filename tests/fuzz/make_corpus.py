#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Quillix developers

"""Writes the fuzzers' seed files into corpus/, from real files: the data
files the stores themselves write (sealed, and opened to their JSON), a feed
document, pictures from ImageMagick and recordings from FFmpeg.

Usage: make_corpus.py STORE_SAVE_LOOP   (the helper of the library's kill test)

The seeds are committed; run this again only when a format changes."""
import json
import os
import shutil
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "storage"))
import aesgcm_peer  # noqa: E402

CORPUS = os.path.join(HERE, "corpus")
STORES = {"settings": "settings.bin", "registry": "registry.bin", "metadata": "metadata.bin",
          "shelves": "shelves.bin"}


def seed(target, name, content):
    folder = os.path.join(CORPUS, target)
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, name), "wb") as file:
        file.write(content)


def store_files(helper, work):
    """Each store's own file after a few saves: (sealed bytes, JSON bytes)."""
    files = {}
    for store, file_name in STORES.items():
        folder = os.path.join(work, store)
        child = subprocess.Popen([helper, "save", store, folder], stdout=subprocess.PIPE)
        for _ in range(3):
            child.stdout.readline()
        child.kill()
        child.wait()
        with open(os.path.join(folder, file_name), "rb") as file:
            sealed = file.read()
        files[store] = (sealed, aesgcm_peer.open_envelope(sealed))
    return files


def media(work):
    """(selector byte, extension, bytes) for each picture and recording kind."""
    kinds = []
    for selector, extension in enumerate(["png", "jpg", "gif", "webp"]):
        path = os.path.join(work, f"seed.{extension}")
        subprocess.run(["convert", "-size", "24x16", "gradient:red-blue", path], check=True)
        kinds.append(("image_thumbnail", selector, extension, path))
    for selector, extension in enumerate(["mp4", "mov"]):
        path = os.path.join(work, f"seed.{extension}")
        subprocess.run(["ffmpeg", "-v", "error", "-y", "-f", "lavfi", "-i",
                        "testsrc=size=32x24:rate=5", "-t", "0.4", "-c:v", "libx264",
                        "-pix_fmt", "yuv420p", path], check=True)
        kinds.append(("video_thumbnail", selector, extension, path))
    for target, selector, extension, path in kinds:
        with open(path, "rb") as file:
            seed(target, f"seed.{extension}", bytes([selector]) + file.read())


def main():
    helper = sys.argv[1]
    shutil.rmtree(CORPUS, ignore_errors=True)
    work = tempfile.mkdtemp()
    try:
        for store, (sealed, plain) in store_files(helper, work).items():
            seed("envelope", STORES[store], sealed)
            seed(f"{store}_file", "written.json", plain)
        settings = json.loads(store_files(helper, work)["settings"][1])
        seed("hotkeys", "settings-hotkeys.json", json.dumps(settings["hotkeys"]).encode())
        # The oldest settings files held only the bindings, at the top level.
        seed("settings_file", "legacy.json", json.dumps(settings["hotkeys"]).encode())
        seed("appcast", "appcast.json", json.dumps({
            "version": "1.4.2", "downloadURL": "https://example.org/Quillix-1.4.2.zip",
            "releaseNotes": "Faster area capture.",
            "sha256": "9f86d081884c7d659a2feaa0c55ad015a3bf4f1b2b0b822cd15d6c15b0f00a08"}).encode())
        media(work)
    finally:
        shutil.rmtree(work, ignore_errors=True)


if __name__ == "__main__":
    main()
