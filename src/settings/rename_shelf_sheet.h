// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QDialog>
#include <QUuid>

class QLabel;
class QLineEdit;
class QPushButton;
class ShelfStore;

// The "Rename Shelf" sheet over the settings window: the new name, and the
// store's refusal shown inline until the user cancels or a rename works.
class RenameShelfSheet : public QDialog {
    Q_OBJECT

public:
    RenameShelfSheet(ShelfStore& store, const QUuid& shelfId, const QString& currentName,
                     QWidget* parent);

    QLineEdit* nameField() const { return name_; }
    QLabel* errorLabel() const { return error_; }
    QPushButton* renameButton() const { return rename_; }

    // Renames to the field's text; closes the sheet when the store agrees.
    void rename();

private:
    ShelfStore& store_;
    QUuid shelfId_;
    QLineEdit* name_ = nullptr;
    QLabel* error_ = nullptr;
    QPushButton* rename_ = nullptr;
};
