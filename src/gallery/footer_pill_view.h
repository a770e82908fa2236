// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QPointer>
#include <QWidget>
#include <functional>
#include <optional>

#include "library/screenshot_item.h"

class QMimeData;
class QPushButton;
class QVariantAnimation;
class ScreenshotStore;
class SoundPlayer;
class TrashTargetIcon;

// The content of the pill under the open gallery: "Settings", the trash icon,
// the shelves button and "Quit". The trash icon is no button: it reacts to
// captures dragged out of the gallery and dropped on the pill (the pill
// window is the drop target and drives it through the three trash hooks).
// GUI thread only.
class FooterPillView : public QWidget {
    Q_OBJECT

public:
    // What the buttons open; empty ones only close the popover.
    struct Actions {
        std::function<void()> showSettings;
        std::function<void()> showShelves;
        std::function<void()> quit;
        // Gets the popover and this pill out of the way before a window opens.
        std::function<void()> closePopover;
    };

    FooterPillView(ScreenshotStore& library, SoundPlayer& sounds, Actions actions,
                   QWidget* parent = nullptr);

    bool trashHovering() const { return trashHovering_; }
    bool trashSucking() const { return trashSucking_; }

    QPushButton* settingsButton() const { return settings_; }
    QPushButton* shelvesButton() const { return shelves_; }
    QPushButton* quitButton() const { return quit_; }
    // The buttons in Tab order: "Settings", shelves, "Quit".
    QList<QPushButton*> buttons() const { return {settings_, shelves_, quit_}; }
    QWidget* trashIcon() const;

    // The trash hooks.
    void trashHoverOn();
    void trashHoverOff();
    void trashDrop();

    // The file a drag carries (its first file URL), if any.
    static std::optional<QString> draggedFile(const QMimeData* mime);
    // Whether a drag is worth reacting to: it carries a file.
    static bool acceptsDrag(const QMimeData* mime);
    // Drops the dragged file into the trash when the library lists it
    // (swallow, sound, and the move 0.18 s later); false when it does not,
    // and then nothing is deleted.
    bool performDrop(const QMimeData* mime);

private:
    QPushButton* makeTextButton(const QString& label);
    void deleteWithSwallowing(const ScreenshotItem& item);

    ScreenshotStore& library_;
    SoundPlayer& sounds_;
    Actions actions_;
    QPushButton* settings_ = nullptr;
    QPushButton* shelves_ = nullptr;
    QPushButton* quit_ = nullptr;
    TrashTargetIcon* trash_ = nullptr;
    bool trashHovering_ = false;
    bool trashSucking_ = false;
};
