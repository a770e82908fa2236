#pragma once

#include "app/floating_panel.h"
#include "ui/gallery/footer_pill_view.h"

class QVariantAnimation;

// The 320 × 44 pill with fully rounded ends shown under the open gallery
// popover, holding the footer buttons. It never takes keyboard focus, fades
// in when shown, and is the drop target of the trash: a capture dragged out
// of the gallery and dropped anywhere on it goes to the trash.
class PillPanel : public FloatingPanel {
    Q_OBJECT

public:
    PillPanel(ScreenshotStore& library, SoundPlayer& sounds, FooterPillView::Actions actions,
              QWidget* parent = nullptr);

    FooterPillView* content() const { return content_; }

    // Shows the panel transparent, then fades it in after a short pause.
    void showFadingIn();

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    FooterPillView* content_;
    QVariantAnimation* fade_;
};
