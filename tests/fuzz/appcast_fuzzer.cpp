// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

// The update feed's document, as the checker decodes what the server sent.

#include "fuzz_support.h"
#include "updates/appcast_release.h"

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    fuzz_support::initialise(argc, argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    (void)AppcastRelease::fromJson(fuzz_support::bytes(data, size));
    return 0;
}
