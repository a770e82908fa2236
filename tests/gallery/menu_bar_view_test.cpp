// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "gallery/menu_bar_view.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QDir>
#include <QHBoxLayout>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QScrollBar>
#include <QSignalSpy>
#include <QtTest>
#include <memory>

#include "gallery/color_swatch.h"
#include "gallery/filter_chip.h"
#include "gallery/filter_toggle_button.h"
#include "gallery/gallery_grid_view.h"
#include "gallery/screenshot_filter_model.h"
#include "gallery/screenshot_thumbnail.h"
#include "support/temporary_library.h"
#include "widgets/shortcut_view.h"

namespace {

constexpr int kTimeoutMs = 5000;

// Written in this order, so the last is the newest; each in a colour of its own.
void writePngs(TemporaryLibrary& library, const QStringList& names) {
    for (const QString& name : names) {
        const QColor color = QColor::fromHsv(static_cast<int>(qHash(name) % 360), 200, 220);
        library.writePng(QStringLiteral("Desktop/") + name, {64, 40}, color, color);
    }
}

QStringList shownNames(const MenuBarView& view) {
    QStringList names;
    const QAbstractItemModel* model = view.gridView()->model();
    for (int row = 0; row < model->rowCount(); ++row) {
        names.append(model->index(row, 0).data(Qt::DisplayRole).toString());
    }
    return names;
}

void click(QWidget* widget) {
    QVERIFY(widget != nullptr);
    QVERIFY2(widget->isVisible(), qPrintable(widget->accessibleName()));
    QTest::mouseClick(widget, Qt::LeftButton, {}, widget->rect().center());
}

const QStringList kThreeFiles = {"Design review.png", "Screenshot 2025-01-01.png",
                                 "Bug report.png"};
const QStringList kNewestFirst = {"Bug report.png", "Screenshot 2025-01-01.png",
                                  "Design review.png"};

}  // namespace

class MenuBarViewTest : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<TemporaryLibrary> library_;
    std::unique_ptr<MenuBarView> view_;

    // A shown view over a library of `files`.
    MenuBarView& openView(const QStringList& files) {
        library_ = std::make_unique<TemporaryLibrary>();
        writePngs(*library_, files);
        ScreenshotStore& store = library_->open();
        // The view needs the published list, not the thumbnails; see the
        // note on idle below.
        [&] { QVERIFY(library_->waitUntilListed(files.size(), kTimeoutMs)); }();
        // Usually the thumbnails follow at once. The store is not relied on
        // to report idle: now and then it never does although no work is
        // left (a store issue reported separately).
        (void)library_->waitUntilIdle(3000);
        view_ = std::make_unique<MenuBarView>(store, library_->metadata, library_->settings);
        view_->show();
        [&] { QVERIFY(QTest::qWaitForWindowExposed(view_.get())); }();
        return *view_;
    }

    void openPanel(MenuBarView& view) {
        click(view.filterToggle());
        QVERIFY(view.isFilterPanelOpen());
        // The search field takes the keyboard shortly after opening.
        QTRY_VERIFY_WITH_TIMEOUT(view.searchField()->hasFocus(), kTimeoutMs);
    }

private Q_SLOTS:
    void cleanup() {
        view_.reset();
        library_.reset();
    }

    void threeFilesShowNewestFirstInAGridOfThreeColumns() {
        MenuBarView& view = openView(kThreeFiles);
        QCOMPARE(view.size(), QSize(320, 420));
        QCOMPARE(shownNames(view), kNewestFirst);
        QCOMPARE(view.captionLabel()->text(), QStringLiteral("3"));
        QVERIFY(view.captionLabel()->isVisible());
        QVERIFY(!view.isShowingEmptyState());
        QVERIFY(view.gridView()->isVisible());
        QVERIFY(!view.filterPanel()->isVisible());

        // Three equal columns, 14 px in from the left, 8 px apart, aspect 1.6.
        GalleryGridView* grid = view.gridView();
        QTRY_VERIFY(!grid->visualRect(grid->model()->index(2, 0)).isEmpty());
        const QPoint origin = grid->viewport()->geometry().topLeft();
        QList<QRect> cells;
        for (int row = 0; row < 3; ++row) {
            cells.append(grid->visualRect(grid->model()->index(row, 0)).translated(origin));
        }
        QCOMPARE(cells[0].left(), 14);
        QCOMPARE(cells[0].top(), 12);
        QCOMPARE(cells[1].left(), cells[0].right() + 1 + 8);
        QCOMPARE(cells[2].left(), cells[1].right() + 1 + 8);
        QCOMPARE(cells[1].top(), cells[0].top());
        QCOMPARE(cells[2].top(), cells[0].top());
        QVERIFY(qAbs(grid->width() - 14 - (cells[2].right() + 1)) <= 2);
        QCOMPARE(cells[0].size(), cells[2].size());
        QCOMPARE(cells[0].height(), qRound(cells[0].width() / 1.6));
        QCOMPARE(grid->thumbnailDelegate()->cellSize(), cells[0].size());
        // Scroll bars never show.
        QVERIFY(!grid->verticalScrollBar()->isVisible());
        // Cells drag out as files.
        QCOMPARE(grid->dragDropMode(), QAbstractItemView::DragOnly);
        const std::unique_ptr<QMimeData> dragged(
            grid->model()->mimeData({grid->model()->index(0, 0)}));
        QVERIFY(dragged != nullptr);
        QCOMPARE(dragged->urls(),
                 QList<QUrl>{QUrl::fromLocalFile(library_->desktop("Bug report.png"))});
    }

    void cellsFollowTheGridWidthAndTheWheelScrollsWithoutBars() {
        QStringList files;
        for (int i = 0; i < 18; ++i) {
            files.append(QStringLiteral("Shot %1.png").arg(i, 2, 10, QLatin1Char('0')));
        }
        MenuBarView& view = openView(files);
        QCOMPARE(view.shownCount(), 18);

        // A second grid over the same rows, wider than the popover's.
        GalleryGridView wide;
        ScreenshotThumbnail delegate(library_->metadata);
        wide.setModel(view.filterModel());
        wide.setThumbnailDelegate(&delegate);
        wide.resize(500, 300);
        wide.show();
        QVERIFY(QTest::qWaitForWindowExposed(&wide));
        QTRY_COMPARE(wide.visualRect(wide.model()->index(0, 0)).size(), delegate.cellSize());
        QVERIFY(delegate.cellSize().width() >
                view.gridView()->thumbnailDelegate()->cellSize().width());
        const QRect third = wide.visualRect(wide.model()->index(2, 0));
        const QRect fourth = wide.visualRect(wide.model()->index(3, 0));
        QCOMPARE(third.top(), wide.visualRect(wide.model()->index(0, 0)).top());
        QCOMPARE(fourth.left(), wide.visualRect(wide.model()->index(0, 0)).left());
        QCOMPARE(fourth.top(), third.bottom() + 1 + 8);

        // Six rows do not fit the popover; the wheel scrolls, no bar shows.
        QScrollBar* bar = view.gridView()->verticalScrollBar();
        QTRY_VERIFY(bar->maximum() > 0);
        QCOMPARE(bar->value(), 0);
        QWidget* viewport = view.gridView()->viewport();
        const QPoint inside = viewport->rect().center();
        QWheelEvent wheel(inside, viewport->mapToGlobal(inside), QPoint(0, 0), QPoint(0, -120),
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(viewport, &wheel);
        QVERIFY(bar->value() > 0);
        QVERIFY(!bar->isVisible());
    }

    void searchNarrowsTheCountAndClearingItRestoresIt() {
        MenuBarView& view = openView(kThreeFiles);
        openPanel(view);
        QVERIFY(view.filterPanel()->isVisible());
        QVERIFY(!view.clearSearchButton()->isVisible());

        QTest::keyClicks(view.searchField(), QStringLiteral("SHOT"));
        QCOMPARE(shownNames(view), QStringList{"Screenshot 2025-01-01.png"});
        QCOMPARE(view.captionLabel()->text(), QStringLiteral("1 of 3"));
        QCOMPARE(view.captionLabel()->accessibleName(), QStringLiteral("1 of 3"));
        QVERIFY(view.clearSearchButton()->isVisible());

        click(view.clearSearchButton());
        QVERIFY(view.searchField()->text().isEmpty());
        QCOMPARE(view.captionLabel()->text(), QStringLiteral("3"));
        QCOMPARE(shownNames(view), kNewestFirst);
        QVERIFY(view.isFilterPanelOpen());
        QVERIFY(!view.clearSearchButton()->isVisible());
    }

    void blueFilterShowsOnlyBlueLabelledAndFollowsTheMetadata() {
        MenuBarView& view = openView(kThreeFiles);
        ScreenshotMetadataStore& meta = library_->metadata;
        meta.setColorLabel(ColorLabel::blue, library_->desktop("Design review.png"));
        meta.setColorLabel(ColorLabel::red, library_->desktop("Bug report.png"));
        openPanel(view);

        QVERIFY(view.noColorSwatch()->isSelected());
        click(view.colorSwatch(ColorLabel::blue));
        QCOMPARE(shownNames(view), QStringList{"Design review.png"});
        QCOMPARE(view.captionLabel()->text(), QStringLiteral("1 of 3"));
        QVERIFY(view.colorSwatch(ColorLabel::blue)->isSelected());
        QVERIFY(!view.noColorSwatch()->isSelected());
        QTRY_COMPARE(view.colorSwatch(ColorLabel::blue)->scale(), 1.2);

        // Labelling another file blue shows it at once, in library order.
        meta.setColorLabel(ColorLabel::blue, library_->desktop("Bug report.png"));
        QCOMPARE(shownNames(view), (QStringList{"Bug report.png", "Design review.png"}));
        QCOMPARE(view.captionLabel()->text(), QStringLiteral("2 of 3"));

        // A second press removes the filter.
        click(view.colorSwatch(ColorLabel::blue));
        QCOMPARE(view.filter().colorFilter, std::nullopt);
        QCOMPARE(shownNames(view), kNewestFirst);
        QVERIFY(view.noColorSwatch()->isSelected());
        QTRY_COMPARE(view.colorSwatch(ColorLabel::blue)->scale(), 1.0);
    }

    void mediaAndDateChipsSelectTheirCase() {
        MenuBarView& view = openView(kThreeFiles);
        openPanel(view);
        QVERIFY(view.mediaChip(MenuBarView::MediaFilter::all)->isSelected());
        QVERIFY(view.dateChip(MenuBarView::DateFilter::all)->isSelected());

        click(view.mediaChip(MenuBarView::MediaFilter::videos));
        QVERIFY(view.mediaChip(MenuBarView::MediaFilter::videos)->isSelected());
        QVERIFY(!view.mediaChip(MenuBarView::MediaFilter::all)->isSelected());
        QCOMPARE(view.captionLabel()->text(), QStringLiteral("0 of 3"));
        // Pressing the selected chip again keeps it.
        click(view.mediaChip(MenuBarView::MediaFilter::videos));
        QCOMPARE(view.filter().mediaFilter, MenuBarView::MediaFilter::videos);

        click(view.mediaChip(MenuBarView::MediaFilter::photos));
        click(view.dateChip(MenuBarView::DateFilter::week));
        // Just written, so within the week and today.
        QCOMPARE(shownNames(view), kNewestFirst);
        QCOMPARE(view.captionLabel()->text(), QStringLiteral("3 of 3"));
        click(view.dateChip(MenuBarView::DateFilter::today));
        QVERIFY(view.dateChip(MenuBarView::DateFilter::today)->isSelected());
        QVERIFY(!view.dateChip(MenuBarView::DateFilter::week)->isSelected());
        QCOMPARE(shownNames(view), kNewestFirst);
    }

    void eventsWithNoEventShowsNoResults() {
        MenuBarView& view = openView(kThreeFiles);
        library_->metadata.setColorLabel(ColorLabel::green, library_->desktop("Bug report.png"));
        openPanel(view);
        click(view.eventsChip());
        QVERIFY(view.eventsChip()->isSelected());
        QVERIFY(view.isShowingEmptyState());
        QCOMPARE(view.emptyStateLabel()->text(), QStringLiteral("No results"));
        QCOMPARE(view.emptyStateSymbol(), QStringLiteral("magnifyingglass"));
        QVERIFY(view.emptyStateLabel()->isVisible());
        QCOMPARE(view.captionLabel()->text(), QStringLiteral("0 of 3"));

        // An event arriving shows its item.
        library_->metadata.setEvent(ScreenshotEvent{QStringLiteral("Fix"), QString()},
                                    library_->desktop("Design review.png"));
        QCOMPARE(shownNames(view), QStringList{"Design review.png"});
        QVERIFY(!view.isShowingEmptyState());
        // Pressing "Events" again toggles it off.
        click(view.eventsChip());
        QVERIFY(!view.filter().showEventsOnly);
        QCOMPARE(shownNames(view), kNewestFirst);
    }

    void closingThePanelClearsEveryFilter() {
        MenuBarView& view = openView(kThreeFiles);
        openPanel(view);
        QTest::keyClicks(view.searchField(), QStringLiteral("zzz"));
        click(view.mediaChip(MenuBarView::MediaFilter::photos));
        click(view.dateChip(MenuBarView::DateFilter::week));
        click(view.eventsChip());
        click(view.colorSwatch(ColorLabel::purple));
        QVERIFY(view.filter().isActive());
        QCOMPARE(view.filterToggle()->symbol(), QStringLiteral("xmark"));
        QCOMPARE(view.emptyStateLabel()->text(), QStringLiteral("No results"));

        click(view.filterToggle());
        QVERIFY(!view.isFilterPanelOpen());
        const GalleryFilter cleared{};
        QCOMPARE(view.filter(), cleared);
        QCOMPARE(shownNames(view), kNewestFirst);
        QCOMPARE(view.captionLabel()->text(), QStringLiteral("3"));
        QVERIFY(!view.isShowingEmptyState());
        QCOMPARE(view.filterToggle()->symbol(), QStringLiteral("line.3.horizontal.decrease"));
        QVERIFY(!view.filterToggle()->filtersActive());
        QVERIFY(!view.filterDot()->isVisible());
        QTRY_VERIFY_WITH_TIMEOUT(!view.filterPanel()->isVisible(), kTimeoutMs);

        // Reopened, every control shows its default.
        openPanel(view);
        QVERIFY(view.searchField()->text().isEmpty());
        QVERIFY(view.mediaChip(MenuBarView::MediaFilter::all)->isSelected());
        QVERIFY(!view.mediaChip(MenuBarView::MediaFilter::photos)->isSelected());
        QVERIFY(view.dateChip(MenuBarView::DateFilter::all)->isSelected());
        QVERIFY(!view.eventsChip()->isSelected());
        QVERIFY(view.noColorSwatch()->isSelected());
        QVERIFY(!view.colorSwatch(ColorLabel::purple)->isSelected());
    }

    void chipsSwatchesAndToggleDrawTheirState() {
        // On a white host with a blue accent, so colours can be told apart.
        QWidget host;
        QPalette colors = host.palette();
        colors.setColor(QPalette::Window, Qt::white);
        colors.setColor(QPalette::WindowText, Qt::black);
        colors.setColor(QPalette::Highlight, QColor(0, 90, 255));
        host.setPalette(colors);
        host.setAutoFillBackground(true);
        auto* row = new QHBoxLayout(&host);
        auto* idleChip = new TextFilterChip(QStringLiteral("Today"), &host);
        auto* selectedChip = new TextFilterChip(QStringLiteral("Week"), &host);
        auto* iconChip =
            new IconFilterChip(QStringLiteral("photo"), QStringLiteral("Photos"), &host);
        auto* idleSwatch = new ColorSwatch(ColorLabel::green, &host);
        auto* selectedSwatch = new ColorSwatch(ColorLabel::green, &host);
        auto* toggle = new FilterToggleButton(&host);
        for (QWidget* widget : std::initializer_list<QWidget*>{
                 idleChip, selectedChip, iconChip, idleSwatch, selectedSwatch, toggle}) {
            row->addWidget(widget);
        }
        selectedChip->setSelected(true);
        iconChip->setSelected(true);
        selectedSwatch->setSelected(true);
        host.show();
        QVERIFY(QTest::qWaitForWindowExposed(&host));
        QCOMPARE(iconChip->accessibleName(), QStringLiteral("Photos"));
        QCOMPARE(selectedSwatch->accessibleName(), QStringLiteral("Green"));

        const QImage picture = host.grab().toImage();
        const auto pixelOf = [&picture](QWidget* widget, QPoint at) {
            return picture.pixelColor(widget->mapTo(widget->window(), at));
        };
        const auto isBlueTint = [](const QColor& color) {
            return color.blue() > color.red() + 12 && color.blue() > 200;
        };
        // Fill: none when idle, the accent at 12 % when selected.
        const QPoint edge(idleChip->width() / 2, 2);
        QCOMPARE(pixelOf(idleChip, edge), QColor(Qt::white));
        QVERIFY(isBlueTint(pixelOf(selectedChip, {selectedChip->width() / 2, 2})));
        QVERIFY(pixelOf(selectedChip, {selectedChip->width() / 2, 2}).red() > 190);
        QVERIFY(isBlueTint(pixelOf(iconChip, {2, iconChip->height() / 2})));
        // Text: secondary grey when idle, the accent when selected.
        const auto darkest = [&](QWidget* widget) {
            QColor result = Qt::white;
            for (int y = 0; y < widget->height(); ++y) {
                for (int x = 0; x < widget->width(); ++x) {
                    const QColor color = pixelOf(widget, {x, y});
                    if (color.lightness() < result.lightness()) {
                        result = color;
                    }
                }
            }
            return result;
        };
        const QColor idleText = darkest(idleChip);
        QVERIFY(qAbs(idleText.red() - idleText.blue()) < 10);
        QVERIFY(idleText.lightness() < 200);
        const QColor selectedText = darkest(selectedChip);
        QVERIFY(selectedText.blue() > selectedText.red() + 80);

        // Hovering an idle chip gives it the faint primary fill.
        QTest::mouseMove(idleChip, idleChip->rect().center());
        QTRY_VERIFY(idleChip->isHovered());
        const auto hoveredFill = [&] {
            return host.grab().toImage().pixelColor(idleChip->mapTo(&host, edge));
        };
        // Black at 6 % over white, once the short fade is over.
        QTRY_VERIFY(qAbs(hoveredFill().lightness() - 240) <= 3);
        QVERIFY(qAbs(hoveredFill().red() - hoveredFill().blue()) < 4);
        QTest::mouseMove(&host, QPoint(host.width() - 1, host.height() - 1));
        QTRY_VERIFY(!idleChip->isHovered());

        // The selected swatch carries a white check mark at its centre.
        const QPoint centre = idleSwatch->rect().center();
        const QColor green = colorLabelColor(ColorLabel::green);
        const QColor plain = pixelOf(idleSwatch, centre);
        QVERIFY(qAbs(plain.green() - green.green()) < 8 && qAbs(plain.red() - green.red()) < 8);
        bool whiteMark = false;
        for (int dx = -3; dx <= 3; ++dx) {
            whiteMark =
                whiteMark || pixelOf(selectedSwatch, centre + QPoint(dx, 0)).lightness() > 240;
        }
        QVERIFY(whiteMark);

        // The toggle: clear when no filter is active, accent-tinted when one is.
        QCOMPARE(pixelOf(toggle, {3, 13}), QColor(Qt::white));
        toggle->setLook(false, true);
        QVERIFY(isBlueTint(toggle->grab().toImage().pixelColor(3, 13)));
        QCOMPARE(toggle->symbol(), QStringLiteral("line.3.horizontal.decrease"));
        toggle->setLook(true, true);
        QCOMPARE(toggle->symbol(), QStringLiteral("xmark"));
    }

    void emptyLibraryShowsNoScreenshotsYetAndNoCaption() {
        MenuBarView& view = openView({});
        QVERIFY(view.isShowingEmptyState());
        QCOMPARE(view.emptyStateLabel()->text(), QStringLiteral("No screenshots yet"));
        QCOMPARE(view.emptyStateSymbol(), QStringLiteral("photo.on.rectangle.angled"));
        QVERIFY(view.emptyStateLabel()->isVisible());
        QVERIFY(!view.captionLabel()->isVisible());

        // A capture arriving replaces the message with the grid.
        writePngs(*library_, {"First.png"});
        library_->store().refresh();
        QTRY_COMPARE(shownNames(view), QStringList{"First.png"});
        QVERIFY(!view.isShowingEmptyState());
        QCOMPARE(view.captionLabel()->text(), QStringLiteral("1"));
        QVERIFY(view.captionLabel()->isVisible());
    }

    void headerFollowsTheSettingsAndAFilterSetWhileClosed() {
        MenuBarView& view = openView(kThreeFiles);
        const QString before = view.shortcutView()->accessibleName();
        QCOMPARE(before,
                 displayString(library_->settings.hotkeys().binding(HotkeyAction::captureArea)));
        const HotkeyBinding changed{18, KeyModifiers::kControl | KeyModifiers::kShift};
        library_->settings.setHotkey(HotkeyAction::captureArea, changed);
        QCOMPARE(view.shortcutView()->accessibleName(), displayString(changed));
        QVERIFY(view.shortcutView()->accessibleName() != before);
        QVERIFY(view.shortcutView()->isVisible());

        view.setMediaFilter(MenuBarView::MediaFilter::photos);
        QVERIFY(view.filterToggle()->filtersActive());
        QVERIFY(view.filterDot()->isVisible());
    }

    void eachOpeningSlidesTheContentIn() {
        MenuBarView& view = openView(kThreeFiles);
        QWidget* toggle = view.filterToggle();
        QTRY_VERIFY(view.hasAppeared());
        QTRY_COMPARE(toggle->mapTo(&view, QPoint()).y(), 10 + 3);

        view.prepareToShow();
        QVERIFY(!view.hasAppeared());
        QCOMPARE(toggle->mapTo(&view, QPoint()).y(), 10 + 3 - 8);
        QTRY_VERIFY(view.hasAppeared());
        QTRY_COMPARE(toggle->mapTo(&view, QPoint()).y(), 10 + 3);
    }

    // Tab reaches the grid; arrows move, Return opens, Delete trashes, and
    // the focused cell wears the accent ring.
    void theGridWorksFromTheKeyboard() {
        MenuBarView& view = openView(kThreeFiles);
        GalleryGridView* grid = view.gridView();
        view.activateWindow();
        view.filterToggle()->setFocus(Qt::TabFocusReason);
        const QImage unfocused = grid->viewport()->grab().toImage();
        QTest::keyClick(view.filterToggle(), Qt::Key_Tab);
        QTRY_VERIFY(grid->hasFocus());
        QCOMPARE(grid->currentIndex().row(), 0);
        // The ring: the top edge of the first cell turns to the accent.
        const QRect first = grid->visualRect(grid->currentIndex());
        QTRY_VERIFY(grid->viewport()->grab().toImage() != unfocused);
        const QImage focused = grid->viewport()->grab().toImage();
        const QColor ring = focused.pixelColor(first.center().x(), first.top());
        QCOMPARE(ring, grid->palette().color(QPalette::Highlight));

        QTest::keyClick(grid, Qt::Key_Right);
        QCOMPARE(grid->currentIndex().data().toString(), kNewestFirst.at(1));
        QVERIFY(!grid->selectionModel()->hasSelection());
        QSignalSpy opened(&view, &MenuBarView::itemSelected);
        QTest::keyClick(grid, Qt::Key_Return);
        QVERIFY(opened.wait(kTimeoutMs));
        QCOMPARE(opened.at(0).at(0).value<ScreenshotItem>().fileName(), kNewestFirst.at(1));

        QTest::keyClick(grid, Qt::Key_Delete);
        QTRY_COMPARE(shownNames(view), (QStringList{kNewestFirst.at(0), kNewestFirst.at(2)}));
        QTRY_VERIFY(QFile::exists(library_->trashed(kNewestFirst.at(1))));
        // The focus moves on to the cell that took its place.
        QTRY_COMPARE(grid->currentIndex().data().toString(), kNewestFirst.at(2));
        QCOMPARE(opened.count(), 1);
    }

    // A screen reader's action on a cell (Qt's accessible list item offers
    // one: it toggles the selection) opens the capture, every time.
    void aCellsAccessibleActionOpensIt() {
        MenuBarView& view = openView(kThreeFiles);
        QSignalSpy opened(&view, &MenuBarView::itemSelected);
        QAccessibleInterface* grid = QAccessible::queryAccessibleInterface(view.gridView());
        QVERIFY(grid);
        QAccessibleInterface* cell = nullptr;
        for (int i = 0; i < grid->childCount(); ++i) {
            if (grid->child(i)->text(QAccessible::Name) == kNewestFirst.at(2)) {
                cell = grid->child(i);
            }
        }
        QVERIFY(cell);
        QAccessibleActionInterface* action = cell->actionInterface();
        QVERIFY(action);
        QVERIFY(!action->actionNames().isEmpty());
        for (int time = 1; time <= 2; ++time) {
            action->doAction(action->actionNames().constFirst());
            QTRY_COMPARE(opened.count(), time);
            QCOMPARE(opened.last().at(0).value<ScreenshotItem>().fileName(), kNewestFirst.at(2));
        }
        // A click still opens once, not twice.
        const QRect rect = view.gridView()->visualRect(view.gridView()->model()->index(0, 0));
        QTest::mouseClick(view.gridView()->viewport(), Qt::LeftButton, {}, rect.center());
        QTRY_COMPARE(opened.count(), 3);
        // Nor does the grid open anything when the current cell's row goes
        // (a search narrows the list) and the view moves on to another.
        view.gridView()->setCurrentIndex(view.gridView()->model()->index(0, 0));
        view.setSearchText(kNewestFirst.at(2));
        QCOMPARE(shownNames(view), QStringList{kNewestFirst.at(2)});
        QTest::qWait(100);
        QCOMPARE(opened.count(), 3);
    }

    void everyControlHasAnAccessibleName() {
        MenuBarView& view = openView(kThreeFiles);
        openPanel(view);
        QStringList names;
        for (QWidget* widget : view.findChildren<QWidget*>()) {
            if (qobject_cast<QAbstractButton*>(widget) || qobject_cast<QLineEdit*>(widget) ||
                qobject_cast<QAbstractItemView*>(widget)) {
                QVERIFY2(!widget->accessibleName().isEmpty(), widget->metaObject()->className());
                names.append(widget->accessibleName());
            }
        }
        for (const char* expected :
             {"Filter", "Search…", "Clear search", "All", "Photos", "Videos", "Today", "Week",
              "Events", "No color", "Red", "Purple", "Screenshots"}) {
            QVERIFY2(names.contains(QString::fromUtf8(expected)), expected);
        }
    }
};

QTEST_MAIN(MenuBarViewTest)
#include "menu_bar_view_test.moc"
