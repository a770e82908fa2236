// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QFrame>
#include <QImage>

#include "storage/shelf_item.h"

class QLabel;
class QLineEdit;
struct ShelfServices;

// One shelf in the list: a preview of its first picture (a placeholder
// symbol without one), its name and how many files it holds. The count and
// the preview are read on a worker when the card is made. Its menu renames
// (in place, Return commits, Escape cancels) and deletes the shelf.
class ShelfCard : public QFrame {
    Q_OBJECT

public:
    ShelfCard(const ShelfItem& shelf, ShelfServices& services, QWidget* parent = nullptr);

    const ShelfItem& shelf() const { return shelf_; }
    // -1 until the folder has been read.
    int itemCount() const { return itemCount_; }
    bool hasPreview() const { return !preview_.isNull(); }
    bool isRenaming() const;
    QLineEdit* renameField() const { return renameField_; }

    void startRenaming();

Q_SIGNALS:
    void tapped(const ShelfItem& shelf);
    void renameRequested(const ShelfItem& shelf, const QString& newName);
    void deleteRequested(const ShelfItem& shelf);
    // The count and preview have arrived.
    void contentLoaded();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    void loadContent();
    void showContent(int count, const QImage& preview);
    void endRenaming(bool commit);

    ShelfItem shelf_;
    ShelfServices& services_;
    QLabel* picture_ = nullptr;
    QLabel* name_ = nullptr;
    QLineEdit* renameField_ = nullptr;
    QLabel* count_ = nullptr;
    QImage preview_;
    int itemCount_ = -1;
    bool hovered_ = false;
};
