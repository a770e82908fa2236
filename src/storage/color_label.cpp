// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "storage/color_label.h"

namespace {

struct ColorLabelInfo {
    const char* rawValue;
    double red;
    double green;
    double blue;
};

// Indexed by the enumeration's value.
constexpr std::array<ColorLabelInfo, 6> kLabels = {{
    {"red", 0.965, 0.27, 0.27},
    {"orange", 0.95, 0.57, 0.18},
    {"yellow", 0.95, 0.80, 0.18},
    {"green", 0.22, 0.78, 0.44},
    {"blue", 0.22, 0.55, 0.95},
    {"purple", 0.67, 0.35, 0.95},
}};

const ColorLabelInfo& infoOf(ColorLabel label) {
    return kLabels[static_cast<size_t>(label)];
}

}  // namespace

QString colorLabelRawValue(ColorLabel label) {
    return QLatin1String(infoOf(label).rawValue);
}

std::optional<ColorLabel> colorLabelFromRawValue(const QString& rawValue) {
    for (ColorLabel label : kAllColorLabels) {
        if (rawValue == QLatin1String(infoOf(label).rawValue)) {
            return label;
        }
    }
    return std::nullopt;
}

QString colorLabelTitle(ColorLabel label) {
    QString title = colorLabelRawValue(label);
    title[0] = title[0].toUpper();
    return title;
}

QColor colorLabelColor(ColorLabel label) {
    const ColorLabelInfo& info = infoOf(label);
    return QColor::fromRgbF(static_cast<float>(info.red), static_cast<float>(info.green),
                            static_cast<float>(info.blue));
}
