// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "shelves/shelf_detail_view.h"

#include <QCoreApplication>
#include <QDir>
#include <QDragEnterEvent>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QMimeData>
#include <QPainter>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

#include "library/screenshot_item.h"
#include "library/screenshot_store.h"
#include "library/thumbnailer.h"
#include "platform/dbus/file_manager_reveal.h"
#include "shelves/shelf_services.h"
#include "shelves/shelf_tile_delegate.h"
#include "storage/file_move.h"
#include "storage/screenshot_metadata_store.h"
#include "storage/shelf_store.h"
#include "storage/user_settings.h"
#include "widgets/symbol_icon.h"
#include "widgets/widget_style.h"

namespace {

constexpr int kPathRole = Qt::UserRole;
constexpr QSize kHeaderButton(28, 28);

QPushButton* headerButton(const QString& symbol, const QString& name, QWidget* parent) {
    auto* button = new QPushButton(parent);
    button->setAccessibleName(name);
    button->setToolTip(name);
    button->setFixedSize(kHeaderButton);
    button->setIcon(symbolIcon(symbol, widget_style::primary(parent->palette()), QSize(14, 14)));
    button->setStyleSheet(QStringLiteral("QPushButton { border-radius: 7px; }"));
    return button;
}

// The thumbnail scaled to cover the whole tile and cropped to it: the costly
// part of a tile, done on the worker that decoded it.
QImage croppedToTile(const QImage& thumbnail, qreal dpr) {
    if (thumbnail.isNull()) {
        return {};
    }
    const QSize pixels = ShelfDetailView::kTileSize * dpr;
    const QImage scaled =
        thumbnail.scaled(pixels, Qt::KeepAspectRatioByExpanding, Qt::SmoothTransformation);
    return scaled.copy((scaled.width() - pixels.width()) / 2,
                       (scaled.height() - pixels.height()) / 2, pixels.width(), pixels.height());
}

// A tile's picture: the cropped thumbnail (or the placeholder symbol
// centred), and the play badge on recordings.
QPixmap tilePixmap(const QImage& cropped, bool video, const QPalette& palette, qreal dpr) {
    const QSize size = ShelfDetailView::kTileSize;
    QPixmap tile(size * dpr);
    tile.setDevicePixelRatio(dpr);
    tile.fill(widget_style::withAlpha(widget_style::primary(palette), 0.06));
    QPainter painter(&tile);
    if (cropped.isNull()) {
        const QString symbol = video ? QStringLiteral("video") : QStringLiteral("photo");
        const QPixmap placeholder =
            symbolPixmap(symbol, widget_style::secondary(palette), QSize(22, 22), dpr);
        painter.drawPixmap((size.width() - 22) / 2, (size.height() - 22) / 2, placeholder);
    } else {
        painter.drawImage(QRectF(QPointF(0, 0), QSizeF(size)), cropped);
    }
    if (video) {
        const QRectF badge(size.width() - 22, size.height() - 22, 18, 18);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(0, 0, 0, 140));
        painter.drawEllipse(badge);
        painter.drawPixmap(
            badge.adjusted(5, 4, -3, -4).toRect(),
            symbolPixmap(QStringLiteral("play.fill"), Qt::white, QSize(10, 10), dpr));
    }
    return tile;
}

QStringList droppedLocalFiles(const QMimeData* mime) {
    QStringList files;
    if (mime == nullptr) {
        return files;
    }
    for (const QUrl& url : mime->urls()) {
        if (url.isLocalFile() && !url.toLocalFile().isEmpty()) {
            files.append(QFileInfo(url.toLocalFile()).absoluteFilePath());
        }
    }
    return files;
}

}  // namespace

ShelfDetailView::ShelfDetailView(ShelfServices& services, QWidget* parent)
    : QWidget(parent), services_(services) {
    setAccessibleName(QStringLiteral("Shelf"));
    setAcceptDrops(true);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(makeHeader());
    dropArea_ = makeDropArea();
    layout->addWidget(dropArea_, 1);

    grid_ = new QListWidget(this);
    grid_->setAccessibleName(QStringLiteral("Files"));
    grid_->setViewMode(QListView::IconMode);
    grid_->setResizeMode(QListView::Adjust);
    grid_->setMovement(QListView::Static);
    grid_->setUniformItemSizes(true);
    // Large shelves are laid out a part at a time between events.
    grid_->setLayoutMode(QListView::Batched);
    grid_->setBatchSize(100);
    grid_->setIconSize(kTileSize);
    grid_->setGridSize(kTileSize + QSize(kTileSpacing, kTileSpacing));
    grid_->setFrameShape(QFrame::NoFrame);
    grid_->viewport()->setAutoFillBackground(false);
    grid_->setMouseTracking(true);
    grid_->viewport()->setAttribute(Qt::WA_Hover);
    grid_->setItemDelegate(new ShelfTileDelegate(grid_));
    grid_->setSelectionMode(QAbstractItemView::SingleSelection);
    grid_->setContextMenuPolicy(Qt::CustomContextMenu);
    // Drops go to this view, which moves the files.
    grid_->setDragDropMode(QAbstractItemView::NoDragDrop);
    grid_->setAcceptDrops(false);
    grid_->viewport()->setAcceptDrops(false);
    connect(grid_, &QListWidget::itemClicked, this,
            [this](QListWidgetItem* item) { openPreview(item->data(kPathRole).toString()); });
    connect(grid_, &QListWidget::itemActivated, this,
            [this](QListWidgetItem* item) { openPreview(item->data(kPathRole).toString()); });
    connect(grid_, &QListWidget::customContextMenuRequested, this, &ShelfDetailView::showTileMenu);
    layout->addWidget(grid_, 1);

    connect(&services_.store, &ShelfStore::shelvesChanged, this, &ShelfDetailView::updateHeader);
    updateDropArea();
}

QWidget* ShelfDetailView::makeHeader() {
    auto* header = new QWidget(this);
    header->setAccessibleName(QStringLiteral("Header"));
    auto* layout = new QHBoxLayout(header);
    layout->setContentsMargins(12, 12, 12, 8);
    back_ = headerButton(QStringLiteral("chevron.left"), QStringLiteral("Back"), header);
    connect(back_, &QPushButton::clicked, this, &ShelfDetailView::backRequested);
    auto* titles = new QVBoxLayout;
    titles->setSpacing(1);
    name_ = new QLabel(header);
    name_->setAccessibleName(QStringLiteral("Shelf name"));
    name_->setTextFormat(Qt::PlainText);
    name_->setFont(widget_style::font(font(), 14, QFont::DemiBold));
    path_ = new QLabel(header);
    path_->setAccessibleName(QStringLiteral("Folder"));
    path_->setTextFormat(Qt::PlainText);
    path_->setFont(widget_style::font(font(), 11, QFont::Normal));
    path_->setMinimumWidth(40);
    path_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    path_->installEventFilter(this);
    titles->addWidget(name_);
    titles->addWidget(path_);
    location_ = headerButton(QStringLiteral("folder.badge.gear"),
                             QStringLiteral("Change folder location"), header);
    connect(location_, &QPushButton::clicked, this, &ShelfDetailView::chooseLocation);
    layout->addWidget(back_);
    layout->addLayout(titles, 1);
    layout->addWidget(location_);
    return header;
}

QWidget* ShelfDetailView::makeDropArea() {
    auto* area = new QWidget(this);
    area->setAccessibleName(QStringLiteral("Drop area"));
    auto* layout = new QVBoxLayout(area);
    layout->setAlignment(Qt::AlignCenter);
    auto* symbol = new QLabel(area);
    symbol->setAccessibleName(QStringLiteral("Drop symbol"));
    symbol->setAlignment(Qt::AlignCenter);
    symbol->setPixmap(symbolPixmap(QStringLiteral("arrow.down.to.line"),
                                   widget_style::secondary(palette()), QSize(28, 28),
                                   devicePixelRatioF()));
    dropText_ = new QLabel(area);
    dropText_->setAlignment(Qt::AlignCenter);
    layout->addWidget(symbol);
    layout->addWidget(dropText_);
    return area;
}

// Workers hand their results to the application object, which outlives
// every view; the guarded view pointer is read only there, on the GUI
// thread.
void ShelfDetailView::setShelf(const ShelfItem& shelf) {
    shelf_ = shelf;
    ++*generation_;
    files_.clear();
    grid_->clear();
    updateHeader();
    updateDropArea();
    QPointer<ShelfDetailView> self(this);
    const int generation = *generation_;
    services_.pool.start([self, shelf, generation] {
        const QStringList files = ShelfStore::files(shelf);
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [self, files, generation] {
                if (self && *self->generation_ == generation) {
                    self->showFiles(files);
                }
            },
            Qt::QueuedConnection);
    });
}

QString ShelfDetailView::dropAreaText() const {
    return dropArea_->isVisibleTo(this) ? dropText_->text() : QString();
}

void ShelfDetailView::showFiles(const QStringList& files) {
    for (const QString& file : files) {
        appendTile(file);
    }
    loadThumbnails(files);
    updateDropArea();
    qCDebug(lcShelfWindow) << "listed" << files.size() << "files of" << shelf_->folderPath;
    Q_EMIT filesListed();
}

void ShelfDetailView::appendTile(const QString& path) {
    files_.append(path);
    const QString name = QFileInfo(path).fileName();
    auto* item = new QListWidgetItem(placeholderIcon(isShelfVideo(path)), QString(), grid_);
    item->setData(kPathRole, path);
    item->setData(Qt::AccessibleTextRole, name);
    item->setToolTip(name);
    item->setSizeHint(kTileSize + QSize(kTileSpacing, kTileSpacing));
}

// The tiles are decoded in order, a few dozen per worker task, so that every
// thread of the pool takes part and each picture is handed over once done.
void ShelfDetailView::loadThumbnails(const QStringList& paths) {
    constexpr qsizetype kTilesPerTask = 25;
    for (qsizetype first = 0; first < paths.size(); first += kTilesPerTask) {
        decodeThumbnails(paths.mid(first, kTilesPerTask));
    }
}

void ShelfDetailView::decodeThumbnails(const QStringList& paths) {
    QPointer<ShelfDetailView> self(this);
    const int generation = *generation_;
    const Thumbnailer& thumbnailer = services_.thumbnailer;
    const std::shared_ptr<const std::atomic_int> current = generation_;
    const qreal dpr = devicePixelRatioF();
    services_.pool.start([self, paths, generation, current, dpr, &thumbnailer] {
        for (const QString& path : paths) {
            if (*current != generation) {
                return;
            }
            const QImage thumbnail = croppedToTile(thumbnailer.decode(path), dpr);
            QMetaObject::invokeMethod(
                QCoreApplication::instance(),
                [self, path, thumbnail, generation] {
                    if (self && *self->generation_ == generation) {
                        self->showThumbnail(path, thumbnail);
                    }
                },
                Qt::QueuedConnection);
        }
    });
}

void ShelfDetailView::showThumbnail(const QString& path, const QImage& thumbnail) {
    if (QListWidgetItem* item = tileOf(path)) {
        item->setIcon(
            QIcon(tilePixmap(thumbnail, isShelfVideo(path), palette(), devicePixelRatioF())));
    }
    Q_EMIT thumbnailShown(path);
}

// Drawing a symbol renders its SVG: the two placeholders are drawn once and
// shared by every tile.
QIcon ShelfDetailView::placeholderIcon(bool video) {
    QIcon& icon = video ? videoPlaceholder_ : picturePlaceholder_;
    if (icon.isNull()) {
        icon = QIcon(tilePixmap({}, video, palette(), devicePixelRatioF()));
    }
    return icon;
}

QListWidgetItem* ShelfDetailView::tileOf(const QString& path) const {
    for (int row = 0; row < grid_->count(); ++row) {
        if (grid_->item(row)->data(kPathRole).toString() == path) {
            return grid_->item(row);
        }
    }
    return nullptr;
}

void ShelfDetailView::updateHeader() {
    if (!shelf_) {
        return;
    }
    // The store's record is the current one after a rename or a move.
    if (const auto current = services_.store.shelf(shelf_->id)) {
        shelf_ = *current;
    }
    name_->setText(shelf_->name);
    path_->setToolTip(shelf_->folderPath);
    elidePath();
}

void ShelfDetailView::updateDropArea() {
    const bool show = files_.isEmpty() || targeted_;
    const QString hint =
        targeted_ ? QStringLiteral("Release to add") : QStringLiteral("Drop files here");
    dropText_->setText(hint);
    dropText_->setAccessibleName(hint);
    dropArea_->setVisible(show);
    grid_->setVisible(!show);
    QPalette areaPalette = dropArea_->palette();
    areaPalette.setColor(QPalette::Window, widget_style::withAlpha(widget_style::accent(palette()),
                                                                   targeted_ ? 0.18 : 0.0));
    dropArea_->setAutoFillBackground(targeted_);
    dropArea_->setPalette(areaPalette);
}

// The folder's path is shortened to the width the header gives it.
bool ShelfDetailView::eventFilter(QObject* watched, QEvent* event) {
    if (watched == path_ && event->type() == QEvent::Resize) {
        elidePath();
    }
    return QWidget::eventFilter(watched, event);
}

void ShelfDetailView::elidePath() {
    const QString full = shelf_ ? shelf_->folderPath : QString();
    path_->setText(path_->fontMetrics().elidedText(full, Qt::ElideMiddle, path_->width()));
}

void ShelfDetailView::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier) {
        event->accept();
        Q_EMIT backRequested();
        return;
    }
    QWidget::keyPressEvent(event);
}

void ShelfDetailView::dragEnterEvent(QDragEnterEvent* event) {
    if (shelf_ && !droppedLocalFiles(event->mimeData()).isEmpty()) {
        event->acceptProposedAction();
        targeted_ = true;
        updateDropArea();
    }
}

void ShelfDetailView::dragLeaveEvent(QDragLeaveEvent* /*event*/) {
    targeted_ = false;
    updateDropArea();
}

// Each file moves on its own worker; a name already in the shelf leaves the
// file where it was.
void ShelfDetailView::dropEvent(QDropEvent* event) {
    targeted_ = false;
    updateDropArea();
    const QStringList sources = droppedLocalFiles(event->mimeData());
    if (!shelf_ || sources.isEmpty()) {
        return;
    }
    event->acceptProposedAction();
    QPointer<ShelfDetailView> self(this);
    for (const QString& source : sources) {
        const QString destination = QDir(shelf_->folderPath).filePath(QFileInfo(source).fileName());
        services_.pool.start([self, source, destination] {
            const int error = moveWithoutReplacing(source, destination);
            QMetaObject::invokeMethod(
                QCoreApplication::instance(),
                [self, source, destination, error] {
                    if (self) {
                        self->finishDrop(source, destination, error);
                    }
                },
                Qt::QueuedConnection);
        });
    }
}

void ShelfDetailView::finishDrop(const QString& source, const QString& destination, int error) {
    if (error != 0) {
        qCInfo(lcShelfWindow) << "could not move" << source
                              << "into the shelf:" << systemErrorDescription(error);
        Q_EMIT dropFinished(source, false);
        return;
    }
    // The record is carried over and then cleared: both files have the same
    // name, which is the record's key, so a capture moved onto a shelf ends up
    // without its label and event.
    ScreenshotMetadataStore& metadata = services_.metadata;
    const ScreenshotMetadata record = metadata.recordFor(source);
    if (record.colorLabel) {
        metadata.setColorLabel(record.colorLabel, destination);
    }
    if (record.event) {
        metadata.setEvent(record.event, destination);
    }
    // Each change rewrites the sealed file: a file without a record (most
    // dropped files) costs nothing.
    if (!record.isEmpty()) {
        metadata.setColorLabel(std::nullopt, source);
        metadata.setEvent(std::nullopt, source);
    }

    const bool inThisShelf = shelf_ && QFileInfo(destination).absolutePath() ==
                                           QFileInfo(shelf_->folderPath).absoluteFilePath();
    if (inThisShelf && !files_.contains(destination)) {
        appendTile(destination);
        loadThumbnails({destination});
        updateDropArea();
    }
    const QList<ScreenshotItem> listed = services_.library.screenshots();
    for (const ScreenshotItem& item : listed) {
        if (item.path() == source) {
            services_.library.removeFromList(item);
        }
    }
    Q_EMIT dropFinished(source, true);
}

void ShelfDetailView::openPreview(const QString& path) {
    if (!services_.openPreview) {
        return;
    }
    const QFileInfo info(path);
    const QDateTime birth = info.birthTime();
    const QDateTime date = birth.isValid() ? birth : QDateTime::currentDateTimeUtc();
    const QDateTime modified = info.lastModified();
    services_.openPreview(ScreenshotItem(path, date, modified.isValid() ? modified : date));
}

void ShelfDetailView::moveToTrash(const QString& path) {
    QPointer<ShelfDetailView> self(this);
    services_.pool.start([self, path] {
        QString unusedPathInTrash;
        const bool trashed = QFile::moveToTrash(path, &unusedPathInTrash);
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [self, path, trashed] {
                if (!self) {
                    return;
                }
                if (trashed) {
                    self->removeFile(path);
                } else {
                    qCInfo(lcShelfWindow) << "could not move" << path << "to the trash";
                }
                Q_EMIT self->trashFinished(path, trashed);
            },
            Qt::QueuedConnection);
    });
}

void ShelfDetailView::removeFile(const QString& path) {
    files_.removeAll(path);
    delete tileOf(path);
    updateDropArea();
}

void ShelfDetailView::showTileMenu(const QPoint& position) {
    QListWidgetItem* item = grid_->itemAt(position);
    if (item == nullptr) {
        return;
    }
    const QString path = item->data(kPathRole).toString();
    QMenu menu(this);
    menu.setAccessibleName(QStringLiteral("File actions"));
    QAction* preview = menu.addAction(QStringLiteral("Open Preview"));
    QAction* reveal = menu.addAction(QStringLiteral("Show in File Manager"));
    QAction* trash = menu.addAction(QStringLiteral("Move to Trash"));
    const QAction* chosen = menu.exec(grid_->viewport()->mapToGlobal(position));
    if (chosen == preview) {
        openPreview(path);
    } else if (chosen == reveal) {
        revealInFileManager(path);
    } else if (chosen == trash) {
        moveToTrash(path);
    }
}

void ShelfDetailView::chooseLocation() {
    if (!shelf_) {
        return;
    }
    QFileDialog dialog(this);
    dialog.setAccessibleName(QStringLiteral("Choose a folder"));
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    dialog.setLabelText(QFileDialog::Accept, QStringLiteral("Select"));
    dialog.setDirectory(QFileInfo(shelf_->folderPath).absolutePath());
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
        return;
    }
    changeLocation(dialog.selectedFiles().constFirst());
}

void ShelfDetailView::changeLocation(const QString& destination) {
    if (!shelf_) {
        return;
    }
    QPointer<ShelfDetailView> self(this);
    // A failed move leaves the shelf where it was, without a message.
    services_.store.moveShelf(
        shelf_->id, destination, this, [self](const std::optional<ShelfError>& error) {
            if (error) {
                qCInfo(lcShelfWindow) << "shelf not moved:" << error->description();
            }
            if (self) {
                self->updateHeader();
            }
        });
    services_.settings.setLastShelfLocation(destination);
    updateHeader();
}
