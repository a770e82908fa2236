// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QByteArray>
#include <QString>
#include <cstddef>
#include <cstdint>

// What every fuzz target shares: an application object (image plugins and
// file watchers want one) and a scratch folder of the process's own.
namespace fuzz_support {

// Creates the application object and the scratch folder; call from
// LLVMFuzzerInitialize.
void initialise(int* argc, char*** argv);

// The input as bytes.
QByteArray bytes(const uint8_t* data, size_t size);

// An empty folder for one input: whatever the last input left (files kept
// aside as unreadable, shelves' folders) is gone.
QString freshFolder();

// Writes `content` to `name` in the folder and returns its path.
QString writeFile(const QString& folder, const QString& name, const QByteArray& content);

}  // namespace fuzz_support
