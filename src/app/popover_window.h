// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include "widgets/floating_panel.h"

// The 320 × 420 window under the tray icon that hosts the gallery.
class PopoverWindow : public FloatingPanel {
    Q_OBJECT

public:
    explicit PopoverWindow(QWidget* parent = nullptr);

    // Replaces the hosted view (the popover owns it).
    void setContent(QWidget* content);

Q_SIGNALS:
    // The popover left the screen, whoever closed it.
    void closed();

protected:
    void hideEvent(QHideEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};
