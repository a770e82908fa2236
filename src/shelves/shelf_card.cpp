// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "shelves/shelf_card.h"

#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QPointer>
#include <QVBoxLayout>

#include "library/thumbnailer.h"
#include "shelves/shelf_services.h"
#include "storage/shelf_store.h"
#include "widgets/symbol_icon.h"
#include "widgets/widget_style.h"

namespace {

constexpr QSize kPictureSize(140, 64);
constexpr int kCardHeight = 120;

}  // namespace

ShelfCard::ShelfCard(const ShelfItem& shelf, ShelfServices& services, QWidget* parent)
    : QFrame(parent), shelf_(shelf), services_(services) {
    setAccessibleName(QStringLiteral("Shelf %1").arg(shelf.name));
    setFocusPolicy(Qt::StrongFocus);
    setFixedHeight(kCardHeight);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(10, 10, 10, 10);
    picture_ = new QLabel(this);
    picture_->setAccessibleName(QStringLiteral("Preview"));
    picture_->setAlignment(Qt::AlignCenter);
    picture_->setMinimumHeight(kPictureSize.height());
    picture_->setPixmap(symbolPixmap(QStringLiteral("photo.stack"),
                                     widget_style::secondary(palette()), QSize(28, 28),
                                     devicePixelRatioF()));
    name_ = new QLabel(shelf.name, this);
    name_->setAccessibleName(QStringLiteral("Name"));
    name_->setFont(widget_style::font(font(), 13, QFont::DemiBold));
    name_->setTextFormat(Qt::PlainText);
    renameField_ = new QLineEdit(this);
    renameField_->setPlaceholderText(QStringLiteral("Name"));
    renameField_->setAccessibleName(QStringLiteral("Name"));
    renameField_->hide();
    renameField_->installEventFilter(this);

    auto* countRow = new QHBoxLayout;
    auto* tray = new QLabel(this);
    tray->setAccessibleName(QStringLiteral("Items"));
    tray->setPixmap(symbolPixmap(QStringLiteral("tray.fill"), widget_style::secondary(palette()),
                                 QSize(12, 12), devicePixelRatioF()));
    count_ = new QLabel(QStringLiteral("0"), this);
    count_->setAccessibleName(QStringLiteral("Item count"));
    countRow->addWidget(tray);
    countRow->addWidget(count_);
    countRow->addStretch();

    layout->addWidget(picture_);
    layout->addWidget(name_);
    layout->addWidget(renameField_);
    layout->addLayout(countRow);
    loadContent();
}

// Counting means reading the folder, and the preview means decoding a
// picture: both on a worker. The result goes to the application object:
// the card may be deleted meanwhile, and its guarded pointer is read only on
// the GUI thread.
void ShelfCard::loadContent() {
    QPointer<ShelfCard> self(this);
    const ShelfItem shelf = shelf_;
    const Thumbnailer& thumbnailer = services_.thumbnailer;
    services_.pool.start([self, shelf, &thumbnailer] {
        const QStringList files = ShelfStore::files(shelf);
        QImage preview;
        for (const QString& file : files) {
            if (!isShelfVideo(file)) {
                preview = thumbnailer.decode(file);
                break;
            }
        }
        const int count = static_cast<int>(files.size());
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [self, count, preview] {
                if (self) {
                    self->showContent(count, preview);
                }
            },
            Qt::QueuedConnection);
    });
}

void ShelfCard::showContent(int count, const QImage& preview) {
    itemCount_ = count;
    count_->setText(QString::number(count));
    preview_ = preview;
    if (!preview.isNull()) {
        const QPixmap pixmap = QPixmap::fromImage(preview).scaled(kPictureSize, Qt::KeepAspectRatio,
                                                                  Qt::SmoothTransformation);
        picture_->setPixmap(pixmap);
    }
    Q_EMIT contentLoaded();
}

bool ShelfCard::isRenaming() const {
    return renameField_->isVisibleTo(this);
}

void ShelfCard::startRenaming() {
    renameField_->setText(shelf_.name);
    name_->hide();
    renameField_->show();
    renameField_->selectAll();
    renameField_->setFocus();
}

// Failures of the rename itself are the store's; the card always leaves
// renaming.
void ShelfCard::endRenaming(bool commit) {
    const QString newName = trimmedShelfName(renameField_->text());
    renameField_->hide();
    name_->show();
    setFocus();
    if (commit && !newName.isEmpty()) {
        Q_EMIT renameRequested(shelf_, newName);
    }
}

bool ShelfCard::eventFilter(QObject* watched, QEvent* event) {
    if (watched == renameField_ && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Escape) {
            endRenaming(key != Qt::Key_Escape);
            return true;
        }
    }
    return QFrame::eventFilter(watched, event);
}

void ShelfCard::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor text = widget_style::primary(palette());
    painter.setPen(hasFocus() ? QPen(widget_style::accent(palette()), 1.5) : Qt::NoPen);
    painter.setBrush(widget_style::withAlpha(text, hovered_ ? 0.12 : 0.05));
    painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 10, 10);
}

void ShelfCard::enterEvent(QEnterEvent* event) {
    hovered_ = true;
    update();
    QFrame::enterEvent(event);
}

void ShelfCard::leaveEvent(QEvent* event) {
    hovered_ = false;
    update();
    QFrame::leaveEvent(event);
}

void ShelfCard::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint()) &&
        !isRenaming()) {
        Q_EMIT tapped(shelf_);
    }
    QFrame::mouseReleaseEvent(event);
}

void ShelfCard::keyPressEvent(QKeyEvent* event) {
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter ||
         event->key() == Qt::Key_Space) &&
        !isRenaming()) {
        Q_EMIT tapped(shelf_);
        return;
    }
    QFrame::keyPressEvent(event);
}

void ShelfCard::contextMenuEvent(QContextMenuEvent* event) {
    QMenu menu(this);
    menu.setAccessibleName(QStringLiteral("Shelf actions"));
    QAction* rename = menu.addAction(QStringLiteral("Rename"));
    QAction* remove = menu.addAction(QStringLiteral("Delete"));
    const QAction* chosen = menu.exec(event->globalPos());
    if (chosen == rename) {
        startRenaming();
    } else if (chosen == remove) {
        Q_EMIT deleteRequested(shelf_);
    }
}
