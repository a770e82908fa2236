// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QListView>

class ScreenshotThumbnail;

// The gallery's grid: three equal columns of cells (aspect 1.6) with 8
// pixels between columns and rows, 14 pixels of padding left and right and
// 12 top and bottom. It scrolls with the wheel but shows no scroll bars,
// lays out only what it shows, and lets a cell be dragged out as its file.
// Clicks, hover and menus belong to the cell delegate (ScreenshotThumbnail);
// the view sizes the delegate's cells from its own width.
//
// From the keyboard (Tab reaches it), the arrows move between cells, Return
// opens the focused cell, the Menu key and Shift+F10 open its menu and
// Delete moves it to the trash. A screen reader's action on a cell (Qt's
// accessible cells toggle their selection) opens it as well: a selection
// that neither the pointer, the keyboard nor a change of the rows made
// counts as that action. The grid keeps no lasting selection, so the action
// always selects.
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

    void setModel(QAbstractItemModel* model) override;

    // The size of one cell for a view `viewWidth` pixels wide.
    static QSize cellSizeForWidth(int viewWidth);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void selectionChanged(const QItemSelection& selected,
                          const QItemSelection& deselected) override;
    QItemSelectionModel::SelectionFlags selectionCommand(
        const QModelIndex& index, const QEvent* event = nullptr) const override;

private:
    void updateCellSize();
    // After the rows changed (a cell went to the trash), the focus stays on
    // the cell that took the old one's place.
    void keepCurrentRow();
    void clearSelectionQuietly();

    ScreenshotThumbnail* delegate_ = nullptr;
    QList<QMetaObject::Connection> modelConnections_;
    // Above zero while the view handles the pointer or the keyboard, or
    // while its rows change.
    int handlingInput_ = 0;
    int lastCurrentRow_ = -1;
};
