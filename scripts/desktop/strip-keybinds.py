#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
# SPDX-FileCopyrightText: 2026 The Quillix developers

"""Copy an openbox rc.xml without any of its <keybind> elements.

    strip-keybinds.py IN OUT

The distribution's rc.xml grabs keys such as Print, Alt+Print and
Super+E on the root window. Any other program asking for the same
combination then gets BadAccess, so the test desktop's window manager
must hold no key bindings at all. Everything else (mouse bindings,
theme, desktops) is kept as it is.
"""

import sys
import xml.etree.ElementTree as ET


def local_name(tag):
    # Tags come back as "{namespace}name".
    return tag.rsplit("}", 1)[-1] if isinstance(tag, str) else ""


def strip_keybinds(element):
    for child in list(element):
        if local_name(child.tag) == "keybind":
            element.remove(child)
        else:
            strip_keybinds(child)


def main(argv):
    if len(argv) != 3:
        print("usage: strip-keybinds.py IN OUT", file=sys.stderr)
        return 2

    tree = ET.parse(argv[1])
    root = tree.getroot()
    # Keep openbox's namespace as the default one: openbox ignores
    # elements written with a prefix such as ns0:.
    if root.tag.startswith("{"):
        ET.register_namespace("", root.tag[1:].split("}", 1)[0])

    strip_keybinds(root)
    tree.write(argv[2], encoding="UTF-8", xml_declaration=True)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
