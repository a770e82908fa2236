// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "shelves/shelf_window.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QPushButton>
#include <QScreen>
#include <QStackedWidget>
#include <QVBoxLayout>

#include "library/thumbnailer.h"
#include "shelves/shelf_detail_view.h"
#include "shelves/shelf_list_view.h"
#include "storage/preferences.h"
#include "storage/shelf_store.h"

ShelfWindow::ShelfWindow(const Stores& stores,
                         std::function<void(const ScreenshotItem& item)> openPreview,
                         QWidget* parent)
    : QWidget(parent, Qt::Window),
      thumbnailer_(std::make_unique<Thumbnailer>()),
      services_{stores.store,    stores.settings,       stores.preferences,
                stores.metadata, stores.library,        *thumbnailer_,
                pool_,           std::move(openPreview)} {
    setWindowTitle(QStringLiteral("Shelves"));
    setAccessibleName(QStringLiteral("Shelves"));
    setMinimumSize(kMinimumSize);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    stack_ = new QStackedWidget(this);
    stack_->setAccessibleName(QStringLiteral("Shelves content"));
    list_ = new ShelfListView(services_, stack_);
    detail_ = new ShelfDetailView(services_, stack_);
    stack_->addWidget(list_);
    stack_->addWidget(detail_);
    layout->addWidget(stack_);
    connect(list_, &ShelfListView::shelfOpened, this, &ShelfWindow::openShelf);
    connect(detail_, &ShelfDetailView::backRequested, this, &ShelfWindow::showList);
    connect(&services_.store, &ShelfStore::shelvesChanged, this, &ShelfWindow::followStore);
    placeWindow();
}

// The views' workers hold references to the thumbnailer and the views'
// guarded pointers: they must end before either goes.
ShelfWindow::~ShelfWindow() {
    if (isVisible()) {
        rememberFrame();
    }
    pool_.waitForDone();
}

void ShelfWindow::placeWindow() {
    if (restoreGeometry(services_.preferences.windowFrame(kFrameName))) {
        return;
    }
    resize(kSize);
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        QRect frame(QPoint(), kSize);
        frame.moveCenter(screen->availableGeometry().center());
        move(frame.topLeft());
    }
}

void ShelfWindow::rememberFrame() {
    services_.preferences.setWindowFrame(kFrameName, saveGeometry());
}

void ShelfWindow::present() {
    show();
    raise();
    activateWindow();
}

bool ShelfWindow::isShowingDetail() const {
    return stack_->currentWidget() == detail_;
}

void ShelfWindow::openShelf(const ShelfItem& shelf) {
    qCDebug(lcShelfWindow) << "opening shelf" << shelf.name;
    detail_->setShelf(shelf);
    stack_->setCurrentWidget(detail_);
    detail_->backButton()->setFocus();
}

void ShelfWindow::showList() {
    // Counts and previews may have changed while the shelf was open.
    list_->reload();
    stack_->setCurrentWidget(list_);
}

// A shelf whose folder vanished, or that was deleted, cannot stay open.
void ShelfWindow::followStore() {
    const auto& opened = detail_->shelf();
    if (isShowingDetail() && opened && !services_.store.shelf(opened->id)) {
        showList();
    }
}

void ShelfWindow::closeEvent(QCloseEvent* event) {
    event->ignore();
    hide();
}

void ShelfWindow::hideEvent(QHideEvent* event) {
    rememberFrame();
    QWidget::hideEvent(event);
}
