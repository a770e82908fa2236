// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QHash>
#include <QPointer>
#include <QUuid>

#include "settings/settings_page.h"
#include "settings/settings_services.h"
#include "storage/shelf_item.h"

class QLabel;
class QMenu;
class RenameShelfSheet;

// The "Shelves" section: where new shelves go, and every shelf with its
// item count and a menu to show, rename or delete it.
class ShelvesSettingsView : public SettingsPage {
    Q_OBJECT

public:
    explicit ShelvesSettingsView(const SettingsServices& services, QWidget* parent = nullptr);

    // "3 items", "1 item".
    static QString itemCountText(qsizetype count);

    QLabel* defaultLocationLabel() const { return defaultLocation_; }
    SettingsGroup* shelvesGroup() const { return shelvesGroup_; }
    // The item count shown for a shelf; empty while it is being counted.
    QString shownItemCount(const QUuid& id) const;
    // The row menu of a shelf, as its "…" button opens it.
    QMenu* rowMenu(const QUuid& id) const;
    RenameShelfSheet* renameSheet() const;

    void chooseDefaultLocation(const QString& folder);
    void openRenameSheet(const ShelfItem& shelf);

Q_SIGNALS:
    // Every shown count has arrived from its worker.
    void countsShown();

private:
    void addLocationGroup();
    void showDefaultLocation();
    void rebuildShelves();
    QWidget* makeShelfRow(const ShelfItem& shelf);
    QMenu* makeRowMenu(const ShelfItem& shelf, QWidget* owner);
    void countItems(const ShelfItem& shelf, QLabel* label);

    SettingsServices services_;
    QLabel* defaultLocation_ = nullptr;
    SettingsGroup* shelvesGroup_ = nullptr;
    QWidget* shelvesHost_ = nullptr;
    QHash<QUuid, QPointer<QLabel>> countLabels_;
    QHash<QUuid, QPointer<QMenu>> menus_;
    int countsPending_ = 0;
    QPointer<RenameShelfSheet> renameSheet_;
};
