// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QString>
#include <QWidget>
#include <array>
#include <optional>

#include "library/capture_actions.h"
#include "library/screenshot_item.h"
#include "storage/color_label.h"
#include "storage/screenshot_metadata.h"

class QAbstractButton;
class QLabel;
class QLineEdit;
class QToolButton;
class QWidget;
class ScreenshotMetadataStore;
class ScreenshotStore;

// The information panel of the preview window, 220 wide: the capture's date,
// file name and size, its name with an inline rename editor, its event with
// an inline editor, and the six colour-label swatches. Label and event
// changes go to the metadata store; a rename has the library move the file
// (the library then rescans and announces the move, which the preview
// follows). The panel follows the store whenever its metadata changes.
class PreviewSidebar : public QWidget {
    Q_OBJECT

public:
    static constexpr int kWidth = 220;
    static constexpr int kSwatchDiameter = 22;

    PreviewSidebar(const ScreenshotItem& item, ScreenshotMetadataStore& metaStore,
                   ScreenshotStore& library, QWidget* parent = nullptr);

    // "245 KB", "1.2 MB": a byte count in kilobytes below a megabyte and in
    // megabytes from there on, 1000-based as file sizes are shown.
    static QString fileSizeText(qint64 bytes);

    // The file as it is now (a rename changes it).
    QString currentPath() const { return currentPath_; }
    // Shows the file under its new path after it was moved (by this panel
    // or elsewhere).
    void followRename(const QString& newPath);
    QString currentName() const { return currentName_; }
    // The record of the current file (empty when it has none).
    ScreenshotMetadata metadata() const;

    bool isEditingName() const { return editingName_; }
    bool isEditingEvent() const { return editingEvent_; }
    std::optional<QString> renameError() const { return renameError_; }

    // The controls a user sees, for assistive tools and tests.
    QLabel* dateLabel() const { return dateLabel_; }
    QLabel* timeLabel() const { return timeLabel_; }
    QLabel* fileNameLabel() const { return fileNameLabel_; }
    QLabel* fileSizeLabel() const { return fileSizeLabel_; }
    QLabel* nameLabel() const { return nameLabel_; }
    QToolButton* renameButton() const { return renameButton_; }
    QLineEdit* nameField() const { return nameField_; }
    QToolButton* nameConfirmButton() const { return nameConfirm_; }
    QToolButton* nameCancelButton() const { return nameCancel_; }
    QLabel* renameErrorLabel() const { return renameErrorLabel_; }
    QLabel* eventTitleLabel() const { return eventTitleLabel_; }
    QToolButton* editEventButton() const { return editEventButton_; }
    QToolButton* removeEventButton() const { return removeEventButton_; }
    QToolButton* addEventButton() const { return addEventButton_; }
    QLineEdit* eventField() const { return eventField_; }
    QToolButton* eventConfirmButton() const { return eventConfirm_; }
    QToolButton* eventCancelButton() const { return eventCancel_; }
    QAbstractButton* swatch(ColorLabel label) const;
    QAbstractButton* clearColorButton() const { return clearColor_; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void build();
    void refresh();
    void refreshSymbols();
    void openNameEditor();
    void confirmName();
    void closeNameEditor();
    void openEventEditor();
    void confirmEvent();
    void closeEventEditor();
    void tapSwatch(ColorLabel label);

    ScreenshotItem item_;
    CaptureActions actions_;
    QString currentPath_;
    QString currentName_;
    bool editingName_ = false;
    bool editingEvent_ = false;
    bool renaming_ = false;
    std::optional<QString> renameError_;

    QLabel* dateLabel_ = nullptr;
    QLabel* timeLabel_ = nullptr;
    QLabel* fileNameLabel_ = nullptr;
    QLabel* fileSizeLabel_ = nullptr;
    QWidget* nameRow_ = nullptr;
    QLabel* nameLabel_ = nullptr;
    QToolButton* renameButton_ = nullptr;
    QWidget* nameEditor_ = nullptr;
    QLineEdit* nameField_ = nullptr;
    QToolButton* nameConfirm_ = nullptr;
    QToolButton* nameCancel_ = nullptr;
    QLabel* renameErrorLabel_ = nullptr;
    QWidget* eventRow_ = nullptr;
    QLabel* eventTag_ = nullptr;
    QLabel* eventTitleLabel_ = nullptr;
    QToolButton* editEventButton_ = nullptr;
    QToolButton* removeEventButton_ = nullptr;
    QToolButton* addEventButton_ = nullptr;
    QWidget* eventEditor_ = nullptr;
    QLineEdit* eventField_ = nullptr;
    QToolButton* eventConfirm_ = nullptr;
    QToolButton* eventCancel_ = nullptr;
    std::array<QAbstractButton*, 6> swatches_{};
    QAbstractButton* clearColor_ = nullptr;
};
