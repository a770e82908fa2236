#include "ui/gallery/gallery_grid_view.h"

#include <QResizeEvent>
#include <QScrollBar>
#include <algorithm>
#include <cmath>

#include "ui/gallery/screenshot_thumbnail.h"

namespace {

// QListView puts its spacing before the first item of a row and column as
// well as between items; the viewport margins make up the rest of the
// padding. A row wraps once its last item and the spacing after it reach
// the viewport's last pixel column, hence one pixel less on the right.
constexpr int kMarginX = GalleryGridView::kPaddingX - GalleryGridView::kGap;
constexpr int kMarginY = GalleryGridView::kPaddingY - GalleryGridView::kGap;

}  // namespace

GalleryGridView::GalleryGridView(QWidget* parent) : QListView(parent) {
    setAccessibleName(QStringLiteral("Screenshots"));
    setViewMode(QListView::IconMode);
    setFlow(QListView::LeftToRight);
    setWrapping(true);
    setMovement(QListView::Static);
    setResizeMode(QListView::Adjust);
    setLayoutMode(QListView::SinglePass);
    setUniformItemSizes(true);
    setSpacing(kGap);
    setViewportMargins(kMarginX, kMarginY, kMarginX - 1, kMarginY);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    verticalScrollBar()->setSingleStep(24);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setSelectionRectVisible(false);
    setDragEnabled(true);
    setDragDropMode(QAbstractItemView::DragOnly);
    setDefaultDropAction(Qt::CopyAction);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    // The search field keeps the keyboard; the grid is for the pointer.
    setFocusPolicy(Qt::NoFocus);
    setMouseTracking(true);
    // The popover paints the background; the grid stays see-through.
    setAutoFillBackground(false);
    viewport()->setAutoFillBackground(false);
    setAttribute(Qt::WA_TranslucentBackground);
    viewport()->setAttribute(Qt::WA_TranslucentBackground);
    setStyleSheet(QStringLiteral("QListView { background: transparent; }"));
}

void GalleryGridView::setThumbnailDelegate(ScreenshotThumbnail* delegate) {
    delegate_ = delegate;
    if (delegate_ != nullptr) {
        delegate_->attach(this);
        updateCellSize();
    }
}

QSize GalleryGridView::cellSizeForWidth(int viewWidth) {
    const int inner = viewWidth - 2 * kPaddingX - (kColumns - 1) * kGap;
    const int width = std::max(1, inner / kColumns);
    return {width, std::max(1, static_cast<int>(std::lround(width / kCellAspect)))};
}

void GalleryGridView::resizeEvent(QResizeEvent* event) {
    QListView::resizeEvent(event);
    if (event->size().width() != event->oldSize().width()) {
        updateCellSize();
    }
}

void GalleryGridView::updateCellSize() {
    if (delegate_ == nullptr) {
        return;
    }
    const QSize size = cellSizeForWidth(width());
    if (size == delegate_->cellSize()) {
        return;
    }
    delegate_->setCellSize(size);
    // Uniform sizes are cached by the view; a new layout asks again.
    scheduleDelayedItemsLayout();
}
