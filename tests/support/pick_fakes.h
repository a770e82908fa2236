// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QApplication>
#include <algorithm>
#include <vector>

#include "platform/pointer_picker.h"
#include "platform/window_list.h"
#include "widgets/window_outline.h"

// Stand-ins for pointing at windows in tests and benchmarks.

// The pointer as a test moves it: no grab; the test emits moved(),
// clicked() and escapePressed() itself.
class FakePointerPicker : public PointerPicker {
public:
    void start() override { active_ = true; }
    void stop() override { active_ = false; }
    bool isActive() const override { return active_; }

private:
    bool active_ = false;
};

// A desktop holding one window of another program.
class OneWindow : public WindowList {
public:
    std::vector<WindowInfo> windows() override { return {window}; }
    WindowInfo window;
};

// A real window list, counting how often it is asked: the cost of a
// pointer move.
class CountingWindowList : public WindowList {
public:
    explicit CountingWindowList(WindowList& list) : list_(list) {}
    std::vector<WindowInfo> windows() override {
        ++lookUps;
        return list_.windows();
    }
    int lookUps = 0;

private:
    WindowList& list_;
};

// Whether a window outline of ours is on screen.
inline bool outlineShown() {
    const QWidgetList widgets = QApplication::topLevelWidgets();
    return std::any_of(widgets.begin(), widgets.end(), [](QWidget* widget) {
        return qobject_cast<WindowOutline*>(widget) != nullptr && widget->isVisible();
    });
}
