// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QSize>
#include <QWidget>
#include <array>
#include <optional>

#include "gallery/gallery_filter.h"
#include "library/screenshot_item.h"
#include "storage/color_label.h"

class ColorSwatch;
class FilterToggleButton;
class GalleryGridView;
class IconFilterChip;
class QAbstractButton;
class QGraphicsOpacityEffect;
class QLabel;
class QLineEdit;
class QStackedWidget;
class QVariantAnimation;
class ScreenshotFilterModel;
class ScreenshotListModel;
class ScreenshotMetadataStore;
class ScreenshotStore;
class ScreenshotThumbnail;
class ShortcutView;
class TextFilterChip;
class UserSettings;

// The gallery popover's content (320 × 420): a header with the logo, the
// title, the count of shown items, the filter toggle and the area-capture
// shortcut; the filter panel while it is open (search field, media, date and
// "Events" chips, colour swatches); and the grid of captures, newest first,
// or a short message when there is nothing to show. It follows the library,
// the metadata and the hotkey settings live. Closing the filter panel clears
// every filter. Every opening of the popover slides the content in.
//
// Tab walks the header, the open filter panel and the grid; past the grid
// (and back before the header) the keyboard moves on into the pill under
// the popover, whose last button leads back here.
class MenuBarView : public QWidget {
    Q_OBJECT

public:
    using DateFilter = GalleryFilter::DateFilter;
    using MediaFilter = GalleryFilter::MediaFilter;

    static constexpr QSize kSize{320, 420};

    // Over the shared library, metadata store and settings.
    explicit MenuBarView(QWidget* parent = nullptr);
    MenuBarView(ScreenshotStore& store, ScreenshotMetadataStore& metaStore, UserSettings& settings,
                QWidget* parent = nullptr);
    ~MenuBarView() override;

    // The filter state.
    const GalleryFilter& filter() const { return filter_; }
    bool isFilterPanelOpen() const { return searchExpanded_; }
    // Whether the entrance animation has (been told to) put the content in
    // place.
    bool hasAppeared() const { return appeared_; }

    // What the filter toggle does: opens the panel (the search field takes
    // the keyboard shortly after) or closes it and resets every filter.
    void toggleFilterPanel();
    void setSearchText(const QString& text);
    void setMediaFilter(MediaFilter filter);
    void setDateFilter(DateFilter filter);
    void setShowEventsOnly(bool eventsOnly);
    void setColorFilter(std::optional<ColorLabel> label);
    // What a colour swatch does: selects its label, or clears it when it is
    // already the filter.
    void pressColorSwatch(ColorLabel label);

    // Fades and slides the content into place.
    void runEntranceAnimation();
    // Called just before the popover opens: the date filters catch up with
    // the clock and the entrance plays.
    void prepareToShow();

    // The gallery whose window is on screen, if any.
    static MenuBarView* shown();
    // Takes the keyboard focus from the pill: onto the first control, or
    // onto the last when walking backwards.
    void takeFocus(bool first);
    // The controls Tab stops at, in order.
    QList<QWidget*> tabStops() const;

    // Number of items shown and in the library.
    int shownCount() const;
    int totalCount() const;
    // Whether the item area shows a message instead of the grid.
    bool isShowingEmptyState() const;

    // The parts, for tests and the shell.
    GalleryGridView* gridView() const { return grid_; }
    ScreenshotFilterModel* filterModel() const { return filterModel_; }
    ScreenshotThumbnail* thumbnailDelegate() const { return delegate_; }
    QLabel* captionLabel() const { return caption_; }
    FilterToggleButton* filterToggle() const { return toggle_; }
    QWidget* filterDot() const { return dot_; }
    QWidget* filterPanel() const { return panel_; }
    QLineEdit* searchField() const { return searchField_; }
    QAbstractButton* clearSearchButton() const { return clearSearch_; }
    IconFilterChip* mediaChip(MediaFilter filter) const;
    TextFilterChip* dateChip(DateFilter filter) const;
    TextFilterChip* eventsChip() const { return eventsChip_; }
    ColorSwatch* noColorSwatch() const { return noColorSwatch_; }
    ColorSwatch* colorSwatch(ColorLabel label) const;
    QLabel* emptyStateLabel() const { return emptyText_; }
    // The symbol of the empty-state message.
    const QString& emptyStateSymbol() const { return emptySymbol_; }
    ShortcutView* shortcutView() const { return shortcutView_; }

Q_SIGNALS:
    // The user clicked the cell of `item`.
    void itemSelected(const ScreenshotItem& item);

protected:
    void showEvent(QShowEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* buildHeader();
    QWidget* buildFilterPanel();
    QWidget* buildItemArea();
    void applyFilter();
    void updateCountAndItemArea();
    void updateShortcut();
    void placeFilterDot();
    void animatePanel(bool open);
    void setEntranceProgress(qreal progress);

    ScreenshotStore& store_;
    ScreenshotMetadataStore& metaStore_;
    UserSettings& settings_;

    GalleryFilter filter_;
    bool appeared_ = false;
    bool searchExpanded_ = false;
    bool shownOnce_ = false;

    ScreenshotListModel* listModel_ = nullptr;
    ScreenshotFilterModel* filterModel_ = nullptr;
    ScreenshotThumbnail* delegate_ = nullptr;

    QWidget* content_ = nullptr;
    QWidget* header_ = nullptr;
    QLabel* caption_ = nullptr;
    FilterToggleButton* toggle_ = nullptr;
    QWidget* dot_ = nullptr;
    ShortcutView* shortcutView_ = nullptr;
    QWidget* panel_ = nullptr;
    QWidget* panelDivider_ = nullptr;
    QLineEdit* searchField_ = nullptr;
    QAbstractButton* clearSearch_ = nullptr;
    std::array<IconFilterChip*, 3> mediaChips_{};
    std::array<TextFilterChip*, 3> dateChips_{};
    TextFilterChip* eventsChip_ = nullptr;
    ColorSwatch* noColorSwatch_ = nullptr;
    std::array<ColorSwatch*, 6> colorSwatches_{};
    QStackedWidget* itemArea_ = nullptr;
    GalleryGridView* grid_ = nullptr;
    QLabel* emptyIcon_ = nullptr;
    QLabel* emptyText_ = nullptr;
    QString emptySymbol_;

    QVariantAnimation* entrance_ = nullptr;
    QGraphicsOpacityEffect* entranceOpacity_ = nullptr;
    QVariantAnimation* panelAnimation_ = nullptr;
    QGraphicsOpacityEffect* panelOpacity_ = nullptr;
};
