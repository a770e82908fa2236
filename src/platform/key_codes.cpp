// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "platform/key_codes.h"

#include <QString>
#include <utility>

namespace KeyCodes {
namespace {

// {position code, evdev code} (evdev codes from linux/input-event-codes.h).
constexpr std::pair<quint32, quint32> kTable[] = {
    {0, 30},    {1, 31},    {2, 32},   {3, 33},    {4, 35},    {5, 34},    {6, 44},    {7, 45},
    {8, 46},    {9, 47},    {10, 86},  {11, 48},   {12, 16},   {13, 17},   {14, 18},   {15, 19},
    {16, 21},   {17, 20},   {18, 2},   {19, 3},    {20, 4},    {21, 5},    {22, 7},    {23, 6},
    {24, 13},   {25, 10},   {26, 8},   {27, 12},   {28, 9},    {29, 11},   {30, 27},   {31, 24},
    {32, 22},   {33, 26},   {34, 23},  {35, 25},   {36, 28},   {37, 38},   {38, 36},   {39, 40},
    {40, 37},   {41, 39},   {42, 43},  {43, 51},   {44, 53},   {45, 49},   {46, 50},   {47, 52},
    {48, 15},   {49, 57},   {50, 41},  {51, 14},   {53, 1},    {65, 83},   {67, 55},   {69, 78},
    {71, 69},   {75, 98},   {76, 96},  {78, 74},   {81, 117},  {82, 82},   {83, 79},   {84, 80},
    {85, 81},   {86, 75},   {87, 76},  {88, 77},   {89, 71},   {91, 72},   {92, 73},   {96, 63},
    {97, 64},   {98, 65},   {99, 61},  {100, 66},  {101, 67},  {103, 87},  {105, 183}, {106, 186},
    {107, 184}, {109, 68},  {111, 88}, {113, 185}, {114, 110}, {115, 102}, {116, 104}, {117, 111},
    {118, 62},  {119, 107}, {120, 60}, {121, 109}, {122, 59},  {123, 105}, {124, 106}, {125, 108},
    {126, 103}, {64, 187},  {79, 188}, {80, 189},  {90, 190},
};

}  // namespace

std::optional<quint32> evdevFromKeyCode(quint32 keyCode) {
    for (const auto& [position, evdev] : kTable) {
        if (position == keyCode) {
            return evdev;
        }
    }
    if (keyCode >= kUnmappedBase) {
        return keyCode - kUnmappedBase;
    }
    return std::nullopt;
}

quint32 keyCodeFromEvdev(quint32 evdevCode) {
    for (const auto& [position, evdev] : kTable) {
        if (evdev == evdevCode) {
            return position;
        }
    }
    return kUnmappedBase + evdevCode;
}

}  // namespace KeyCodes

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

}  // namespace

QString keyName(quint32 keyCode) {
    for (const auto& [code, name] : kKeyNames) {
        if (code == keyCode) {
            return QString::fromUtf8(name);
        }
    }
    return QStringLiteral("(%1)").arg(keyCode);
}
