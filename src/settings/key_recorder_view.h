// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QWidget>

#include "storage/hotkey_binding.h"

class HotkeyRecorderButton;
class KeyCaptureView;
class KeyboardLayout;
class QToolButton;

// The editing end of a hotkey row: the recorder button with the binding, the
// trash button that puts the default back, and the capture view that reads
// keys while the row records. It only reports what the user did; the section
// decides which row records and writes the settings.
class KeyRecorderView : public QWidget {
    Q_OBJECT

public:
    KeyRecorderView(const QString& rowLabel, const HotkeyBinding& binding,
                    const KeyboardLayout& layout, QWidget* parent = nullptr);

    void setBinding(const HotkeyBinding& binding);
    // Shows the prompt and hands the keyboard focus to the capture view, or
    // shows the binding again and gives the focus back to the recorder button.
    void setRecording(bool recording);
    bool isRecording() const;

    HotkeyRecorderButton* recorderButton() const { return recorder_; }
    QToolButton* trashButton() const { return trash_; }
    KeyCaptureView* captureView() const { return capture_; }

Q_SIGNALS:
    void recordRequested();
    void resetRequested();
    void captured(const HotkeyBinding& binding);
    void cancelled();

private:
    HotkeyRecorderButton* recorder_ = nullptr;
    QToolButton* trash_ = nullptr;
    KeyCaptureView* capture_ = nullptr;
};
