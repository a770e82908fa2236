// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

// One store opening a data file that holds the input as it was written
// before files were sealed (the read rule takes bare JSON too), so the
// fuzzer reaches the store's own decoding. Built once per store, with
// QUILLIX_FUZZ_STORE naming it: settings, registry, metadata or shelves.

#include <QDir>
#include <memory>

#include "fuzz_support.h"
#include "library/capture_registry.h"
#include "storage/screenshot_metadata_store.h"
#include "storage/shelf_store.h"
#include "storage/user_settings.h"

#define QUILLIX_STORE_IS(name) (QLatin1String(QUILLIX_FUZZ_STORE) == QLatin1String(name))

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    fuzz_support::initialise(argc, argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QString folder = fuzz_support::freshFolder();
    const QByteArray input = fuzz_support::bytes(data, size);
    if (QUILLIX_STORE_IS("settings")) {
        fuzz_support::writeFile(folder, QStringLiteral("settings.bin"), input);
        UserSettings settings(folder, QString());
    } else if (QUILLIX_STORE_IS("registry")) {
        fuzz_support::writeFile(folder, QStringLiteral("registry.bin"), input);
        CaptureRegistry registry(folder, QString());
    } else if (QUILLIX_STORE_IS("metadata")) {
        fuzz_support::writeFile(folder, QStringLiteral("metadata.bin"), input);
        ScreenshotMetadataStore metadata(folder);
    } else if (QUILLIX_STORE_IS("shelves")) {
        fuzz_support::writeFile(folder, QStringLiteral("shelves.bin"), input);
        UserSettings settings(QDir(folder).filePath(QStringLiteral("settings")), QString());
        ShelfStore shelves(folder, QString(), settings, folder);
    }
    return 0;
}
