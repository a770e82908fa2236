// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QObject>
#include <QString>
#include <QtGlobal>

// The current keyboard layout's label for a key, e.g. "Z" for the key left of
// "X" on a German layout. Each windowing system has its own implementation.
class KeyboardLayout : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    // The upper-cased character the key types with no modifier held, or the
    // fixed key name when the layout gives none (Return, Space, F-keys, …).
    virtual QString keyLabel(quint32 keyCode) const = 0;

    // Re-reads the layout (the user may have switched layouts since).
    virtual void refresh() {}

Q_SIGNALS:
    // The user switched layouts, or the layouts themselves changed: labels
    // may read differently now. Emitted on the GUI thread.
    void changed();
};

// Used when no layout service is available: the fixed key names.
class FixedKeyboardLayout : public KeyboardLayout {
public:
    QString keyLabel(quint32 keyCode) const override;
};
