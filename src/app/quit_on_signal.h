// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

// Turns SIGTERM, SIGINT and SIGHUP into a normal QCoreApplication::quit() on
// the GUI thread (through a socket pair, the only safe way out of a signal
// handler).
void quitOnTerminationSignals();
