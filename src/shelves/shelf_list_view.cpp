// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "shelves/shelf_list_view.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include "shelves/new_shelf_card.h"
#include "shelves/shelf_card.h"
#include "shelves/shelf_services.h"
#include "storage/shelf_store.h"
#include "widgets/symbol_icon.h"
#include "widgets/widget_style.h"

namespace {

constexpr int kSpacing = 10;
constexpr int kPadding = 12;

}  // namespace

ShelfListView::ShelfListView(ShelfServices& services, QWidget* parent)
    : QWidget(parent), services_(services) {
    setAccessibleName(QStringLiteral("Shelves list"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(makeHeader());

    errorLine_ = new QWidget(this);
    errorLine_->setAccessibleName(QStringLiteral("Error"));
    auto* errorLayout = new QHBoxLayout(errorLine_);
    errorLayout->setContentsMargins(kPadding, 0, kPadding, 4);
    auto* errorSymbol = new QLabel(errorLine_);
    errorSymbol->setAccessibleName(QStringLiteral("Error symbol"));
    errorSymbol->setPixmap(symbolPixmap(QStringLiteral("exclamationmark.circle.fill"),
                                        QColor(Qt::red), QSize(11, 11), devicePixelRatioF()));
    errorText_ = new QLabel(errorLine_);
    errorText_->setAccessibleName(QStringLiteral("Error message"));
    errorText_->setFont(widget_style::font(font(), 11, QFont::Normal));
    errorText_->setWordWrap(true);
    errorLayout->addWidget(errorSymbol);
    errorLayout->addWidget(errorText_, 1);
    errorLine_->hide();
    layout->addWidget(errorLine_);

    emptyState_ = makeEmptyState();
    layout->addWidget(emptyState_, 1);

    scroll_ = new QScrollArea(this);
    scroll_->setAccessibleName(QStringLiteral("Shelves"));
    scroll_->setWidgetResizable(true);
    scroll_->setFrameShape(QFrame::NoFrame);
    scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* content = new QWidget(scroll_);
    content->setAccessibleName(QStringLiteral("Shelf cards"));
    grid_ = new QGridLayout(content);
    grid_->setContentsMargins(kPadding, kPadding, kPadding, kPadding);
    grid_->setSpacing(kSpacing);
    grid_->setAlignment(Qt::AlignTop);
    grid_->setColumnStretch(0, 1);
    grid_->setColumnStretch(1, 1);
    scroll_->setWidget(content);
    layout->addWidget(scroll_, 1);

    newShelfCard_ = new NewShelfCard(content);
    newShelfCard_->hide();
    connect(newShelfCard_, &NewShelfCard::committed, this, &ShelfListView::commitNewShelf);
    connect(newShelfCard_, &NewShelfCard::cancelled, this, &ShelfListView::endCreating);
    connect(&services_.store, &ShelfStore::shelvesChanged, this, &ShelfListView::rebuild);
    rebuild();
}

QWidget* ShelfListView::makeHeader() {
    auto* header = new QWidget(this);
    header->setAccessibleName(QStringLiteral("Header"));
    auto* layout = new QHBoxLayout(header);
    layout->setContentsMargins(kPadding, kPadding, kPadding, 6);
    auto* title = new QLabel(QStringLiteral("Shelves"), header);
    title->setAccessibleName(QStringLiteral("Shelves"));
    title->setFont(widget_style::font(font(), 15, QFont::Bold));
    newShelfButton_ = new QPushButton(QStringLiteral("New Shelf"), header);
    newShelfButton_->setAccessibleName(QStringLiteral("New Shelf"));
    newShelfButton_->setFlat(true);
    newShelfButton_->setFont(widget_style::font(font(), 12, QFont::Normal));
    newShelfButton_->setIcon(
        symbolIcon(QStringLiteral("plus"), widget_style::primary(palette()), QSize(11, 11)));
    connect(newShelfButton_, &QPushButton::clicked, this, &ShelfListView::startCreating);
    layout->addWidget(title);
    layout->addStretch();
    layout->addWidget(newShelfButton_);
    return header;
}

QWidget* ShelfListView::makeEmptyState() {
    auto* empty = new QWidget(this);
    empty->setAccessibleName(QStringLiteral("No shelves yet"));
    auto* layout = new QVBoxLayout(empty);
    layout->setAlignment(Qt::AlignCenter);
    auto* symbol = new QLabel(empty);
    symbol->setAccessibleName(QStringLiteral("Shelves symbol"));
    symbol->setAlignment(Qt::AlignCenter);
    symbol->setPixmap(symbolPixmap(QStringLiteral("tray.2"), widget_style::secondary(palette()),
                                   QSize(32, 32), devicePixelRatioF()));
    auto* line = new QLabel(QStringLiteral("No shelves yet"), empty);
    line->setAccessibleName(QStringLiteral("No shelves yet"));
    line->setFont(widget_style::font(font(), 14, QFont::DemiBold));
    line->setAlignment(Qt::AlignCenter);
    auto* hint = new QLabel(QStringLiteral("Organise your captures into named collections"), empty);
    hint->setAccessibleName(QStringLiteral("Organise your captures into named collections"));
    hint->setFont(widget_style::font(font(), 12, QFont::Normal));
    QPalette hintPalette = hint->palette();
    hintPalette.setColor(QPalette::WindowText, widget_style::secondary(palette()));
    hint->setPalette(hintPalette);
    hint->setAlignment(Qt::AlignCenter);
    hint->setWordWrap(true);
    hint->setMaximumWidth(200);
    layout->addWidget(symbol, 0, Qt::AlignHCenter);
    layout->addWidget(line, 0, Qt::AlignHCenter);
    layout->addWidget(hint, 0, Qt::AlignHCenter);
    return empty;
}

QString ShelfListView::errorMessage() const {
    return errorLine_->isVisibleTo(this) ? errorText_->text() : QString();
}

bool ShelfListView::isShowingEmptyState() const {
    return emptyState_->isVisibleTo(this);
}

void ShelfListView::startCreating() {
    creating_ = true;
    rebuild();
    newShelfCard_->nameField()->setFocus();
}

void ShelfListView::reload() {
    rebuild();
}

// A failed creation keeps the card and its text; an empty name creates
// nothing and closes the card like a success.
void ShelfListView::commitNewShelf(const QString& typed) {
    const QString name = trimmedShelfName(typed);
    if (!name.isEmpty()) {
        if (const auto error = services_.store.createShelf(name)) {
            qCInfo(lcShelfWindow) << "shelf not created:" << error->description();
            setErrorMessage(error->description());
            return;
        }
    }
    endCreating();
}

void ShelfListView::endCreating() {
    creating_ = false;
    newShelfCard_->clear();
    setErrorMessage({});
    rebuild();
}

void ShelfListView::setErrorMessage(const QString& message) {
    errorText_->setText(message);
    errorLine_->setVisible(!message.isEmpty());
}

void ShelfListView::rebuild() {
    // Later, not now: a card may be the sender of the change (its rename or
    // delete), still inside its own event handler.
    for (ShelfCard* card : std::as_const(cards_)) {
        grid_->removeWidget(card);
        card->hide();
        card->deleteLater();
    }
    cards_.clear();
    grid_->removeWidget(newShelfCard_);
    int index = 0;
    const auto place = [this, &index](QWidget* card) {
        grid_->addWidget(card, index / 2, index % 2);
        ++index;
    };
    newShelfCard_->setVisible(creating_);
    if (creating_) {
        place(newShelfCard_);
    }
    for (const ShelfItem& shelf : services_.store.shelves()) {
        auto* card = new ShelfCard(shelf, services_, grid_->parentWidget());
        connect(card, &ShelfCard::tapped, this, &ShelfListView::shelfOpened);
        connect(card, &ShelfCard::renameRequested, this,
                [this](const ShelfItem& item, const QString& newName) {
                    // A refused name (taken, or the shelf's own) changes
                    // nothing and is not shown.
                    if (const auto error = services_.store.renameShelf(item.id, newName)) {
                        qCInfo(lcShelfWindow) << "shelf not renamed:" << error->description();
                    }
                });
        connect(card, &ShelfCard::deleteRequested, this,
                [this](const ShelfItem& item) { services_.store.deleteShelf(item.id); });
        cards_.append(card);
        place(card);
        card->show();
    }
    const bool empty = index == 0;
    emptyState_->setVisible(empty);
    scroll_->setVisible(!empty);
}
