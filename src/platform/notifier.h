// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QObject>
#include <QString>

// Desktop notifications: "Screenshot saved" after a capture, and the click on
// it that opens the capture again. Each desktop has its own implementation.
class Notifier : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    // Whether a notification service is on the bus and answers ("authorised").
    virtual bool isAuthorised() = 0;

    // Posts at once: app name "Quillix", `summary`, `body`; `imagePath` (may be empty) is shown as
    // the notification's image; a "default" action makes a click count. `subject` is what a
    // click reports (the body when empty): a capture's path even when the body explains
    // where the capture went. Never blocks the GUI thread.
    virtual void post(const QString& summary, const QString& body, const QString& imagePath,
                      const QString& subject = {}) = 0;

Q_SIGNALS:
    // isAuthorised() now answers `authorised` (a service came or went).
    void authorisationChanged(bool authorised);
    // The user clicked a notification we posted; `subject` is that notification's subject.
    void activated(const QString& subject);
};
