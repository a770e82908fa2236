// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include "gallery/footer_pill_view.h"
#include "widgets/floating_panel.h"

class QVariantAnimation;

// The 320 × 44 pill with fully rounded ends shown under the open gallery
// popover, holding the footer buttons. It never takes keyboard focus, fades
// in when shown, and is the drop target of the trash: a capture dragged out
// of the gallery and dropped anywhere on it goes to the trash. It never takes
// the keyboard when shown or clicked: only Tab from the end of the gallery
// (or Shift+Tab from its start) moves into its buttons, and Tab past them
// leads back into the gallery. Escape there closes the popover.
class PillPanel : public FloatingPanel {
    Q_OBJECT

public:
    PillPanel(ScreenshotStore& library, SoundPlayer& sounds, FooterPillView::Actions actions,
              QWidget* parent = nullptr);

    FooterPillView* content() const { return content_; }

    // Shows the panel transparent, then fades it in after a short pause.
    void showFadingIn();

    // The pill on screen, if any.
    static PillPanel* shown();
    // Takes the keyboard focus from the gallery: onto its first button, or
    // onto its last when walking backwards.
    void takeFocus(bool first);

protected:
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    std::function<void()> closePopover_;
    FooterPillView* content_;
    QVariantAnimation* fade_;
};
