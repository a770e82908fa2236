#pragma once

#include <QListView>

class ScreenshotThumbnail;

// The gallery's grid: three equal columns of cells (aspect 1.6) with 8
// pixels between columns and rows, 14 pixels of padding left and right and
// 12 top and bottom. It scrolls with the wheel but shows no scroll bars,
// lays out only what it shows, and lets a cell be dragged out as its file.
// Clicks, hover and menus belong to the cell delegate (ScreenshotThumbnail);
// the view sizes the delegate's cells from its own width.
class GalleryGridView : public QListView {
    Q_OBJECT

public:
    static constexpr int kColumns = 3;
    static constexpr int kGap = 8;
    static constexpr int kPaddingX = 14;
    static constexpr int kPaddingY = 12;
    static constexpr qreal kCellAspect = 1.6;

    explicit GalleryGridView(QWidget* parent = nullptr);

    // Makes `delegate` draw the cells (it attaches itself) and sizes them.
    void setThumbnailDelegate(ScreenshotThumbnail* delegate);
    ScreenshotThumbnail* thumbnailDelegate() const { return delegate_; }

    // The size of one cell for a view `viewWidth` pixels wide.
    static QSize cellSizeForWidth(int viewWidth);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void updateCellSize();

    ScreenshotThumbnail* delegate_ = nullptr;
};
