// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QIcon>
#include <QImage>
#include <QStringList>
#include <QWidget>
#include <atomic>
#include <memory>
#include <optional>

#include "storage/shelf_item.h"

class QLabel;
class QListWidget;
class QListWidgetItem;
class QMenu;
class QPushButton;
struct ShelfServices;

// One shelf opened: a header (back, the name and folder, changing the
// folder's location) over the shelf's files as tiles. Files dropped anywhere
// on the view are moved into the shelf's folder on a worker; a drop area
// invites them while the shelf is empty or a drag hovers. Listing the folder
// and decoding the tiles' thumbnails happen on workers too.
class ShelfDetailView : public QWidget {
    Q_OBJECT

public:
    static constexpr QSize kTileSize{100, 63};
    static constexpr int kTileSpacing = 6;

    explicit ShelfDetailView(ShelfServices& services, QWidget* parent = nullptr);

    // Shows the shelf and starts reading its folder.
    void setShelf(const ShelfItem& shelf);
    const std::optional<ShelfItem>& shelf() const { return shelf_; }
    // The listed files, in order.
    const QStringList& files() const { return files_; }
    QListWidget* grid() const { return grid_; }
    QPushButton* backButton() const { return back_; }
    QPushButton* locationButton() const { return location_; }
    // The drop area's text when it is shown, else empty.
    QString dropAreaText() const;

    // The tile menu's actions, for one listed file.
    void openPreview(const QString& path);
    void moveToTrash(const QString& path);
    // Moves the shelf's folder into `destination` and remembers it as the
    // parent of the next new shelf, whether or not the move works.
    void changeLocation(const QString& destination);

Q_SIGNALS:
    void backRequested();
    // The folder has been read and listed.
    void filesListed();
    // A dropped file has been moved (or failed to move); `moved` says which.
    void dropFinished(const QString& source, bool moved);
    void trashFinished(const QString& path, bool trashed);
    // A tile's thumbnail has been decoded and shown.
    void thumbnailShown(const QString& path);

protected:
    // Escape goes back to the list, as the back button does.
    void keyPressEvent(QKeyEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* makeHeader();
    QWidget* makeDropArea();
    void showFiles(const QStringList& files);
    void appendTile(const QString& path);
    void loadThumbnails(const QStringList& paths);
    void decodeThumbnails(const QStringList& paths);
    void showThumbnail(const QString& path, const QImage& thumbnail);
    void finishDrop(const QString& source, const QString& destination, int error);
    void removeFile(const QString& path);
    void updateHeader();
    void elidePath();
    void updateDropArea();
    void showTileMenu(const QPoint& position);
    void chooseLocation();
    QListWidgetItem* tileOf(const QString& path) const;
    QIcon placeholderIcon(bool video);

    ShelfServices& services_;
    std::optional<ShelfItem> shelf_;
    QStringList files_;
    // Results of an older listing or decoding are dropped, and its workers
    // stop early: they read the current generation through this counter.
    std::shared_ptr<std::atomic_int> generation_ = std::make_shared<std::atomic_int>(0);
    bool targeted_ = false;
    QPushButton* back_ = nullptr;
    QLabel* name_ = nullptr;
    QLabel* path_ = nullptr;
    QPushButton* location_ = nullptr;
    QWidget* dropArea_ = nullptr;
    QLabel* dropText_ = nullptr;
    QListWidget* grid_ = nullptr;
    QIcon picturePlaceholder_;
    QIcon videoPlaceholder_;
};
