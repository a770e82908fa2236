// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

// Our modules log through Qt logging categories named "quillix.<module>".
// Their lines are the program's own words for the terminal ("✅ Quillix:
// hotkey ⌘2 registered (id 3)"), so they go to standard output exactly as
// written, one per line and flushed at once; Qt's own messages keep Qt's
// usual handling.
void installLogOutput();
