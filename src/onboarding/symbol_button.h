// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QAbstractButton>
#include <QColor>

// A borderless button of the welcome window showing one symbol (or a short
// word instead) in white at a chosen opacity, optionally on a round fill.
class SymbolButton : public QAbstractButton {
    Q_OBJECT

public:
    SymbolButton(const QString& symbol, int symbolSize, const QString& accessibleName,
                 QWidget* parent = nullptr);

    // Shows `word` instead of the symbol; empty brings the symbol back.
    void setWord(const QString& word);
    QString word() const { return word_; }

    void setSymbolOpacity(qreal opacity);
    qreal symbolOpacity() const { return opacity_; }

    // A disc of `fill` behind the symbol (transparent: none).
    void setCircleFill(const QColor& fill);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString symbol_;
    int symbolSize_;
    QString word_;
    qreal opacity_ = 1.0;
    QColor circleFill_ = Qt::transparent;
};
