// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "settings/shelves_settings_view.h"

#include <QCoreApplication>
#include <QDir>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QThreadPool>
#include <QToolButton>
#include <QVBoxLayout>

#include "platform/dbus/file_manager_reveal.h"
#include "settings/rename_shelf_sheet.h"
#include "settings/settings_group.h"
#include "storage/shelf_store.h"
#include "storage/user_settings.h"
#include "widgets/symbol_icon.h"
#include "widgets/widget_style.h"

namespace {

constexpr QSize kSymbolSize(16, 16);

// The home folder written as "~", as people say it.
QString withTilde(const QString& path) {
    const QString home = QDir::homePath();
    if (path == home) {
        return QStringLiteral("~");
    }
    if (path.startsWith(home + QLatin1Char('/'))) {
        return QLatin1Char('~') + path.mid(home.size());
    }
    return path;
}

QLabel* makeCaption(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setFont(widget_style::font(label->font(), 11, QFont::Normal));
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, widget_style::secondary(label->palette()));
    label->setPalette(palette);
    return label;
}

}  // namespace

ShelvesSettingsView::ShelvesSettingsView(const SettingsServices& services, QWidget* parent)
    : SettingsPage(QStringLiteral("Shelves"), parent), services_(services) {
    addLocationGroup();
    shelvesHost_ = new QWidget;
    shelvesHost_->setAccessibleName(QStringLiteral("Your shelves"));
    auto* hostLayout = new QVBoxLayout(shelvesHost_);
    hostLayout->setContentsMargins(0, 0, 0, 0);
    addWidget(shelvesHost_);
    finish();
    rebuildShelves();
    // Queued: a row's own menu may be what deleted or renamed the shelf, and
    // the row must outlive that menu's click.
    connect(&services_.shelves, &ShelfStore::shelvesChanged, this,
            &ShelvesSettingsView::rebuildShelves, Qt::QueuedConnection);
    connect(&services_.settings, &UserSettings::lastShelfLocationChanged, this,
            &ShelvesSettingsView::showDefaultLocation);
}

QString ShelvesSettingsView::itemCountText(qsizetype count) {
    return count == 1 ? QStringLiteral("1 item") : QStringLiteral("%1 items").arg(count);
}

void ShelvesSettingsView::addLocationGroup() {
    SettingsGroup* group = addGroup(QStringLiteral("Default Location"));
    auto* trailing = new QWidget;
    auto* layout = new QHBoxLayout(trailing);
    layout->setContentsMargins(0, 0, 0, 0);
    defaultLocation_ = new QLabel(trailing);
    auto* select = new QPushButton(QStringLiteral("Select"), trailing);
    select->setAccessibleName(QStringLiteral("Select new shelves location"));
    layout->addWidget(defaultLocation_);
    layout->addWidget(select);
    group->addLabelledRow(QStringLiteral("New shelves location"), trailing);
    connect(select, &QPushButton::clicked, this, [this] {
        chooseFolder(QStringLiteral("Select Shelves Location"),
                     [this](const QString& folder) { chooseDefaultLocation(folder); });
    });
    showDefaultLocation();
}

void ShelvesSettingsView::showDefaultLocation() {
    const QString location = withTilde(services_.shelves.defaultParentFolder());
    defaultLocation_->setText(location);
    defaultLocation_->setAccessibleName(QStringLiteral("New shelves location ") + location);
}

void ShelvesSettingsView::chooseDefaultLocation(const QString& folder) {
    services_.settings.setLastShelfLocation(folder);
}

void ShelvesSettingsView::rebuildShelves() {
    delete shelvesGroup_;
    countLabels_.clear();
    menus_.clear();
    countsPending_ = 0;
    const QList<ShelfItem>& shelves = services_.shelves.shelves();
    shelvesGroup_ =
        new SettingsGroup(QStringLiteral("Your Shelves (%1)").arg(shelves.size()), shelvesHost_);
    shelvesHost_->layout()->addWidget(shelvesGroup_);
    if (shelves.isEmpty()) {
        auto* empty =
            makeCaption(QStringLiteral("No shelves yet. Create one from the main panel."), nullptr);
        empty->setAccessibleName(empty->text());
        shelvesGroup_->addRow(empty);
        return;
    }
    for (const ShelfItem& shelf : shelves) {
        shelvesGroup_->addRow(makeShelfRow(shelf));
    }
}

QWidget* ShelvesSettingsView::makeShelfRow(const ShelfItem& shelf) {
    auto* row = new QWidget;
    row->setAccessibleName(shelf.name);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 6, 0, 6);
    auto* symbol = new QLabel(row);
    symbol->setPixmap(symbolPixmap(QStringLiteral("tray.fill"), widget_style::accent(palette()),
                                   kSymbolSize, devicePixelRatioF()));
    symbol->setAccessibleName(QStringLiteral("Shelf symbol"));
    auto* texts = new QVBoxLayout;
    texts->setSpacing(1);
    auto* name = new QLabel(shelf.name, row);
    auto* details = new QHBoxLayout;
    auto* count = makeCaption(QString(), row);
    auto* path = makeCaption(withTilde(shelf.folderPath), row);
    path->setAccessibleName(shelf.name + QStringLiteral(" folder"));
    details->addWidget(count);
    details->addWidget(path, 1);
    texts->addWidget(name);
    texts->addLayout(details);
    auto* more = new QToolButton(row);
    more->setIcon(symbolIcon(QStringLiteral("ellipsis.circle"), widget_style::secondary(palette()),
                             QSize(18, 18)));
    more->setAccessibleName(shelf.name + QStringLiteral(" actions"));
    more->setToolTip(QStringLiteral("Shelf actions"));
    more->setAutoRaise(true);
    more->setPopupMode(QToolButton::InstantPopup);
    more->setMenu(makeRowMenu(shelf, more));
    layout->addWidget(symbol);
    layout->addLayout(texts, 1);
    layout->addWidget(more);
    countLabels_.insert(shelf.id, count);
    menus_.insert(shelf.id, more->menu());
    countItems(shelf, count);
    return row;
}

QMenu* ShelvesSettingsView::makeRowMenu(const ShelfItem& shelf, QWidget* owner) {
    auto* menu = new QMenu(owner);
    menu->setAccessibleName(shelf.name + QStringLiteral(" actions"));
    const QColor tint = widget_style::primary(palette());
    const QString folder = shelf.folderPath;
    menu->addAction(symbolIcon(QStringLiteral("folder"), tint, QSize(16, 16)),
                    QStringLiteral("Show in File Manager"),
                    [folder] { revealInFileManager(folder); });
    menu->addAction(QStringLiteral("Rename Shelf"), this,
                    [this, shelf] { openRenameSheet(shelf); });
    const QUuid id = shelf.id;
    menu->addAction(symbolIcon(QStringLiteral("trash"), tint, QSize(16, 16)),
                    QStringLiteral("Delete Shelf"), this,
                    [this, id] { services_.shelves.deleteShelf(id); });
    return menu;
}

// Counting reads the folder: on a worker, the answer going to the label
// only if it is still shown.
void ShelvesSettingsView::countItems(const ShelfItem& shelf, QLabel* label) {
    ++countsPending_;
    QPointer<QLabel> target(label);
    QPointer<ShelvesSettingsView> self(this);
    QThreadPool::globalInstance()->start([self, target, shelf] {
        const qsizetype count = ShelfStore::files(shelf).size();
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [self, target, count] {
                if (!self || !target) {
                    return;
                }
                target->setText(itemCountText(count));
                target->setAccessibleName(target->text());
                if (--self->countsPending_ == 0) {
                    Q_EMIT self->countsShown();
                }
            },
            Qt::QueuedConnection);
    });
}

QString ShelvesSettingsView::shownItemCount(const QUuid& id) const {
    const QPointer<QLabel> label = countLabels_.value(id);
    return label ? label->text() : QString();
}

QMenu* ShelvesSettingsView::rowMenu(const QUuid& id) const {
    return menus_.value(id);
}

void ShelvesSettingsView::openRenameSheet(const ShelfItem& shelf) {
    if (renameSheet_) {
        renameSheet_->close();
    }
    renameSheet_ = new RenameShelfSheet(services_.shelves, shelf.id, shelf.name, window());
    renameSheet_->setAttribute(Qt::WA_DeleteOnClose);
    renameSheet_->open();
}

RenameShelfSheet* ShelvesSettingsView::renameSheet() const {
    return renameSheet_;
}
