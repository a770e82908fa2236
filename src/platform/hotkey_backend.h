// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QObject>
#include <QtGlobal>

// System-wide key combinations. Key codes are the stored position codes of a
// HotkeyBinding and modifiers its stored mask (Super 0x100, Shift 0x200,
// Alt 0x800, Ctrl 0x1000); each back end translates them to its own terms.
class HotkeyBackend : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    // Grabs key+modifiers system-wide under `id`. 0 on success, otherwise a non-zero status
    // (the X error code: 10 = BadAccess when another client holds the combination).
    virtual int grab(quint32 id, quint32 keyCode, quint32 modifiers) = 0;
    // Releases what was grabbed under `id`; nothing when it holds nothing.
    virtual void ungrab(quint32 id) = 0;
    virtual void ungrabAll() = 0;

Q_SIGNALS:
    void pressed(quint32 id);  // emitted on the GUI thread
};
