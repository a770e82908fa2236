// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QAbstractButton>
#include <optional>

#include "storage/color_label.h"

class QVariantAnimation;

// One swatch of the gallery's colour row: an 18-pixel circle in a colour
// label's colour, or, without a label, the "No color" ring with a cross.
// A selected label swatch grows to 120 % and shows a white check mark; the
// selected "No color" ring grows to 110 % with a stronger fill, stroke and
// cross. The growth springs (about 0.2 s, a little overshoot).
class ColorSwatch : public QAbstractButton {
    Q_OBJECT

public:
    explicit ColorSwatch(std::optional<ColorLabel> label, QWidget* parent = nullptr);

    const std::optional<ColorLabel>& label() const { return label_; }
    bool isSelected() const { return selected_; }
    void setSelected(bool selected);
    // The circle's current scale (1 when idle).
    qreal scale() const { return scale_; }

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    qreal targetScale() const;

    std::optional<ColorLabel> label_;
    bool selected_ = false;
    qreal scale_ = 1.0;
    QVariantAnimation* scaleAnimation_;
};
