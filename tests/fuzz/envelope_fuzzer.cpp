// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

// The envelope opener and the JSON reading every data file goes through:
// the bytes as a sealed box, then (opened or, as older versions wrote them,
// bare) as a JSON document.

#include "fuzz_support.h"
#include "storage/app_crypto.h"
#include "storage/json_codec.h"

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    fuzz_support::initialise(argc, argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray input = fuzz_support::bytes(data, size);
    const std::optional<QByteArray> opened = AppCrypto::decrypt(input);
    (void)decodeJson(opened.value_or(input));
    return 0;
}
