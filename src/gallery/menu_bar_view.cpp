// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "gallery/menu_bar_view.h"

#include <QApplication>
#include <QGraphicsOpacityEffect>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QResizeEvent>
#include <QSignalBlocker>
#include <QStackedWidget>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>
#include <QVariantAnimation>
#include <cmath>
#include <functional>

#include "gallery/color_swatch.h"
#include "gallery/filter_chip.h"
#include "gallery/filter_toggle_button.h"
#include "gallery/gallery_grid_view.h"
#include "gallery/pill_panel.h"
#include "gallery/screenshot_filter_model.h"
#include "gallery/screenshot_list_model.h"
#include "gallery/screenshot_thumbnail.h"
#include "library/screenshot_store.h"
#include "storage/screenshot_metadata_store.h"
#include "storage/user_settings.h"
#include "widgets/shortcut_view.h"
#include "widgets/symbol_icon.h"
#include "widgets/widget_style.h"

// The logo lives in the application's resources, which a static library
// must register itself.
static void registerApplicationResources() {
    Q_INIT_RESOURCE(quillix);
}

namespace {

constexpr int kEntranceDelayMs = 10;
constexpr int kEntranceMs = 280;
constexpr int kEntranceOffset = 8;
constexpr int kPanelMs = 300;
constexpr int kSearchFocusDelayMs = 60;
constexpr int kDotSide = 5;
constexpr int kDotOffset = 7;

using namespace widget_style;

// A horizontal hairline in the primary colour, faded.
class Divider : public QWidget {
public:
    Divider(qreal opacity, QWidget* parent) : QWidget(parent), opacity_(opacity) {
        setFixedHeight(1);
        setAttribute(Qt::WA_TransparentForMouseEvents);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter(this).fillRect(rect(), withAlpha(primary(palette()), 0.25 * opacity_));
    }

private:
    qreal opacity_;
};

// A fixed-size shape filled in a colour derived from the palette.
class FilledShape : public QWidget {
public:
    enum class Shape { rectangle, roundedRectangle, circle };

    FilledShape(Shape shape, qreal radius, std::function<QColor(const QPalette&)> color,
                QWidget* parent)
        : QWidget(parent), shape_(shape), radius_(radius), color_(std::move(color)) {}

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(color_(palette()));
        switch (shape_) {
            case Shape::rectangle:
                painter.drawRect(rect());
                break;
            case Shape::roundedRectangle:
                painter.drawRoundedRect(QRectF(rect()), radius_, radius_);
                break;
            case Shape::circle:
                painter.drawEllipse(QRectF(rect()));
                break;
        }
    }

private:
    Shape shape_;
    qreal radius_;
    std::function<QColor(const QPalette&)> color_;
};

QWidget* makeSeparatorBar(QWidget* parent) {
    auto* bar = new FilledShape(
        FilledShape::Shape::rectangle, 0,
        [](const QPalette& colors) { return withAlpha(primary(colors), 0.15); }, parent);
    bar->setFixedSize(1, 14);
    return bar;
}

QLabel* makeLabel(const QString& text, int pixelSize, QFont::Weight weight, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setFont(widget_style::font(label->font(), pixelSize, weight));
    label->setAccessibleName(text);
    return label;
}

void setTextColor(QWidget* widget, const QColor& color) {
    QPalette colors = widget->palette();
    colors.setColor(QPalette::WindowText, color);
    colors.setColor(QPalette::Text, color);
    widget->setPalette(colors);
}

QString mediaSymbol(GalleryFilter::MediaFilter filter) {
    switch (filter) {
        case GalleryFilter::MediaFilter::photos:
            return QStringLiteral("photo");
        case GalleryFilter::MediaFilter::videos:
            return QStringLiteral("video");
        case GalleryFilter::MediaFilter::all:
            break;
    }
    return QStringLiteral("square.grid.2x2");
}

}  // namespace

MenuBarView::MenuBarView(QWidget* parent)
    : MenuBarView(ScreenshotStore::shared(), ScreenshotMetadataStore::shared(),
                  UserSettings::shared(), parent) {}

MenuBarView::MenuBarView(ScreenshotStore& store, ScreenshotMetadataStore& metaStore,
                         UserSettings& settings, QWidget* parent)
    : QWidget(parent), store_(store), metaStore_(metaStore), settings_(settings) {
    static const bool resourcesRegistered = (registerApplicationResources(), true);
    Q_UNUSED(resourcesRegistered);
    setFixedSize(kSize);
    setAccessibleName(QStringLiteral("Gallery"));

    listModel_ = new ScreenshotListModel(store_, metaStore_, this);
    filterModel_ = new ScreenshotFilterModel(*listModel_, this);

    // Everything sits on one content widget so the entrance can fade and
    // move it as a whole.
    content_ = new QWidget(this);
    content_->setGeometry(QRect(QPoint(0, 0), kSize));
    auto* stack = new QVBoxLayout(content_);
    stack->setContentsMargins(0, 0, 0, 0);
    stack->setSpacing(0);
    stack->addWidget(buildHeader());
    stack->addWidget(new Divider(0.4, content_));
    stack->addWidget(buildFilterPanel());
    panelDivider_ = new Divider(0.35, content_);
    stack->addWidget(panelDivider_);
    stack->addWidget(buildItemArea(), 1);
    panel_->hide();
    panelDivider_->hide();

    entrance_ = new QVariantAnimation(this);
    entrance_->setDuration(kEntranceMs);
    entrance_->setEasingCurve(QEasingCurve::OutCubic);
    entrance_->setStartValue(0.0);
    entrance_->setEndValue(1.0);
    connect(entrance_, &QVariantAnimation::valueChanged, this,
            [this](const QVariant& value) { setEntranceProgress(value.toReal()); });

    panelAnimation_ = new QVariantAnimation(this);
    panelAnimation_->setDuration(kPanelMs);
    panelAnimation_->setEasingCurve(QEasingCurve::OutCubic);

    connect(filterModel_, &QAbstractItemModel::modelReset, this,
            &MenuBarView::updateCountAndItemArea);
    connect(filterModel_, &QAbstractItemModel::layoutChanged, this,
            &MenuBarView::updateCountAndItemArea);
    connect(filterModel_, &QAbstractItemModel::rowsInserted, this,
            &MenuBarView::updateCountAndItemArea);
    connect(filterModel_, &QAbstractItemModel::rowsRemoved, this,
            &MenuBarView::updateCountAndItemArea);
    connect(&settings_, &UserSettings::hotkeysChanged, this, &MenuBarView::updateShortcut);

    applyFilter();
}

MenuBarView::~MenuBarView() {
    // The grid goes before the models it shows.
    entrance_->stop();
    panelAnimation_->stop();
    delete content_;
}

QWidget* MenuBarView::buildHeader() {
    header_ = new QWidget(content_);
    auto* row = new QHBoxLayout(header_);
    row->setContentsMargins(14, 10, 14, 10);
    row->setSpacing(8);

    auto* logo = new QLabel(header_);
    logo->setFixedSize(32, 32);
    logo->setPixmap(QIcon(QStringLiteral(":/icons/Logo.svg")).pixmap(QSize(32, 32)));
    logo->setAccessibleName(QStringLiteral("Quillix logo"));
    row->addWidget(logo);

    row->addWidget(makeLabel(QStringLiteral("Quillix"), 13, QFont::DemiBold, header_));

    // Proportional fonts here draw their digits at one width already.
    caption_ = makeLabel(QString(), 10, QFont::Medium, header_);
    setTextColor(caption_, tertiary(palette()));
    row->addWidget(caption_);

    row->addStretch(1);

    toggle_ = new FilterToggleButton(header_);
    connect(toggle_, &QAbstractButton::clicked, this, &MenuBarView::toggleFilterPanel);
    toggle_->installEventFilter(this);
    row->addWidget(toggle_);

    dot_ = new FilledShape(
        FilledShape::Shape::circle, 0, [](const QPalette& colors) { return accent(colors); },
        header_);
    dot_->setFixedSize(kDotSide, kDotSide);
    dot_->setAttribute(Qt::WA_TransparentForMouseEvents);
    dot_->setAccessibleName(QStringLiteral("Filters active"));
    dot_->hide();

    shortcutView_ =
        new ShortcutView(settings_.hotkeys().binding(HotkeyAction::captureArea), header_);
    row->addWidget(shortcutView_);
    return header_;
}

QWidget* MenuBarView::buildFilterPanel() {
    panel_ = new QWidget(content_);
    auto* column = new QVBoxLayout(panel_);
    column->setContentsMargins(12, 10, 12, 10);
    column->setSpacing(9);

    // Search row.
    auto* searchRow = new FilledShape(
        FilledShape::Shape::roundedRectangle, 9,
        [](const QPalette& colors) { return withAlpha(primary(colors), 0.06); }, panel_);
    auto* searchLayout = new QHBoxLayout(searchRow);
    searchLayout->setContentsMargins(10, 7, 10, 7);
    searchLayout->setSpacing(7);
    auto* magnifier = new QLabel(searchRow);
    magnifier->setPixmap(symbolPixmap(QStringLiteral("magnifyingglass"), tertiary(palette()),
                                      QSize(11, 11), devicePixelRatioF()));
    magnifier->setFixedSize(11, 11);
    searchLayout->addWidget(magnifier);
    searchField_ = new QLineEdit(searchRow);
    searchField_->setFrame(false);
    searchField_->setPlaceholderText(QStringLiteral("Search…"));
    searchField_->setAccessibleName(QStringLiteral("Search…"));
    searchField_->setFont(widget_style::font(searchField_->font(), 12, QFont::Normal));
    searchField_->setStyleSheet(QStringLiteral("QLineEdit { background: transparent; }"));
    searchField_->setTextMargins(0, 0, 0, 0);
    connect(searchField_, &QLineEdit::textChanged, this, &MenuBarView::setSearchText);
    searchLayout->addWidget(searchField_, 1);
    auto* clear = new QToolButton(searchRow);
    clear->setAutoRaise(true);
    clear->setIcon(symbolIcon(QStringLiteral("xmark.circle.fill"), tertiary(palette()), {11, 11}));
    clear->setIconSize(QSize(11, 11));
    clear->setFixedSize(15, 15);
    clear->setStyleSheet(QStringLiteral("QToolButton { border: none; background: transparent; }"));
    clear->setCursor(Qt::PointingHandCursor);
    clear->setAccessibleName(QStringLiteral("Clear search"));
    clear->setToolTip(QStringLiteral("Clear search"));
    clear->hide();
    connect(clear, &QAbstractButton::clicked, this, [this] { setSearchText(QString()); });
    clearSearch_ = clear;
    searchLayout->addWidget(clear);
    column->addWidget(searchRow);

    // Chip row.
    auto* chips = new QHBoxLayout();
    chips->setSpacing(3);
    for (std::size_t i = 0; i < kAllMediaFilters.size(); ++i) {
        const MediaFilter media = kAllMediaFilters[i];
        auto* chip = new IconFilterChip(mediaSymbol(media), mediaFilterLabel(media), panel_);
        chip->setObjectName(QStringLiteral("media-") + mediaFilterLabel(media));
        connect(chip, &QAbstractButton::clicked, this, [this, media] { setMediaFilter(media); });
        mediaChips_[i] = chip;
        chips->addWidget(chip);
    }
    chips->addWidget(makeSeparatorBar(panel_));
    for (std::size_t i = 0; i < kAllDateFilters.size(); ++i) {
        const DateFilter date = kAllDateFilters[i];
        auto* chip = new TextFilterChip(dateFilterLabel(date), panel_);
        chip->setObjectName(QStringLiteral("date-") + dateFilterLabel(date));
        connect(chip, &QAbstractButton::clicked, this, [this, date] { setDateFilter(date); });
        dateChips_[i] = chip;
        chips->addWidget(chip);
    }
    chips->addWidget(makeSeparatorBar(panel_));
    eventsChip_ = new TextFilterChip(QStringLiteral("Events"), panel_);
    connect(eventsChip_, &QAbstractButton::clicked, this,
            [this] { setShowEventsOnly(!filter_.showEventsOnly); });
    chips->addWidget(eventsChip_);
    chips->addStretch(1);
    column->addLayout(chips);

    // Colour row. The swatches leave room around their circles for the
    // selected scale, so the row's spacing is smaller by that room.
    auto* colors = new QHBoxLayout();
    colors->setSpacing(3);
    auto* colorCaption = makeLabel(QStringLiteral("Color"), 10, QFont::Medium, panel_);
    setTextColor(colorCaption, tertiary(palette()));
    colors->addWidget(colorCaption);
    colors->addSpacing(4);
    noColorSwatch_ = new ColorSwatch(std::nullopt, panel_);
    connect(noColorSwatch_, &QAbstractButton::clicked, this,
            [this] { setColorFilter(std::nullopt); });
    colors->addWidget(noColorSwatch_);
    for (std::size_t i = 0; i < kAllColorLabels.size(); ++i) {
        const ColorLabel label = kAllColorLabels[i];
        auto* swatch = new ColorSwatch(label, panel_);
        connect(swatch, &QAbstractButton::clicked, this,
                [this, label] { pressColorSwatch(label); });
        colorSwatches_[i] = swatch;
        colors->addWidget(swatch);
    }
    colors->addStretch(1);
    column->addLayout(colors);
    return panel_;
}

QWidget* MenuBarView::buildItemArea() {
    itemArea_ = new QStackedWidget(content_);

    grid_ = new GalleryGridView(itemArea_);
    grid_->setModel(filterModel_);
    delegate_ = new ScreenshotThumbnail(metaStore_, this);
    grid_->setThumbnailDelegate(delegate_);
    connect(delegate_, &ScreenshotThumbnail::selected, this, &MenuBarView::itemSelected);
    itemArea_->addWidget(grid_);

    auto* empty = new QWidget(itemArea_);
    auto* column = new QVBoxLayout(empty);
    column->setAlignment(Qt::AlignCenter);
    column->setSpacing(8);
    emptyIcon_ = new QLabel(empty);
    emptyIcon_->setAlignment(Qt::AlignCenter);
    emptyIcon_->setFixedSize(24, 24);
    column->addWidget(emptyIcon_, 0, Qt::AlignHCenter);
    emptyText_ = makeLabel(QString(), 12, QFont::Normal, empty);
    emptyText_->setAlignment(Qt::AlignCenter);
    setTextColor(emptyText_, tertiary(palette()));
    column->addWidget(emptyText_, 0, Qt::AlignHCenter);
    itemArea_->addWidget(empty);
    return itemArea_;
}

IconFilterChip* MenuBarView::mediaChip(MediaFilter filter) const {
    return mediaChips_[static_cast<std::size_t>(filter)];
}

TextFilterChip* MenuBarView::dateChip(DateFilter filter) const {
    return dateChips_[static_cast<std::size_t>(filter)];
}

ColorSwatch* MenuBarView::colorSwatch(ColorLabel label) const {
    return colorSwatches_[static_cast<std::size_t>(label)];
}

void MenuBarView::toggleFilterPanel() {
    searchExpanded_ = !searchExpanded_;
    if (!searchExpanded_) {
        filter_ = GalleryFilter();
    }
    applyFilter();
    animatePanel(searchExpanded_);
    if (searchExpanded_) {
        QTimer::singleShot(kSearchFocusDelayMs, this, [this] {
            if (searchExpanded_) {
                searchField_->setFocus(Qt::OtherFocusReason);
            }
        });
    }
}

void MenuBarView::setSearchText(const QString& text) {
    if (text == filter_.searchText) {
        return;
    }
    filter_.searchText = text;
    applyFilter();
}

void MenuBarView::setMediaFilter(MediaFilter filter) {
    filter_.mediaFilter = filter;
    applyFilter();
}

void MenuBarView::setDateFilter(DateFilter filter) {
    filter_.dateFilter = filter;
    applyFilter();
}

void MenuBarView::setShowEventsOnly(bool eventsOnly) {
    filter_.showEventsOnly = eventsOnly;
    applyFilter();
}

void MenuBarView::setColorFilter(std::optional<ColorLabel> label) {
    filter_.colorFilter = label;
    applyFilter();
}

void MenuBarView::pressColorSwatch(ColorLabel label) {
    setColorFilter(filter_.colorFilter == label ? std::nullopt : std::optional(label));
}

void MenuBarView::applyFilter() {
    if (searchField_->text() != filter_.searchText) {
        const QSignalBlocker blocker(searchField_);
        searchField_->setText(filter_.searchText);
    }
    clearSearch_->setVisible(!filter_.searchText.isEmpty());
    for (const MediaFilter media : kAllMediaFilters) {
        mediaChip(media)->setSelected(filter_.mediaFilter == media);
    }
    for (const DateFilter date : kAllDateFilters) {
        dateChip(date)->setSelected(filter_.dateFilter == date);
    }
    eventsChip_->setSelected(filter_.showEventsOnly);
    noColorSwatch_->setSelected(!filter_.colorFilter.has_value());
    for (const ColorLabel label : kAllColorLabels) {
        colorSwatch(label)->setSelected(filter_.colorFilter == label);
    }
    const bool active = filter_.isActive();
    toggle_->setLook(searchExpanded_, active);
    dot_->setVisible(!searchExpanded_ && active);
    if (dot_->isVisible()) {
        placeFilterDot();
        dot_->raise();
    }

    filterModel_->setFilter(filter_);
    updateCountAndItemArea();
}

int MenuBarView::shownCount() const {
    return filterModel_->rowCount();
}

int MenuBarView::totalCount() const {
    return listModel_->rowCount();
}

bool MenuBarView::isShowingEmptyState() const {
    return itemArea_->currentWidget() != grid_;
}

void MenuBarView::updateCountAndItemArea() {
    const int total = totalCount();
    const int shown = shownCount();
    if (total == 0) {
        caption_->hide();
        caption_->clear();
    } else {
        const QString text = filter_.isActive() ? QStringLiteral("%1 of %2").arg(shown).arg(total)
                                                : QString::number(total);
        caption_->setText(text);
        caption_->setAccessibleName(text);
        caption_->show();
    }

    if (shown > 0) {
        itemArea_->setCurrentWidget(grid_);
        return;
    }
    const QString symbol = searchExpanded_ ? QStringLiteral("magnifyingglass")
                                           : QStringLiteral("photo.on.rectangle.angled");
    const QString text =
        searchExpanded_ ? QStringLiteral("No results") : QStringLiteral("No screenshots yet");
    if (symbol != emptySymbol_) {
        emptySymbol_ = symbol;
        emptyIcon_->setPixmap(
            symbolPixmap(symbol, tertiary(palette()), QSize(24, 24), devicePixelRatioF()));
        emptyIcon_->setAccessibleName(text);
    }
    emptyText_->setText(text);
    emptyText_->setAccessibleName(text);
    itemArea_->setCurrentIndex(1);
}

void MenuBarView::updateShortcut() {
    const HotkeyBinding binding = settings_.hotkeys().binding(HotkeyAction::captureArea);
    auto* replacement = new ShortcutView(binding, header_);
    // The layout hands back the old item, which is the caller's to delete.
    delete header_->layout()->replaceWidget(shortcutView_, replacement);
    delete shortcutView_;
    shortcutView_ = replacement;
    shortcutView_->show();
}

void MenuBarView::placeFilterDot() {
    const QRect button = toggle_->geometry();
    dot_->move(button.right() + 1 - kDotSide + kDotOffset, button.top() - kDotOffset);
}

bool MenuBarView::eventFilter(QObject* watched, QEvent* event) {
    if (watched == toggle_ && (event->type() == QEvent::Move || event->type() == QEvent::Resize)) {
        placeFilterDot();
    }
    return QWidget::eventFilter(watched, event);
}

void MenuBarView::animatePanel(bool open) {
    panelAnimation_->stop();
    panelAnimation_->disconnect(this);
    if (panelOpacity_ == nullptr) {
        panelOpacity_ = new QGraphicsOpacityEffect(panel_);
        panel_->setGraphicsEffect(panelOpacity_);
    }
    const int fullHeight = panel_->sizeHint().height();
    const qreal from = panel_->isVisible() ? panelOpacity_->opacity() : 0.0;
    panelDivider_->setVisible(open);
    panel_->show();
    connect(panelAnimation_, &QVariantAnimation::valueChanged, this,
            [this, fullHeight](const QVariant& value) {
                const qreal progress = value.toReal();
                panel_->setMaximumHeight(static_cast<int>(std::lround(progress * fullHeight)));
                if (panelOpacity_ != nullptr) {
                    panelOpacity_->setOpacity(progress);
                }
            });
    connect(panelAnimation_, &QVariantAnimation::finished, this, [this, open] {
        panel_->setMaximumHeight(QWIDGETSIZE_MAX);
        // The panel draws directly again once it is still.
        panel_->setGraphicsEffect(nullptr);
        panelOpacity_ = nullptr;
        panel_->setVisible(open);
    });
    panelAnimation_->setStartValue(from);
    panelAnimation_->setEndValue(open ? 1.0 : 0.0);
    panelAnimation_->start();
}

void MenuBarView::prepareToShow() {
    // "Today" and "Week" move with the clock.
    if (filter_.dateFilter != DateFilter::all) {
        filterModel_->refilter();
    }
    runEntranceAnimation();
}

void MenuBarView::runEntranceAnimation() {
    entrance_->stop();
    appeared_ = false;
    setEntranceProgress(0.0);
    QTimer::singleShot(kEntranceDelayMs, this, [this] {
        appeared_ = true;
        entrance_->start();
    });
}

void MenuBarView::setEntranceProgress(qreal progress) {
    if (progress >= 1.0) {
        // At rest the content draws without the effect's off-screen pass.
        if (entranceOpacity_ != nullptr) {
            content_->setGraphicsEffect(nullptr);
            entranceOpacity_ = nullptr;
        }
    } else {
        if (entranceOpacity_ == nullptr) {
            entranceOpacity_ = new QGraphicsOpacityEffect(content_);
            content_->setGraphicsEffect(entranceOpacity_);
        }
        entranceOpacity_->setOpacity(progress);
    }
    content_->move(0, -static_cast<int>(std::lround(kEntranceOffset * (1.0 - progress))));
}

void MenuBarView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!shownOnce_) {
        shownOnce_ = true;
        runEntranceAnimation();
    }
}

void MenuBarView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    content_->resize(event->size());
}

MenuBarView* MenuBarView::shown() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (!window->isVisible()) {
            continue;
        }
        if (auto* gallery = qobject_cast<MenuBarView*>(window)) {
            return gallery;
        }
        if (auto* gallery = window->findChild<MenuBarView*>()) {
            return gallery;
        }
    }
    return nullptr;
}

QList<QWidget*> MenuBarView::tabStops() const {
    QList<QWidget*> stops;
    QWidget* widget = const_cast<MenuBarView*>(this);
    while ((widget = widget->nextInFocusChain()) != this) {
        if (isAncestorOf(widget) && (widget->focusPolicy() & Qt::TabFocus) != 0 &&
            widget->isEnabled() && widget->isVisibleTo(this) && widget->focusProxy() == nullptr) {
            stops.append(widget);
        }
    }
    return stops;
}

void MenuBarView::takeFocus(bool first) {
    const QList<QWidget*> stops = tabStops();
    if (stops.isEmpty()) {
        return;
    }
    window()->raise();
    window()->activateWindow();
    if (first) {
        stops.constFirst()->setFocus(Qt::TabFocusReason);
    } else {
        stops.constLast()->setFocus(Qt::BacktabFocusReason);
    }
}

bool MenuBarView::focusNextPrevChild(bool next) {
    // The popover and the pill are two windows: Tab crosses between them
    // where each one's own order ends.
    const QList<QWidget*> stops = tabStops();
    const QWidget* focus = QApplication::focusWidget();
    PillPanel* pill = PillPanel::shown();
    if (pill != nullptr && !stops.isEmpty() && focus != nullptr &&
        focus == (next ? stops.constLast() : stops.constFirst())) {
        pill->takeFocus(next);
        return true;
    }
    return QWidget::focusNextPrevChild(next);
}
