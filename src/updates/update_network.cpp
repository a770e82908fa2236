// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "updates/update_network.h"

#include <QNetworkReply>
#include <QSslCertificate>
#include <QSslConfiguration>

#include "storage/preferences.h"

QUrl UpdateNetwork::appcastURL(const Preferences& preferences) {
    const QString configured = preferences.appcastURL();
    return QUrl(configured.isEmpty() ? QStringLiteral(QUILLIX_APPCAST_URL) : configured);
}

QNetworkRequest UpdateNetwork::request(const QUrl& url, const Preferences& preferences) {
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute,
                         QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    request.setTransferTimeout(kTimeoutMs);
    const QString caFile = preferences.updateCAFile();
    if (!caFile.isEmpty()) {
        QSslConfiguration ssl = QSslConfiguration::defaultConfiguration();
        ssl.addCaCertificates(QSslCertificate::fromPath(caFile, QSsl::Pem));
        request.setSslConfiguration(ssl);
    }
    return request;
}

QString UpdateNetwork::errorText(const QNetworkReply& reply) {
    return reply.error() == QNetworkReply::OperationCanceledError
               ? QStringLiteral("The request timed out.")
               : reply.errorString();
}
