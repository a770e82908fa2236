// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

// Hostile pictures and recordings through the library's own thumbnail
// decoding. The first byte picks the file's extension among those built
// with QUILLIX_FUZZ_EXTENSIONS (the decoder is chosen by name), the rest is
// the file.

#include <QStringList>

#include "fuzz_support.h"
#include "library/thumbnailer.h"

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    fuzz_support::initialise(argc, argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const QStringList extensions =
        QStringLiteral(QUILLIX_FUZZ_EXTENSIONS).split(QLatin1Char(','));
    static const Thumbnailer thumbnailer;
    if (size == 0) {
        return 0;
    }
    const QString name = QStringLiteral("input.") + extensions.at(data[0] % extensions.size());
    const QString path = fuzz_support::writeFile(fuzz_support::freshFolder(), name,
                                                 fuzz_support::bytes(data + 1, size - 1));
    (void)thumbnailer.decode(path);
    return 0;
}
