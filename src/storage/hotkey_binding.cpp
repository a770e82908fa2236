#include "storage/hotkey_binding.h"

#include <array>
#include <cstdint>
#include <limits>
#include <utility>

namespace {

// Labels of the keys that have one; every other key shows as "(code)".
constexpr std::pair<quint32, const char*> kKeyNames[] = {
    {0, "A"},   {1, "S"},    {2, "D"},    {3, "F"},      {4, "H"},    {5, "G"},   {6, "Z"},
    {7, "X"},   {8, "C"},    {9, "V"},    {11, "B"},     {12, "Q"},   {13, "W"},  {14, "E"},
    {15, "R"},  {16, "Y"},   {17, "T"},   {18, "1"},     {19, "2"},   {20, "3"},  {21, "4"},
    {22, "6"},  {23, "5"},   {25, "9"},   {26, "7"},     {28, "8"},   {29, "0"},  {31, "O"},
    {32, "U"},  {34, "I"},   {35, "P"},   {36, "↩"},     {37, "L"},   {38, "J"},  {40, "K"},
    {45, "N"},  {46, "M"},   {48, "⇥"},   {49, "Space"}, {96, "F5"},  {97, "F6"}, {98, "F7"},
    {99, "F3"}, {100, "F8"}, {118, "F4"}, {120, "F2"},   {122, "F1"},
};

// Reads an integer member of type T, refusing other types and values out of range.
template <typename T>
std::optional<T> integerMember(const nlohmann::ordered_json& object, const char* key) {
    const auto member = object.find(key);
    if (member == object.end() || !member->is_number_integer()) {
        return std::nullopt;
    }
    if (member->is_number_unsigned()) {
        const auto value = member->get<std::uint64_t>();
        if (value > static_cast<std::uint64_t>(std::numeric_limits<T>::max())) {
            return std::nullopt;
        }
        return static_cast<T>(value);
    }
    const auto value = member->get<std::int64_t>();
    if (value < static_cast<std::int64_t>(std::numeric_limits<T>::min())) {
        return std::nullopt;
    }
    return static_cast<T>(value);
}

}  // namespace

nlohmann::ordered_json HotkeyBinding::toJson() const {
    nlohmann::ordered_json json = nlohmann::ordered_json::object();
    json["keyCode"] = keyCode;
    json["modifiers"] = modifiers;
    return json;
}

std::optional<HotkeyBinding> HotkeyBinding::fromJson(const nlohmann::ordered_json& json) {
    if (!json.is_object()) {
        return std::nullopt;
    }
    const auto keyCode = integerMember<quint32>(json, "keyCode");
    const auto modifiers = integerMember<qint64>(json, "modifiers");
    if (!keyCode || !modifiers) {
        return std::nullopt;
    }
    return HotkeyBinding{*keyCode, *modifiers};
}

QString keyName(quint32 keyCode) {
    for (const auto& [code, name] : kKeyNames) {
        if (code == keyCode) {
            return QString::fromUtf8(name);
        }
    }
    return QStringLiteral("(%1)").arg(keyCode);
}

QString displayString(const HotkeyBinding& binding) {
    static constexpr std::array<std::pair<qint64, const char*>, 4> kGlyphs{{
        {HotkeyBinding::kControl, "⌃"},
        {HotkeyBinding::kOption, "⌥"},
        {HotkeyBinding::kShift, "⇧"},
        {HotkeyBinding::kCommand, "⌘"},
    }};
    QString text;
    for (const auto& [bit, glyph] : kGlyphs) {
        if (binding.modifiers & bit) {
            text += QString::fromUtf8(glyph);
        }
    }
    return text + keyName(binding.keyCode);
}
