// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QAbstractButton>

// The gallery header's 26-pixel button that opens and closes the filter
// panel, on a rounded rectangle (radius 7). Open: an "xmark" in the primary
// colour on primary at 10 %. Closed with a filter in use: the filter symbol
// in the accent colour on accent at 12 %. Closed otherwise: the filter
// symbol in the secondary colour, no fill.
class FilterToggleButton : public QAbstractButton {
    Q_OBJECT

public:
    explicit FilterToggleButton(QWidget* parent = nullptr);

    void setLook(bool panelOpen, bool filtersActive);
    bool panelOpen() const { return panelOpen_; }
    bool filtersActive() const { return filtersActive_; }
    // The symbol currently drawn.
    QString symbol() const;

    QSize sizeHint() const override { return {26, 26}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool panelOpen_ = false;
    bool filtersActive_ = false;
};
