// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QAbstractButton>
#include <QColor>
#include <QString>
#include <functional>

// One action of the capture HUD: its symbol on a tinted square, its label,
// and the hotkey that does the same, over the full width of the HUD. The
// row is lightly filled while the pointer is over it.
class HUDRow : public QAbstractButton {
    Q_OBJECT

public:
    static constexpr int kHeight = 34;

    HUDRow(const QString& icon, const QString& label, const QString& shortcut, const QColor& tint,
           std::function<void()> action, QWidget* parent = nullptr);

    const QString& label() const { return label_; }
    const QString& shortcut() const { return shortcut_; }
    const QColor& tint() const { return tint_; }
    bool isHovered() const { return hovered_; }

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    QString icon_;
    QString label_;
    QString shortcut_;
    QColor tint_;
    std::function<void()> action_;
    bool hovered_ = false;
};
