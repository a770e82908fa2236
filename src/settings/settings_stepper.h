// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QWidget>
#include <functional>

class QLabel;
class QToolButton;

// A whole number inside [minimum, maximum] on the grid minimum + k·step.
struct StepperRange {
    int minimum;
    int maximum;
    int step;

    // One step up or down from `value`: the nearest grid value beyond it,
    // held inside the range (the maximum counts even off the grid), so a
    // value off the grid moves onto it at the first step.
    int stepped(int value, bool up) const;
};

// A label that shows the value ("Keep up to 200 screenshots") beside two
// buttons that step it down and up.
class SettingsStepper : public QWidget {
    Q_OBJECT

public:
    using LabelText = std::function<QString(int value)>;

    // `unit` names what is counted ("screenshots"): the buttons are called
    // "Fewer screenshots" and "More screenshots".
    SettingsStepper(StepperRange range, const QString& unit, LabelText labelText,
                    QWidget* parent = nullptr);

    int value() const { return value_; }
    // Shows `value` as it is, even off the grid.
    void setValue(int value);
    void stepUp();
    void stepDown();

    QToolButton* downButton() const { return down_; }
    QToolButton* upButton() const { return up_; }

Q_SIGNALS:
    // A step changed the value (not setValue()).
    void stepped(int value);

private:
    void step(bool up);
    void showValue();

    StepperRange range_;
    LabelText labelText_;
    int value_ = 0;
    QLabel* label_ = nullptr;
    QToolButton* down_ = nullptr;
    QToolButton* up_ = nullptr;
};
