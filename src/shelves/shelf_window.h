// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QThreadPool>
#include <QWidget>
#include <functional>
#include <memory>

#include "shelves/shelf_services.h"
#include "storage/shelf_item.h"

class QStackedWidget;
class ShelfDetailView;
class ShelfListView;

// The "Shelves" window: the list of shelves, or one shelf opened. Made once
// and kept: closing only hides it, and its position and size are remembered
// across runs.
class ShelfWindow : public QWidget {
    Q_OBJECT

public:
    static constexpr QSize kSize{380, 500};
    static constexpr QSize kMinimumSize{340, 420};
    static inline const QString kFrameName = QStringLiteral("ShelfWindow");

    // The stores are the program's shared ones unless a test gives its own.
    struct Stores {
        ShelfStore& store;
        UserSettings& settings;
        Preferences& preferences;
        ScreenshotMetadataStore& metadata;
        ScreenshotStore& library;
    };

    ShelfWindow(const Stores& stores, std::function<void(const ScreenshotItem& item)> openPreview,
                QWidget* parent = nullptr);
    ~ShelfWindow() override;

    ShelfWindow(const ShelfWindow&) = delete;
    ShelfWindow& operator=(const ShelfWindow&) = delete;

    // Shows the window in front and gives it the keyboard.
    void present();

    ShelfListView* listView() const { return list_; }
    ShelfDetailView* detailView() const { return detail_; }
    bool isShowingDetail() const;
    void openShelf(const ShelfItem& shelf);
    void showList();

protected:
    void closeEvent(QCloseEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void placeWindow();
    void rememberFrame();
    void followStore();

    // Workers for the views; waited for before anything else goes.
    QThreadPool pool_;
    std::unique_ptr<Thumbnailer> thumbnailer_;
    ShelfServices services_;
    QStackedWidget* stack_ = nullptr;
    ShelfListView* list_ = nullptr;
    ShelfDetailView* detail_ = nullptr;
};
