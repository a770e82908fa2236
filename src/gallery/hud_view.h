// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QList>
#include <QWidget>
#include <functional>

class HUDRow;
class QAbstractButton;

// The capture HUD's content: a "Quillix" header with a close button, and
// the five capture rows, top to bottom: area, window, full screen, record
// window, clipboard history. It comes in scaling up from 94 % while fading
// in.
class HUDView : public QWidget {
    Q_OBJECT

public:
    enum class Row { captureArea, captureWindow, fullScreen, recordWindow, clipboardHistory };

    static constexpr int kAppearMs = 180;
    static constexpr qreal kAppearScale = 0.94;

    // `onChoose` runs when a row is clicked, `onDismiss` when the close
    // button is.
    HUDView(const std::function<void(Row)>& onChoose, std::function<void()> onDismiss,
            QWidget* parent = nullptr);

    // The rows, top to bottom.
    const QList<HUDRow*>& rows() const { return rows_; }
    QAbstractButton* closeButton() const { return closeButton_; }

    // Starts the entrance.
    void appear();
    bool appeared() const { return appeared_; }

private:
    void addRows(const std::function<void(Row)>& onChoose);

    std::function<void()> onDismiss_;
    QList<HUDRow*> rows_;
    QAbstractButton* closeButton_ = nullptr;
    bool appeared_ = false;
};
