// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "settings/settings_stepper.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>
#include <algorithm>

int StepperRange::stepped(int value, bool up) const {
    if (value < minimum) {
        return minimum;
    }
    if (value > maximum) {
        return maximum;
    }
    const int offset = value - minimum;
    int gridIndex = offset / step;
    if (up) {
        ++gridIndex;
    } else if (offset % step == 0) {
        --gridIndex;
    }
    return std::clamp(minimum + gridIndex * step, minimum, maximum);
}

SettingsStepper::SettingsStepper(StepperRange range, const QString& unit, LabelText labelText,
                                 QWidget* parent)
    : QWidget(parent), range_(range), labelText_(std::move(labelText)) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 6, 0, 6);
    label_ = new QLabel(this);
    down_ = new QToolButton(this);
    up_ = new QToolButton(this);
    down_->setText(QStringLiteral("−"));
    up_->setText(QStringLiteral("+"));
    down_->setAccessibleName(QStringLiteral("Fewer ") + unit);
    up_->setAccessibleName(QStringLiteral("More ") + unit);
    down_->setToolTip(down_->accessibleName());
    up_->setToolTip(up_->accessibleName());
    for (QToolButton* button : {down_, up_}) {
        button->setFixedSize(24, 22);
        button->setAutoRaise(false);
        button->setFocusPolicy(Qt::StrongFocus);
    }
    layout->addWidget(label_, 1);
    layout->addWidget(down_);
    layout->addWidget(up_);
    layout->setSpacing(2);
    connect(down_, &QToolButton::clicked, this, &SettingsStepper::stepDown);
    connect(up_, &QToolButton::clicked, this, &SettingsStepper::stepUp);
    showValue();
}

void SettingsStepper::setValue(int value) {
    value_ = value;
    showValue();
}

void SettingsStepper::stepUp() {
    step(true);
}

void SettingsStepper::stepDown() {
    step(false);
}

void SettingsStepper::step(bool up) {
    const int next = range_.stepped(value_, up);
    if (next == value_) {
        return;
    }
    value_ = next;
    showValue();
    Q_EMIT stepped(value_);
}

void SettingsStepper::showValue() {
    const QString text = labelText_(value_);
    label_->setText(text);
    setAccessibleName(text);
    down_->setEnabled(value_ > range_.minimum);
    up_->setEnabled(value_ < range_.maximum);
}
