// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QList>
#include <QWidget>

#include "storage/shelf_item.h"

class NewShelfCard;
class QGridLayout;
class QLabel;
class QPushButton;
class QScrollArea;
class ShelfCard;
struct ShelfServices;

// The shelves as a grid of cards, two columns, with the "New Shelf" card
// first while a shelf is being named, the last creation error under the
// header, and a hint when there are no shelves. Rebuilt whenever the store
// changes.
class ShelfListView : public QWidget {
    Q_OBJECT

public:
    explicit ShelfListView(ShelfServices& services, QWidget* parent = nullptr);

    QPushButton* newShelfButton() const { return newShelfButton_; }
    NewShelfCard* newShelfCard() const { return newShelfCard_; }
    bool isCreating() const { return creating_; }
    // The error line's text; empty when it is hidden.
    QString errorMessage() const;
    bool isShowingEmptyState() const;
    const QList<ShelfCard*>& cards() const { return cards_; }

    void startCreating();
    // Rebuilds the cards, so that counts and previews are read again.
    void reload();

Q_SIGNALS:
    void shelfOpened(const ShelfItem& shelf);

private:
    QWidget* makeHeader();
    QWidget* makeEmptyState();
    void commitNewShelf(const QString& typed);
    void endCreating();
    void setErrorMessage(const QString& message);
    void rebuild();

    ShelfServices& services_;
    QPushButton* newShelfButton_ = nullptr;
    QWidget* errorLine_ = nullptr;
    QLabel* errorText_ = nullptr;
    QWidget* emptyState_ = nullptr;
    QScrollArea* scroll_ = nullptr;
    QGridLayout* grid_ = nullptr;
    NewShelfCard* newShelfCard_ = nullptr;
    QList<ShelfCard*> cards_;
    bool creating_ = false;
};
