// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QString>

// Shows the file selected in the desktop's file manager
// (org.freedesktop.FileManager1.ShowItems on the session bus); without such
// a service, opens the folder holding it. Nothing waits for the bus or the
// file manager; GUI thread (a running event loop delivers the answer).
void revealInFileManager(const QString& filePath);
