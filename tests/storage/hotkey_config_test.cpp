// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "storage/hotkey_config.h"

#include <gtest/gtest.h>

#include "storage/json_codec.h"

namespace {

constexpr qint64 kCmd = KeyModifiers::kSuper;
constexpr qint64 kShift = KeyModifiers::kShift;
constexpr qint64 kOpt = KeyModifiers::kAlt;
constexpr qint64 kCtrl = KeyModifiers::kControl;

TEST(HotkeyBindingText, ModifierGlyphsComeInTheFixedOrder) {
    EXPECT_EQ(displayString({19, kCmd}), "⌘2");
    EXPECT_EQ(displayString({18, kShift | kCmd}), "⇧⌘1");
    EXPECT_EQ(displayString({49, kCtrl | kOpt}), "⌃⌥Space");
    EXPECT_EQ(displayString({0, kCmd | kShift | kOpt | kCtrl}), "⌃⌥⇧⌘A");
    EXPECT_EQ(displayString({36, kCmd}), "⌘↩");
    EXPECT_EQ(displayString({53, 0}), "(53)");
    // Unknown modifier bits are not shown.
    EXPECT_EQ(displayString({20, kCmd | 0x1 | 0x400 | 0x20000}), "⌘3");
}

TEST(HotkeyConfigJson, RoundTripKeepsUnknownModifierBits) {
    HotkeyConfig config = HotkeyConfig::defaults();
    config.setBinding(HotkeyAction::captureScreen, {1049, kCtrl | 0x40000});
    const auto decoded = HotkeyConfig::fromJson(*decodeJson(encodeJson(config.toJson())));
    ASSERT_TRUE(decoded);
    EXPECT_EQ(*decoded, config);
    EXPECT_EQ(decoded->binding(HotkeyAction::captureScreen).modifiers, kCtrl | 0x40000);
}

TEST(HotkeyConfigJson, EveryActionIsRequired) {
    for (HotkeyAction missing : kAllHotkeyActions) {
        nlohmann::ordered_json json = HotkeyConfig::defaults().toJson();
        json.erase(jsonKey(missing));
        EXPECT_FALSE(HotkeyConfig::fromJson(json)) << jsonKey(missing);
    }
}

TEST(HotkeyConfigJson, MalformedBindingsFail) {
    const char* badBindings[] = {
        R"({"keyCode":19})",
        R"({"modifiers":256})",
        R"({"keyCode":"19","modifiers":256})",
        R"({"keyCode":-1,"modifiers":256})",
        R"({"keyCode":4294967296,"modifiers":256})",
        R"({"keyCode":19.5,"modifiers":256})",
        R"({"keyCode":19,"modifiers":null})",
        R"([19,256])",
    };
    for (const char* bad : badBindings) {
        nlohmann::ordered_json json = HotkeyConfig::defaults().toJson();
        json["showHUD"] = *decodeJson(bad);
        EXPECT_FALSE(HotkeyConfig::fromJson(json)) << bad;
    }
}

TEST(HotkeyConfigJson, ExtraMembersAreIgnoredAndOrderDoesNotMatter) {
    const auto json = decodeJson(
        R"({"recordScreen":{"modifiers":256,"keyCode":26,"x":1},"recordWindow":{"keyCode":22,"modifiers":256},)"
        R"("captureScreen":{"keyCode":21,"modifiers":256},"captureWindow":{"keyCode":20,"modifiers":256},)"
        R"("captureArea":{"keyCode":19,"modifiers":256},"showHUD":{"keyCode":19,"modifiers":768},)"
        R"("openMenu":{"keyCode":18,"modifiers":768},"future":true})");
    ASSERT_TRUE(json);
    EXPECT_EQ(HotkeyConfig::fromJson(*json), HotkeyConfig::defaults());
}

}  // namespace
