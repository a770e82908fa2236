// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QWidget>

#include "storage/hotkey_binding.h"

class QKeyEvent;

// The invisible widget that holds the keyboard focus while a hotkey row is
// recording and turns key presses into a binding. Escape (with or without
// modifiers) cancels; a key with at least one of Super, Shift, Alt or Control
// held is captured by its position on the keyboard; anything else (a bare key,
// a modifier key on its own) is ignored so the user can keep typing.
class KeyCaptureView : public QWidget {
    Q_OBJECT

public:
    explicit KeyCaptureView(QWidget* parent = nullptr);

    // What a key press means to the recorder.
    enum class Outcome { ignore, cancel, capture };
    struct Reading {
        Outcome outcome = Outcome::ignore;
        HotkeyBinding binding;
    };
    static Reading read(const QKeyEvent& event);

Q_SIGNALS:
    void captured(const HotkeyBinding& binding);
    void cancelled();

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};
