// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QWidget>

// A borderless window that floats above other windows without taking part in
// the task bar or window cycling, with a rounded, nearly opaque fill (the
// look of a blurred panel on desktops without blur); without a compositor the
// window is shaped to its rounded outline. Base of the popover and the pill.
class FloatingPanel : public QWidget {
    Q_OBJECT

public:
    enum class Focus { accepts, refuses };

    FloatingPanel(const QString& accessibleName, int cornerRadius, Focus focus,
                  QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    int cornerRadius_;
};
