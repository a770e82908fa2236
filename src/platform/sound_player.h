// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QObject>
#include <QString>

// Short event sounds ("camera-shutter" after a capture, "trash-empty" after a
// move to the trash), named by the freedesktop sound-naming ids.
class SoundPlayer : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    // Starts the sound and returns at once; a missing sound, theme or sound
    // device is silent.
    virtual void play(const QString& eventId) = 0;
};
