#pragma once

#include "app/floating_panel.h"

class QVariantAnimation;

// The 320 × 44 pill with fully rounded ends shown under the open gallery
// popover. It never takes keyboard focus, and fades in when shown.
class PillPanel : public FloatingPanel {
    Q_OBJECT

public:
    explicit PillPanel(QWidget* parent = nullptr);

    // Shows the panel transparent, then fades it in after a short pause.
    void showFadingIn();

private:
    QVariantAnimation* fade_;
};
