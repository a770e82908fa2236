// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "library/screenshot_item.h"

#include <QFileInfo>
#include <QTimeZone>

namespace {

// Seconds with their fraction, written without trailing zeros but with at
// least one fractional digit ("1700000000.25", "1700000000.0", "-1.5").
// Integer arithmetic keeps the text exact.
QString secondsSince1970(const QDateTime& time) {
    const qint64 milliseconds = time.toMSecsSinceEpoch();
    const quint64 magnitude =
        milliseconds < 0 ? 0 - static_cast<quint64>(milliseconds) : quint64(milliseconds);
    QString digits = QStringLiteral("%1").arg(magnitude % 1000, 3, 10, QLatin1Char('0'));
    while (digits.size() > 1 && digits.endsWith(QLatin1Char('0'))) {
        digits.chop(1);
    }
    return (milliseconds < 0 ? QStringLiteral("-") : QString()) +
           QString::number(magnitude / 1000) + QLatin1Char('.') + digits;
}

}  // namespace

ScreenshotItem::ScreenshotItem(const QString& path, const QDateTime& date,
                               const QDateTime& modifiedDate, const QImage& thumbnail)
    : path_(path),
      date_(date),
      modifiedDate_(modifiedDate),
      thumbnail_(thumbnail),
      id_(path + QLatin1Char('-') + secondsSince1970(modifiedDate)) {}

QDateTime ScreenshotItem::distantPast() {
    return QDateTime(QDate(1, 1, 1), QTime(0, 0), QTimeZone::utc());
}

QString ScreenshotItem::fileName() const {
    return QFileInfo(path_).fileName();
}

bool ScreenshotItem::isVideoPath(const QString& path) {
    const QString suffix = QFileInfo(path).suffix().toLower();
    return suffix == QLatin1String("mp4") || suffix == QLatin1String("mov");
}

QString ScreenshotItem::relativeAge(const QDateTime& now) const {
    // Whole seconds, truncated toward zero.
    const qint64 seconds = date_.msecsTo(now) / 1000;
    if (seconds < 60) {
        return QStringLiteral("now");
    }
    if (seconds < 3600) {
        return QString::number(seconds / 60) + QLatin1Char('m');
    }
    if (seconds < 86400) {
        return QString::number(seconds / 3600) + QLatin1Char('h');
    }
    return QString::number(seconds / 86400) + QLatin1Char('d');
}
