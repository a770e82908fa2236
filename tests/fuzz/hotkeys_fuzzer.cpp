// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

// The hotkey bindings as a JSON document (the settings' "hotkeys", or the
// top level of the oldest settings files), and each binding's text form.

#include "fuzz_support.h"
#include "storage/hotkey_binding.h"
#include "storage/hotkey_config.h"
#include "storage/json_codec.h"

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    fuzz_support::initialise(argc, argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::optional<nlohmann::ordered_json> json = decodeJson(fuzz_support::bytes(data, size));
    if (!json) {
        return 0;
    }
    if (const std::optional<HotkeyConfig> config = HotkeyConfig::fromJson(*json)) {
        for (const HotkeyAction action : kAllHotkeyActions) {
            (void)displayString(config->binding(action));
        }
    }
    return 0;
}
