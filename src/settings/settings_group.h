// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QFrame>
#include <QString>

class QLabel;
class QVBoxLayout;

// One titled group of a settings section: the title above a rounded box
// whose rows are divided by thin lines.
class SettingsGroup : public QWidget {
    Q_OBJECT

public:
    explicit SettingsGroup(const QString& title, QWidget* parent = nullptr);

    void setTitle(const QString& title);
    QString title() const;

    // Appends `row` (reparented into the box) below a divider.
    void addRow(QWidget* row);
    // A row of `label` on the left and `trailing` (may be null) on the right.
    QWidget* addLabelledRow(const QString& label, QWidget* trailing);

private:
    QLabel* title_ = nullptr;
    QFrame* box_ = nullptr;
    QVBoxLayout* rows_ = nullptr;
};
