// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QList>
#include <QString>

#include "onboarding/slide_container.h"

// The "Shortcuts" slide: the default combinations of the main actions, one
// row each (what it does on the left, its keys on the right). The list is
// fixed; the user's own bindings are in the settings.
class ShortcutsSlide : public SlideContainer {
    Q_OBJECT

public:
    struct Row {
        QString action;
        QString keys;
    };

    static QList<Row> rows();

    explicit ShortcutsSlide(QWidget* parent = nullptr);
};
