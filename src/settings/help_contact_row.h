// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QTimer>
#include <QWidget>

class QToolButton;

// One way to reach us: a label, the value, and a button that copies the
// value to the clipboard and shows a tick for two seconds.
class HelpContactRow : public QWidget {
    Q_OBJECT

public:
    static constexpr int kCopiedMs = 2000;

    HelpContactRow(const QString& label, const QString& value, QWidget* parent = nullptr);

    bool copied() const { return copied_; }
    QToolButton* copyButton() const { return copy_; }
    void copy();

protected:
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void showCopied(bool copied);

    QString value_;
    bool copied_ = false;
    bool hovered_ = false;
    QToolButton* copy_ = nullptr;
    QTimer copiedTimer_;
};
