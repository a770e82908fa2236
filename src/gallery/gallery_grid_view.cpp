// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "gallery/gallery_grid_view.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QResizeEvent>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QTimer>
#include <algorithm>
#include <cmath>

#include "gallery/screenshot_list_model.h"
#include "gallery/screenshot_thumbnail.h"
#include "gallery/thumbnail_actions.h"

namespace {

// QListView puts its spacing before the first item of a row and column as
// well as between items; the viewport margins make up the rest of the
// padding. A row wraps once its last item and the spacing after it reach
// the viewport's last pixel column, hence one pixel less on the right.
constexpr int kMarginX = GalleryGridView::kPaddingX - GalleryGridView::kGap;
constexpr int kMarginY = GalleryGridView::kPaddingY - GalleryGridView::kGap;

// Counts the view as handling input for as long as it lives.
class InputScope {
public:
    explicit InputScope(int& depth) : depth_(depth) { ++depth_; }
    ~InputScope() { --depth_; }
    InputScope(const InputScope&) = delete;
    InputScope& operator=(const InputScope&) = delete;

private:
    int& depth_;
};

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
    // Tab reaches the cells; a click does not take the keyboard from the
    // search field.
    setFocusPolicy(Qt::TabFocus);
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

void GalleryGridView::setModel(QAbstractItemModel* model) {
    for (const QMetaObject::Connection& connection : std::as_const(modelConnections_)) {
        disconnect(connection);
    }
    modelConnections_.clear();
    QListView::setModel(model);
    if (model != nullptr) {
        // The selection follows the rows while they change: that is no
        // assistive action either. (The selection model, connected first,
        // announces its changes before the "changed" signals reach here.)
        const auto rowsChanging = [this] { ++handlingInput_; };
        const auto rowsChanged = [this] {
            --handlingInput_;
            keepCurrentRow();
        };
        modelConnections_ = {
            connect(model, &QAbstractItemModel::modelAboutToBeReset, this, rowsChanging),
            connect(model, &QAbstractItemModel::modelReset, this, rowsChanged),
            connect(model, &QAbstractItemModel::rowsAboutToBeRemoved, this, rowsChanging),
            connect(model, &QAbstractItemModel::rowsRemoved, this, rowsChanged),
            connect(model, &QAbstractItemModel::rowsAboutToBeInserted, this, rowsChanging),
            connect(model, &QAbstractItemModel::rowsInserted, this, rowsChanged),
            connect(model, &QAbstractItemModel::layoutAboutToBeChanged, this, rowsChanging),
            connect(model, &QAbstractItemModel::layoutChanged, this, rowsChanged)};
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

void GalleryGridView::keyPressEvent(QKeyEvent* event) {
    const InputScope scope(handlingInput_);
    const QModelIndex current = currentIndex();
    const Qt::KeyboardModifiers modifiers =
        event->modifiers() &
        (Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    if (delegate_ != nullptr && current.isValid()) {
        const bool plain = modifiers == Qt::NoModifier || modifiers == Qt::KeypadModifier;
        if (plain && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)) {
            delegate_->activate(current);
            event->accept();
            return;
        }
        if (plain && event->key() == Qt::Key_Delete) {
            const QVariant data = current.data(ScreenshotListModel::ItemRole);
            if (data.canConvert<ScreenshotItem>()) {
                delegate_->actions().moveToTrash(data.value<ScreenshotItem>());
            }
            event->accept();
            return;
        }
        if (modifiers == Qt::ShiftModifier && event->key() == Qt::Key_F10) {
            // The Menu key arrives as a context-menu event of its own.
            delegate_->openMenu(current, viewport()->mapToGlobal(visualRect(current).center()));
            event->accept();
            return;
        }
    }
    QListView::keyPressEvent(event);
}

void GalleryGridView::mousePressEvent(QMouseEvent* event) {
    const InputScope scope(handlingInput_);
    QListView::mousePressEvent(event);
    if (event->button() != Qt::LeftButton) {
        // No drag follows; the release goes to the context menu.
        clearSelectionQuietly();
    }
}

void GalleryGridView::mouseMoveEvent(QMouseEvent* event) {
    // A drag out of the grid runs inside this call and takes the release.
    const InputScope scope(handlingInput_);
    QListView::mouseMoveEvent(event);
    if (QGuiApplication::mouseButtons() == Qt::NoButton) {
        clearSelectionQuietly();
    }
}

void GalleryGridView::mouseReleaseEvent(QMouseEvent* event) {
    const InputScope scope(handlingInput_);
    QListView::mouseReleaseEvent(event);
    // The press selected the cell for a possible drag; that is over now.
    clearSelectionQuietly();
}

void GalleryGridView::focusInEvent(QFocusEvent* event) {
    QListView::focusInEvent(event);
    if (!currentIndex().isValid() && model() != nullptr && model()->rowCount(rootIndex()) > 0) {
        selectionModel()->setCurrentIndex(model()->index(0, 0, rootIndex()),
                                          QItemSelectionModel::NoUpdate);
    }
}

void GalleryGridView::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QListView::currentChanged(current, previous);
    if (current.isValid()) {
        lastCurrentRow_ = current.row();
    }
}

void GalleryGridView::selectionChanged(const QItemSelection& selected,
                                       const QItemSelection& deselected) {
    QListView::selectionChanged(selected, deselected);
    if (handlingInput_ > 0 || selected.isEmpty() || delegate_ == nullptr) {
        return;
    }
    // Neither the pointer nor the keyboard: an assistive tool's action.
    const QPersistentModelIndex cell = selected.indexes().constFirst();
    QTimer::singleShot(0, this, [this, cell] {
        clearSelectionQuietly();
        if (cell.isValid() && delegate_ != nullptr) {
            selectionModel()->setCurrentIndex(cell, QItemSelectionModel::NoUpdate);
            delegate_->activate(cell);
        }
    });
}

QItemSelectionModel::SelectionFlags GalleryGridView::selectionCommand(const QModelIndex& index,
                                                                      const QEvent* event) const {
    // Only the pointer selects, for a drag. Moving with the keys, or the
    // view moving its current cell when rows go, moves the focus alone.
    if (event == nullptr || event->type() == QEvent::KeyPress) {
        return QItemSelectionModel::NoUpdate;
    }
    return QListView::selectionCommand(index, event);
}

void GalleryGridView::keepCurrentRow() {
    // Deferred: a proxy above the list may still be settling its rows.
    QTimer::singleShot(0, this, [this] {
        if (currentIndex().isValid() || lastCurrentRow_ < 0 || model() == nullptr) {
            return;
        }
        const int rows = model()->rowCount(rootIndex());
        if (rows == 0) {
            return;
        }
        selectionModel()->setCurrentIndex(
            model()->index(std::min(lastCurrentRow_, rows - 1), 0, rootIndex()),
            QItemSelectionModel::NoUpdate);
    });
}

void GalleryGridView::clearSelectionQuietly() {
    if (selectionModel() == nullptr || !selectionModel()->hasSelection()) {
        return;
    }
    const InputScope scope(handlingInput_);
    selectionModel()->clearSelection();
}
