// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QAbstractButton>

class QVariantAnimation;

// A small toggle-like button of the gallery's filter panel on a rounded
// rectangle (radius 6). Selected: accent content on accent at 12 % with an
// accent outline at 30 %. Hovered and not selected: primary content on
// primary at 6 %. Idle: secondary content, no fill. The colours move with
// short ease-out curves. Pressing it emits clicked(); what that does (and
// whether the chip becomes selected) is up to its owner.
class FilterChip : public QAbstractButton {
    Q_OBJECT

public:
    bool isSelected() const { return selected_; }
    void setSelected(bool selected);
    bool isHovered() const { return hovered_; }

protected:
    explicit FilterChip(QWidget* parent);

    // The content colour of the current (animated) state.
    QColor contentColor() const;
    // Draws the chip's background and outline.
    void paintBackground(QPainter& painter) const;

    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    bool selected_ = false;
    bool hovered_ = false;
    qreal hoverProgress_ = 0;
    qreal selectProgress_ = 0;
    QVariantAnimation* hoverAnimation_;
    QVariantAnimation* selectAnimation_;
};

// A chip showing a text label ("All", "Today", "Events"…) in an 11-pixel
// medium font, padded 7 left and right and 4 top and bottom.
class TextFilterChip : public FilterChip {
    Q_OBJECT

public:
    TextFilterChip(const QString& label, QWidget* parent = nullptr);

    QString label() const { return text(); }
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

// A chip showing a symbol at 11 pixels in a frame 28 wide; its accessible
// name is the text it stands for ("All", "Photos", "Videos").
class IconFilterChip : public FilterChip {
    Q_OBJECT

public:
    IconFilterChip(const QString& symbol, const QString& accessibleName, QWidget* parent = nullptr);

    const QString& symbol() const { return symbol_; }
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString symbol_;
};
