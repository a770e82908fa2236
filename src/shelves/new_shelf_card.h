// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QFrame>

class QLineEdit;

// The card in which a new shelf is named: a folder symbol and a name field.
// Return commits the name as typed, Escape cancels; what happens then is the
// list's business.
class NewShelfCard : public QFrame {
    Q_OBJECT

public:
    explicit NewShelfCard(QWidget* parent = nullptr);

    QLineEdit* nameField() const { return field_; }
    QString name() const;
    // Empties the field, ready for the next shelf.
    void clear();

Q_SIGNALS:
    void committed(const QString& name);
    void cancelled();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QLineEdit* field_ = nullptr;
};
