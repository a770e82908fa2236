// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QObject>
#include <QWidget>

// Counts the paints of a widget.
class PaintWatch : public QObject {
public:
    // Watches `widget`; with none, install it as a filter where it should watch.
    explicit PaintWatch(QWidget* widget) : QObject(widget) {
        if (widget != nullptr) {
            widget->installEventFilter(this);
        }
    }

    int paints = 0;

protected:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        if (event->type() == QEvent::Paint) {
            ++paints;
        }
        return false;
    }
};

// Runs the event loop until `done` or `timeoutMs`; whether `done` came.
template <typename Done>
bool spinUntil(Done done, int timeoutMs) {
    QElapsedTimer timer;
    timer.start();
    while (!done()) {
        if (timer.elapsed() > timeoutMs) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    }
    return true;
}
