// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QPushButton>

// The main action of a slide: a rounded button filled with the accent
// colour, its label white.
class PrimaryButton : public QPushButton {
    Q_OBJECT

public:
    explicit PrimaryButton(const QString& text, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};
