#pragma once

#include <QIcon>
#include <QString>
#include <optional>

// The tray icon image: the built-in monochrome "BarIcon", or a user-chosen
// image file, drawn into 18 × 18 points and tinted in one light colour the way
// a template image is tinted by the panel.
namespace BarIcon {

inline constexpr int kSize = 18;

QIcon builtIn();

// Nothing when `imagePath` does not hold a loadable image.
std::optional<QIcon> fromFile(const QString& imagePath);

}  // namespace BarIcon
