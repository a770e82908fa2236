// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "gallery/thumbnail_actions.h"

#include <QFileInfo>
#include <QMenu>
#include <QMessageBox>
#include <QPainter>

#include "gallery/thumbnail_text_dialog.h"
#include "storage/screenshot_metadata_store.h"
#include "widgets/symbol_icon.h"

namespace {

// Destructive entries ("Remove Event", "Move to Trash") carry their symbol
// in this red.
const QColor kDestructiveTint(215, 58, 50);
constexpr QSize kMenuIconSize(16, 16);

}  // namespace

ThumbnailActions::ThumbnailActions(ScreenshotMetadataStore& metaStore, QObject* parent)
    : QObject(parent), actions_(metaStore) {}

QMenu* ThumbnailActions::buildMenu(const ScreenshotItem& item, QWidget* parent) {
    const ScreenshotMetadata record = metaStore().recordFor(item.path());
    auto* menu = new QMenu(parent);
    menu->setAccessibleName(item.fileName());
    menu->setTitle(item.fileName());
    const QColor ink = menu->palette().color(QPalette::WindowText);

    QMenu* colorMenu = menu->addMenu(symbolIcon(QStringLiteral("circle.fill"), ink, kMenuIconSize),
                                     tr("Color Label"));
    colorMenu->setAccessibleName(colorMenu->title());
    for (const ColorLabel label : kAllColorLabels) {
        QAction* action = colorMenu->addAction(colorLabelIcon(label, record.colorLabel == label),
                                               colorLabelTitle(label));
        connect(action, &QAction::triggered, this,
                [this, item, label] { setColorLabel(item, label); });
    }
    colorMenu->addSeparator();
    QAction* noLabel = colorMenu->addAction(
        symbolIcon(QStringLiteral("xmark.circle"), ink, kMenuIconSize), tr("None"));
    connect(noLabel, &QAction::triggered, this,
            [this, item] { setColorLabel(item, std::nullopt); });

    QAction* eventAction = menu->addAction(symbolIcon(QStringLiteral("tag"), ink, kMenuIconSize),
                                           record.event ? tr("Edit Event…") : tr("Add Event…"));
    connect(eventAction, &QAction::triggered, this, [this, item] { editEvent(item); });
    if (record.event) {
        QAction* removeAction = menu->addAction(
            symbolIcon(QStringLiteral("tag.slash"), kDestructiveTint, kMenuIconSize),
            tr("Remove Event"));
        connect(removeAction, &QAction::triggered, this, [this, item] { removeEvent(item); });
    }
    if (!item.isVideo()) {
        QAction* copyAction = menu->addAction(
            symbolIcon(QStringLiteral("doc.on.doc"), ink, kMenuIconSize), tr("Copy Image"));
        connect(copyAction, &QAction::triggered, this, [this, item] { copyImage(item); });
    }
    menu->addSeparator();
    QAction* renameAction =
        menu->addAction(symbolIcon(QStringLiteral("pencil"), ink, kMenuIconSize), tr("Rename…"));
    connect(renameAction, &QAction::triggered, this, [this, item] { rename(item); });
    menu->addSeparator();
    QAction* trashAction = menu->addAction(
        symbolIcon(QStringLiteral("trash"), kDestructiveTint, kMenuIconSize), tr("Move to Trash"));
    connect(trashAction, &QAction::triggered, this, [this, item] { moveToTrash(item); });
    return menu;
}

void ThumbnailActions::setColorLabel(const ScreenshotItem& item, std::optional<ColorLabel> label) {
    actions_.setColorLabel(item.path(), label);
}

void ThumbnailActions::editEvent(const ScreenshotItem& item) {
    const ScreenshotMetadata record = metaStore().recordFor(item.path());
    const QString message = record.event ? tr("Edit Event") : tr("Add Event");
    ThumbnailTextDialog dialog(
        {message, tr("Add a short label for this screenshot:"),
         tr("e.g. Fix issue, Design review…"), tr("Event title"), tr("Save")},
        record.event ? record.event->title : QString(), dialogParent_);
    if (const std::optional<QString> title = dialog.run()) {
        actions_.setEventTitle(item.path(), *title);
    }
}

void ThumbnailActions::removeEvent(const ScreenshotItem& item) {
    actions_.removeEvent(item.path());
}

QFuture<bool> ThumbnailActions::copyImage(const ScreenshotItem& item) {
    return CaptureActions::copyImage(item.path(), this);
}

QFuture<std::optional<CaptureRenameResult>> ThumbnailActions::rename(const ScreenshotItem& item) {
    using Outcome = std::optional<CaptureRenameResult>;
    // A copy: the dialog runs its own event loop, during which the item's
    // row may be replaced.
    const QString path = item.path();  // NOLINT(performance-unnecessary-copy-initialization)
    ThumbnailTextDialog dialog(
        {tr("Rename Screenshot"), tr("Enter a new name (without extension):"), QString(),
         tr("New name"), tr("Rename")},
        QFileInfo(path).completeBaseName(), dialogParent_);
    const std::optional<QString> typed = dialog.run();
    std::optional<QFuture<CaptureRenameResult>> move =
        typed ? actions_.rename(path, *typed) : std::nullopt;
    if (!move) {
        return QtFuture::makeReadyFuture(Outcome());
    }
    return move->then(this, [this](const CaptureRenameResult& result) {
        if (!result.succeeded()) {
            QMessageBox box(QMessageBox::Warning, tr("Rename failed"), tr("Rename failed"),
                            QMessageBox::Ok, dialogParent_);
            box.setInformativeText(result.errorMessage);
            box.setAccessibleName(tr("Rename failed"));
            box.setAccessibleDescription(result.errorMessage);
            box.raise();
            box.activateWindow();
            box.exec();
        }
        return Outcome(result);
    });
}

void ThumbnailActions::moveToTrash(const ScreenshotItem& item) {
    actions_.moveToTrash(item);
}

QIcon ThumbnailActions::colorLabelIcon(ColorLabel label, bool current) {
    QIcon icon;
    for (const qreal ratio : {1.0, 2.0}) {
        QPixmap pixmap(kMenuIconSize * ratio);
        pixmap.setDevicePixelRatio(ratio);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setRenderHint(QPainter::TextAntialiasing);
        const QRectF square(QPointF(0, 0), QSizeF(kMenuIconSize));
        painter.setPen(Qt::NoPen);
        painter.setBrush(colorLabelColor(label));
        painter.drawEllipse(square);
        if (current) {
            QFont font = painter.font();
            font.setBold(true);
            font.setPixelSize(9);
            painter.setFont(font);
            painter.setPen(Qt::white);
            painter.drawText(square, Qt::AlignCenter, QStringLiteral("✓"));
        }
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}
