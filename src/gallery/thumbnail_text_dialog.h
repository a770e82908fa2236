// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QDialog>
#include <QString>
#include <optional>

class QLineEdit;
class QPushButton;

// The small modal prompt of a gallery cell's menu: a bold message, an
// explanatory line, one text field (260 × 24) pre-filled and fully selected,
// and an accept button (the default) beside "Cancel". Used for the event
// title and for renaming. The window's title and accessible name are the
// message. GUI thread only.
class ThumbnailTextDialog : public QDialog {
    Q_OBJECT

public:
    struct Texts {
        QString message;              // "Add Event"
        QString informativeText;      // "Add a short label for this screenshot:"
        QString placeholder;          // may be empty
        QString fieldAccessibleName;  // "Event title"
        QString acceptLabel;          // "Save"
    };

    ThumbnailTextDialog(const Texts& texts, const QString& initialText, QWidget* parent = nullptr);

    QLineEdit* field() const { return field_; }
    QPushButton* acceptButton() const { return acceptButton_; }
    QPushButton* cancelButton() const { return cancelButton_; }

    // The field's text with white space and line breaks trimmed from both ends.
    QString trimmedText() const;

    // Brings the prompt to the front and runs it modally; the trimmed text
    // when the accept button was pressed, nothing on "Cancel" or close.
    std::optional<QString> run();

private:
    QLineEdit* field_ = nullptr;
    QPushButton* acceptButton_ = nullptr;
    QPushButton* cancelButton_ = nullptr;
};
