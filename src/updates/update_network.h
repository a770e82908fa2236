// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QNetworkRequest>
#include <QString>
#include <QUrl>

class Preferences;
class QNetworkReply;

// Requests to the update feed and for its downloads: GET without the local
// cache, 15 s transfer timeout, trusting the system's certificate
// authorities plus those of the PEM file named by "updateCAFile" (a mirror
// behind a company CA, or a test's own server).
namespace UpdateNetwork {

inline constexpr int kTimeoutMs = 15000;

// The feed's address: "appcastURL" from the preferences, else the one this
// build was made with.
QUrl appcastURL(const Preferences& preferences);

QNetworkRequest request(const QUrl& url, const Preferences& preferences);

// What went wrong with a finished reply, in words for an alert. Nothing
// aborts these requests but the transfer timeout, so a cancelled one is
// said to have timed out.
QString errorText(const QNetworkReply& reply);

}  // namespace UpdateNetwork
