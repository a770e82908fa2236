// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QString>

// Version texts compare position by position: a maximal run of decimal digits
// against another compares by numeric value (of any length), every other
// character by its code, and a text that is a prefix of the other is the
// smaller. So 1.10 > 1.9, 2.0 > 1.99 and 1.2.0 > 1.2.

// Negative, zero or positive as `a` is older than, the same as or newer than `b`.
int compareVersions(const QString& a, const QString& b);

// Whether `candidate` is strictly newer than `running`.
bool isNewerVersion(const QString& candidate, const QString& running);
