// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "updates/version_compare.h"

#include <QStringView>

namespace {

bool isDigit(QChar c) {
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

// The digit run of `text` starting at `pos`, advancing `pos` past it.
QStringView digitRun(const QString& text, qsizetype& pos) {
    const qsizetype start = pos;
    while (pos < text.size() && isDigit(text[pos])) {
        ++pos;
    }
    return QStringView(text).mid(start, pos - start);
}

// Runs are compared as numbers without converting them, so a run longer than
// any integer type cannot overflow: without leading zeros the longer run is
// the larger, and equally long runs compare digit by digit.
int compareNumbers(QStringView a, QStringView b) {
    while (a.size() > 1 && a.front() == QLatin1Char('0')) {
        a = a.mid(1);
    }
    while (b.size() > 1 && b.front() == QLatin1Char('0')) {
        b = b.mid(1);
    }
    if (a.size() != b.size()) {
        return a.size() < b.size() ? -1 : 1;
    }
    return a.compare(b);
}

}  // namespace

int compareVersions(const QString& a, const QString& b) {
    qsizetype i = 0;
    qsizetype j = 0;
    while (i < a.size() && j < b.size()) {
        if (isDigit(a[i]) && isDigit(b[j])) {
            const int order = compareNumbers(digitRun(a, i), digitRun(b, j));
            if (order != 0) {
                return order < 0 ? -1 : 1;
            }
            continue;
        }
        if (a[i] != b[j]) {
            return a[i].unicode() < b[j].unicode() ? -1 : 1;
        }
        ++i;
        ++j;
    }
    const bool aLeft = i < a.size();
    const bool bLeft = j < b.size();
    return static_cast<int>(aLeft) - static_cast<int>(bLeft);
}

bool isNewerVersion(const QString& candidate, const QString& running) {
    return compareVersions(candidate, running) > 0;
}
