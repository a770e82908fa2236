// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "gallery/screenshot_thumbnail.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QFile>
#include <QImage>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QPainter>
#include <QPushButton>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTimer>
#include <QtTest>
#include <functional>
#include <memory>

#include "gallery/screenshot_list_model.h"
#include "gallery/thumbnail_actions.h"
#include "support/temporary_library.h"
#include "support/test_support.h"

namespace {

constexpr int kWaitMs = 10000;
const QSize kCell(160, 100);

const QString kDivider = QStringLiteral("—");

// The entries of a menu as a user reads them, dividers as "—".
QStringList entries(const QMenu& menu) {
    QStringList texts;
    for (const QAction* action : menu.actions()) {
        texts << (action->isSeparator() ? kDivider : action->text());
    }
    return texts;
}

QAction* entry(const QMenu& menu, const QString& text) {
    for (QAction* action : menu.actions()) {
        if (action->text() == text) {
            return action;
        }
    }
    return nullptr;
}

// Calls `act` from the event loop once a visible modal window titled
// `title` is up (a prompt, or the failure message after it). `act` must
// close the window.
void whenModalShows(const QString& title, std::function<void(QWidget*)> act) {
    auto* timer = new QTimer(qApp);
    timer->setInterval(10);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, title, act = std::move(act)] {
        QWidget* modal = QApplication::activeModalWidget();
        if (!modal || !modal->isVisible() || modal->windowTitle() != title) {
            return;
        }
        timer->stop();
        timer->deleteLater();
        act(modal);
    });
    timer->start();
}

QPushButton* buttonLabelled(QWidget* window, const QString& text) {
    for (QPushButton* button : window->findChildren<QPushButton*>()) {
        if (button->text().remove(QLatin1Char('&')) == text) {
            return button;
        }
    }
    return nullptr;
}

// What a prompt showed before the test typed into it.
struct PromptSeen {
    bool shown = false;
    QString fieldText;
    QString selectedText;
    QString placeholder;
    QString fieldAccessibleName;
    QString windowAccessibleName;
    bool acceptIsDefault = false;
};

// Answers the prompt titled `title`: replaces its (selected) text with
// `typed` and presses `button`.
void answerPrompt(const QString& title, const QString& typed, const QString& button,
                  PromptSeen* seen) {
    whenModalShows(title, [typed, button, seen](QWidget* dialog) {
        auto* field = dialog->findChild<QLineEdit*>();
        seen->shown = true;
        seen->windowAccessibleName = dialog->accessibleName();
        if (field) {
            seen->fieldText = field->text();
            seen->selectedText = field->selectedText();
            seen->placeholder = field->placeholderText();
            seen->fieldAccessibleName = field->accessibleName();
            if (!typed.isNull()) {
                QTest::keyClicks(field, typed);
            }
        }
        QPushButton* accept = buttonLabelled(dialog, button);
        seen->acceptIsDefault = accept && accept->isDefault();
        if (accept) {
            accept->click();
        } else {
            dialog->close();
        }
    });
}

bool near(QRgb actual, const QColor& expected, int tolerance) {
    return std::abs(qRed(actual) - expected.red()) <= tolerance &&
           std::abs(qGreen(actual) - expected.green()) <= tolerance &&
           std::abs(qBlue(actual) - expected.blue()) <= tolerance;
}

QColor blend(const QColor& over, qreal alpha, const QColor& under) {
    return QColor::fromRgbF(float(over.redF() * alpha + under.redF() * (1 - alpha)),
                            float(over.greenF() * alpha + under.greenF() * (1 - alpha)),
                            float(over.blueF() * alpha + under.blueF() * (1 - alpha)));
}

QString describe(QRgb pixel) {
    return QStringLiteral("rgb(%1, %2, %3)").arg(qRed(pixel)).arg(qGreen(pixel)).arg(qBlue(pixel));
}

// The library's captures in an icon grid drawn by the cell delegate.
struct Gallery {
    explicit Gallery(TemporaryLibrary& library)
        : model(library.store(), library.metadata), cell(library.metadata) {
        cell.setLibrary(&library.store());
        cell.setCellSize(kCell);
        view.setViewMode(QListView::IconMode);
        view.setSpacing(8);
        view.setUniformItemSizes(true);
        view.setModel(&model);
        cell.attach(&view);
        view.resize(600, 400);
        view.show();
        [&] { QVERIFY(QTest::qWaitForWindowExposed(&view)); }();
    }

    QModelIndex indexOf(const QString& name) const {
        for (int row = 0; row < model.rowCount(); ++row) {
            if (model.itemAt(row).fileName() == name) {
                return model.index(row);
            }
        }
        return {};
    }
    QRect rectOf(const QString& name) const { return view.visualRect(indexOf(name)); }
    QImage grab() {
        return view.viewport()->grab().toImage().convertToFormat(QImage::Format_RGB32);
    }

    ScreenshotListModel model;
    ScreenshotThumbnail cell;
    QListView view;
};

}  // namespace

class ScreenshotThumbnailTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void menuOfAnImageWithAnEventDiffersFromAVideoWithout() {
        TemporaryLibrary library;
        library.writePng("Desktop/Shot.png");
        library.writeFile("Desktop/clip.mp4", "not really a recording");
        QVERIFY(library.openUntilIdle());
        const auto shot = library.item("Shot.png");
        const auto clip = library.item("clip.mp4");
        QVERIFY(shot && clip);
        library.metadata.setEvent(ScreenshotEvent{"Review", ""}, shot->path());
        ThumbnailActions actions(library.metadata);
        actions.setLibrary(&library.store());

        const std::unique_ptr<QMenu> imageMenu(actions.buildMenu(*shot));
        QCOMPARE(entries(*imageMenu),
                 QStringList({"Color Label", "Edit Event…", "Remove Event", "Copy Image", kDivider,
                              "Rename…", kDivider, "Move to Trash"}));
        for (const QAction* action : imageMenu->actions()) {
            QVERIFY2(action->isSeparator() || !action->icon().isNull(), qPrintable(action->text()));
        }
        QMenu* colors = imageMenu->actions().first()->menu();
        QVERIFY(colors);
        QCOMPARE(entries(*colors), QStringList({"Red", "Orange", "Yellow", "Green", "Blue",
                                                "Purple", kDivider, "None"}));

        const std::unique_ptr<QMenu> videoMenu(actions.buildMenu(*clip));
        QCOMPARE(entries(*videoMenu), QStringList({"Color Label", "Add Event…", kDivider, "Rename…",
                                                   kDivider, "Move to Trash"}));

        // "Remove Event" clears title and note; the next menu no longer offers it.
        entry(*imageMenu, "Remove Event")->trigger();
        QVERIFY(!library.metadata.recordFor(shot->path()).event);
        const std::unique_ptr<QMenu> nextMenu(actions.buildMenu(*shot));
        QVERIFY(!entry(*nextMenu, "Remove Event"));
        QVERIFY(entry(*nextMenu, "Add Event…"));

        // "Move to Trash" takes the capture out of the library and its file
        // into the trash.
        entry(*videoMenu, "Move to Trash")->trigger();
        QVERIFY(library.waitUntilIdle());
        QCOMPARE(library.names(), QStringList({"Shot.png"}));
        QVERIFY(!QFile::exists(clip->path()));
        QVERIFY(QFile::exists(library.trashed("clip.mp4")));
    }

    void colorSubmenuSetsLabelsAndNoneClears() {
        TemporaryLibrary library;
        library.writePng("Desktop/Labelled.png");
        library.writePng("Desktop/Plain.png");
        QVERIFY(library.openUntilIdle());
        const auto labelled = library.item("Labelled.png");
        const auto plain = library.item("Plain.png");
        ThumbnailActions actions(library.metadata);

        auto chooseColor = [&](const ScreenshotItem& item, const QString& name) {
            const std::unique_ptr<QMenu> menu(actions.buildMenu(item));
            QMenu* colors = menu->actions().first()->menu();
            QAction* choice = entry(*colors, name);
            QVERIFY(choice);
            choice->trigger();
        };
        chooseColor(*labelled, "Blue");
        QCOMPARE(library.metadata.recordFor(labelled->path()).colorLabel, ColorLabel::blue);
        // Choosing the current label again keeps it.
        chooseColor(*labelled, "Blue");
        QCOMPARE(library.metadata.recordFor(labelled->path()).colorLabel, ColorLabel::blue);

        // The current label's swatch carries the white tick; the others are plain.
        const auto swatch = [](bool current) {
            return ThumbnailActions::colorLabelIcon(ColorLabel::blue, current)
                .pixmap(16, 16)
                .toImage()
                .convertToFormat(QImage::Format_ARGB32);
        };
        const QImage current = swatch(true);
        const QImage other = swatch(false);
        auto whitePixels = [](const QImage& image) {
            int count = 0;
            for (int y = 0; y < image.height(); ++y) {
                for (int x = 0; x < image.width(); ++x) {
                    const QRgb pixel = image.pixel(x, y);
                    count += qAlpha(pixel) > 200 && qGray(pixel) > 200 ? 1 : 0;
                }
            }
            return count;
        };
        QCOMPARE(whitePixels(other), 0);
        QVERIFY(whitePixels(current) > 0);
        QVERIFY(near(other.pixel(8, 8), colorLabelColor(ColorLabel::blue), 2));

        chooseColor(*labelled, "None");
        QVERIFY(!library.metadata.recordFor(labelled->path()).colorLabel);
        // "None" on a capture that never had a label leaves it without one.
        chooseColor(*plain, "None");
        QVERIFY(!library.metadata.recordFor(plain->path()).colorLabel);
        QVERIFY(!library.metadata.metadata().contains("Plain.png"));
    }

    void eventDialogStoresTheTrimmedTitleAndIgnoresBlankText() {
        TemporaryLibrary library;
        library.writePng("Desktop/Shot.png");
        QVERIFY(library.openUntilIdle());
        const auto shot = library.item("Shot.png");
        ThumbnailActions actions(library.metadata);

        PromptSeen added;
        answerPrompt("Add Event", "  Design review \t", "Save", &added);
        entry(*std::unique_ptr<QMenu>(actions.buildMenu(*shot)), "Add Event…")->trigger();
        QVERIFY(added.shown);
        QCOMPARE(added.fieldText, QString());
        QCOMPARE(added.placeholder, QString("e.g. Fix issue, Design review…"));
        QCOMPARE(added.fieldAccessibleName, QString("Event title"));
        QCOMPARE(added.windowAccessibleName, QString("Add Event"));
        QVERIFY(added.acceptIsDefault);
        QCOMPARE(library.metadata.recordFor(shot->path()).event,
                 ScreenshotEvent({"Design review", ""}));

        // Only spaces: the old event stays.
        PromptSeen blank;
        answerPrompt("Edit Event", "   ", "Save", &blank);
        entry(*std::unique_ptr<QMenu>(actions.buildMenu(*shot)), "Edit Event…")->trigger();
        QVERIFY(blank.shown);
        QCOMPARE(blank.fieldText, QString("Design review"));
        QCOMPARE(blank.selectedText, QString("Design review"));
        QCOMPARE(library.metadata.recordFor(shot->path()).event,
                 ScreenshotEvent({"Design review", ""}));

        // "Cancel" keeps it too, whatever was typed.
        PromptSeen cancelled;
        answerPrompt("Edit Event", "Other", "Cancel", &cancelled);
        actions.editEvent(*shot);
        QVERIFY(cancelled.shown);
        QCOMPARE(library.metadata.recordFor(shot->path()).event,
                 ScreenshotEvent({"Design review", ""}));

        // Saving replaces the title and empties an earlier note.
        library.metadata.setEvent(ScreenshotEvent{"Design review", "with a note"}, shot->path());
        PromptSeen edited;
        answerPrompt("Edit Event", "Fix issue", "Save", &edited);
        actions.editEvent(*shot);
        QCOMPARE(library.metadata.recordFor(shot->path()).event,
                 ScreenshotEvent({"Fix issue", ""}));
    }

    void renameKeepsTheExtensionAndLeavesTheLabelBehind() {
        TemporaryLibrary library;
        library.writePng("Desktop/Screenshot 1.png");
        QVERIFY(library.openUntilIdle());
        const auto original = library.item("Screenshot 1.png");
        QVERIFY(original);
        const QByteArray bytes = readFileBytes(original->path());
        library.metadata.setColorLabel(ColorLabel::red, original->path());
        ThumbnailActions actions(library.metadata);
        actions.setLibrary(&library.store());

        PromptSeen first;
        answerPrompt("Rename Screenshot", "Bug 12", "Rename", &first);
        entry(*std::unique_ptr<QMenu>(actions.buildMenu(*original)), "Rename…")->trigger();
        QVERIFY(first.shown);
        QCOMPARE(first.fieldText, QString("Screenshot 1"));
        QCOMPARE(first.selectedText, QString("Screenshot 1"));
        QCOMPARE(first.fieldAccessibleName, QString("New name"));
        QVERIFY(QTest::qWaitFor([&] { return library.names() == QStringList({"Bug 12.png"}); },
                                kWaitMs));
        QVERIFY(!QFile::exists(original->path()));
        QCOMPARE(readFileBytes(library.desktop("Bug 12.png")), bytes);
        // The label stays filed under the old name.
        QVERIFY(!library.metadata.recordFor(library.desktop("Bug 12.png")).colorLabel);
        QCOMPARE(library.metadata.recordFor(original->path()).colorLabel, ColorLabel::red);

        // A typed extension is part of the name.
        PromptSeen second;
        answerPrompt("Rename Screenshot", "Bug.png", "Rename", &second);
        auto outcome = actions.rename(*library.item("Bug 12.png"));
        QVERIFY(QTest::qWaitFor([&] { return outcome.isFinished(); }, kWaitMs));
        QCOMPARE(second.fieldText, QString("Bug 12"));
        QVERIFY(outcome.result().has_value());
        QVERIFY(outcome.result()->succeeded());
        QVERIFY(QTest::qWaitFor([&] { return library.names() == QStringList({"Bug.png.png"}); },
                                kWaitMs));

        // Blank text renames nothing.
        PromptSeen blank;
        answerPrompt("Rename Screenshot", "  ", "Rename", &blank);
        outcome = actions.rename(*library.item("Bug.png.png"));
        QVERIFY(QTest::qWaitFor([&] { return outcome.isFinished(); }, kWaitMs));
        QVERIFY(blank.shown);
        QVERIFY(!outcome.result().has_value());
        QVERIFY(QFile::exists(library.desktop("Bug.png.png")));
    }

    void renameOntoAnExistingNameFailsAndKeepsBothFiles() {
        TemporaryLibrary library;
        library.writePng("Desktop/a.png", {320, 200}, Qt::white, Qt::white);
        library.writePng("Desktop/b.png", {320, 200}, Qt::black, Qt::black);
        QVERIFY(library.openUntilIdle());
        const QByteArray a = readFileBytes(library.desktop("a.png"));
        const QByteArray b = readFileBytes(library.desktop("b.png"));
        ThumbnailActions actions(library.metadata);
        actions.setLibrary(&library.store());

        PromptSeen prompt;
        QString failureText;
        QString failureDetails;
        QString failureAccessibleName;
        answerPrompt("Rename Screenshot", "b", "Rename", &prompt);
        whenModalShows("Rename failed", [&](QWidget* window) {
            auto* box = qobject_cast<QMessageBox*>(window);
            if (box) {
                failureText = box->text();
                failureDetails = box->informativeText();
                failureAccessibleName = box->accessibleName();
            }
            window->close();
        });
        auto outcome = actions.rename(*library.item("a.png"));
        QVERIFY(QTest::qWaitFor([&] { return outcome.isFinished(); }, kWaitMs));
        QVERIFY(prompt.shown);
        QCOMPARE(failureText, QString("Rename failed"));
        QCOMPARE(failureAccessibleName, QString("Rename failed"));
        QVERIFY(!failureDetails.isEmpty());
        QVERIFY(outcome.result().has_value() && !outcome.result()->succeeded());
        QCOMPARE(outcome.result()->errorMessage, failureDetails);

        QCOMPARE(readFileBytes(library.desktop("a.png")), a);
        QCOMPARE(readFileBytes(library.desktop("b.png")), b);
    }

    void copyImagePutsThePicturesPixelsOnTheClipboard() {
        TemporaryLibrary library;
        library.writePng("Desktop/Shot.png", {37, 23}, QColor(10, 200, 30), QColor(250, 5, 120));
        library.writeFile("Desktop/Broken.png", "\x89PNG\r\n\x1a\n but then nothing");
        QVERIFY(library.openUntilIdle());
        ThumbnailActions actions(library.metadata);
        QClipboard* clipboard = QGuiApplication::clipboard();

        clipboard->setText("before");
        auto broken = actions.copyImage(*library.item("Broken.png"));
        QVERIFY(QTest::qWaitFor([&] { return broken.isFinished(); }, kWaitMs));
        QCOMPARE(broken.result(), false);
        QCOMPARE(clipboard->text(), QString("before"));

        // Through the menu entry, as a user copies.
        const std::unique_ptr<QMenu> menu(actions.buildMenu(*library.item("Shot.png")));
        entry(*menu, "Copy Image")->trigger();
        QVERIFY(QTest::qWaitFor(
            [&] {
                const QMimeData* mime = clipboard->mimeData();
                return mime && mime->hasFormat("image/png");
            },
            kWaitMs));
        const QImage pasted = QImage::fromData(clipboard->mimeData()->data("image/png"), "PNG");
        const QImage file(library.desktop("Shot.png"));
        QCOMPARE(pasted.size(), QSize(37, 23));
        QCOMPARE(pasted.convertToFormat(QImage::Format_RGB32),
                 file.convertToFormat(QImage::Format_RGB32));
        QVERIFY(clipboard->mimeData()->hasImage());
    }

    void labelledCellIsFramedInItsColourAndVideoCellCarriesThePlayBadge() {
        TemporaryLibrary library;
        library.writePng("Desktop/Labelled.png");
        library.writePng("Desktop/Plain.png");
        library.writeFile("Desktop/clip.mp4", "not really a recording");
        QVERIFY(library.openUntilIdle());
        Gallery gallery(library);
        const QRect labelled = gallery.rectOf("Labelled.png");
        const QRect plain = gallery.rectOf("Plain.png");
        QCOMPARE(labelled.size(), kCell);
        const QPoint topEdge(labelled.center().x(), labelled.top());
        QVERIFY(near(gallery.grab().pixel(topEdge), Qt::white, 12));

        // Labelled while shown, through the cell's own menu: the grid redraws.
        const std::unique_ptr<QMenu> menu(
            gallery.cell.actions().buildMenu(*library.item("Labelled.png")));
        entry(*menu->actions().first()->menu(), "Green")->trigger();
        const QColor framed = blend(colorLabelColor(ColorLabel::green), 0.7, Qt::white);
        QVERIFY(QTest::qWaitFor([&] { return near(gallery.grab().pixel(topEdge), framed, 40); },
                                kWaitMs));
        const QImage shot = gallery.grab();
        for (const QPoint& edge : {QPoint(labelled.center().x(), labelled.top()),
                                   QPoint(labelled.left(), labelled.center().y()),
                                   QPoint(labelled.right(), labelled.center().y()),
                                   QPoint(labelled.center().x(), labelled.bottom())}) {
            QVERIFY2(near(shot.pixel(edge), framed, 40), qPrintable(describe(shot.pixel(edge))));
        }
        // The unlabelled cell's edge is the picture itself.
        const QPoint plainEdge(plain.center().x(), plain.top());
        QVERIFY2(near(shot.pixel(plainEdge), Qt::white, 12),
                 qPrintable(describe(shot.pixel(plainEdge))));

        // The play badge: a dark disc 19 px wide, 4 px in from the top-left
        // corner, with a white triangle inside; picture cells have none.
        const QRect video = gallery.rectOf("clip.mp4");
        const QPoint discEdge = video.topLeft() + QPoint(4 + 3, 4 + 9);
        QVERIFY2(qGray(shot.pixel(discEdge)) < 140, qPrintable(describe(shot.pixel(discEdge))));
        int brightest = 0;
        for (int y = video.top() + 9; y < video.top() + 18; ++y) {
            for (int x = video.left() + 10; x < video.left() + 19; ++x) {
                brightest = std::max(brightest, qGray(shot.pixel(x, y)));
            }
        }
        QVERIFY(brightest > 220);
        const QPoint plainCorner = plain.topLeft() + QPoint(4 + 3, 4 + 9);
        QVERIFY(qGray(shot.pixel(plainCorner)) > 240);

        // The age caption sits on a dark plate at the bottom right.
        const QPoint plate = plain.bottomRight() - QPoint(5, 9);
        QVERIFY2(qGray(shot.pixel(plate)) < 150, qPrintable(describe(shot.pixel(plate))));
    }

    void hoverShowsTheCardOnlyForCellsWithDetails() {
        TemporaryLibrary library;
        library.writePng("Desktop/Tagged.png");
        library.writePng("Desktop/Plain.png");
        QVERIFY(library.openUntilIdle());
        library.metadata.setEvent(ScreenshotEvent{"Design review", ""},
                                  library.item("Tagged.png")->path());
        Gallery gallery(library);
        QWidget* viewport = gallery.view.viewport();

        auto hover = [&](const QString& name) {
            const QModelIndex index = gallery.indexOf(name);
            QTest::mouseMove(viewport, gallery.view.visualRect(index).center());
            return QTest::qWaitFor([&] { return gallery.cell.hoverProgress(index) >= 1.0; },
                                   kWaitMs);
        };
        // A point of the card below its text, clear of the age caption.
        auto cardSpot = [&](const QString& name) {
            const QRect rect = gallery.rectOf(name);
            return QPoint(rect.center().x(), rect.bottom() - 30);
        };

        QVERIFY(hover("Tagged.png"));
        QCOMPARE(viewport->cursor().shape(), Qt::PointingHandCursor);
        QImage shot = gallery.grab();
        QVERIFY2(qGray(shot.pixel(cardSpot("Tagged.png"))) < 100,
                 qPrintable(describe(shot.pixel(cardSpot("Tagged.png")))));
        // The badges gave way to the card: no age plate at the bottom right.
        const QRect tagged = gallery.rectOf("Tagged.png");
        const QPoint plate = tagged.bottomRight() - QPoint(5, 9);
        QVERIFY(qGray(shot.pixel(plate)) < 100);  // the card's own black

        // Without details only the cell grows: no card.
        QVERIFY(hover("Plain.png"));
        QVERIFY(QTest::qWaitFor(
            [&] { return gallery.cell.hoverProgress(gallery.indexOf("Tagged.png")) == 0; },
            kWaitMs));
        shot = gallery.grab();
        QVERIFY2(qGray(shot.pixel(cardSpot("Plain.png"))) > 230,
                 qPrintable(describe(shot.pixel(cardSpot("Plain.png")))));
        QVERIFY(qGray(shot.pixel(cardSpot("Tagged.png"))) > 230);

        // Off every cell: no hover, the usual cursor.
        QTest::mouseMove(viewport, QPoint(viewport->width() - 2, viewport->height() - 2));
        QVERIFY(QTest::qWaitFor([&] { return !gallery.cell.hoveredIndex().isValid(); }, kWaitMs));
        QVERIFY(viewport->cursor().shape() != Qt::PointingHandCursor);
    }

    void oddRowsAndSizesDrawSafely() {
        TemporaryLibrary library;
        ScreenshotThumbnail cell(library.metadata);
        QStandardItemModel model;
        model.appendRow(new QStandardItem("no capture here"));
        QImage sliverPicture(1, 500, QImage::Format_RGB32);
        sliverPicture.fill(Qt::red);
        const ScreenshotItem sliver(library.desktop("sliver.png"), QDateTime::currentDateTimeUtc(),
                                    QDateTime::currentDateTimeUtc(), sliverPicture);
        auto* withItem = new QStandardItem();
        withItem->setData(QVariant::fromValue(sliver), ScreenshotListModel::ItemRole);
        model.appendRow(withItem);
        library.metadata.setEvent(ScreenshotEvent{QString(300, QLatin1Char('x')), ""},
                                  sliver.path());

        QImage canvas(200, 200, QImage::Format_ARGB32_Premultiplied);
        canvas.fill(Qt::transparent);
        QPainter painter(&canvas);
        QStyleOptionViewItem option;
        option.rect = QRect(10, 10, 160, 100);
        // A row without a capture draws nothing.
        cell.paint(&painter, option, model.index(0, 0));
        painter.end();
        QCOMPARE(canvas.pixel(90, 60), qRgba(0, 0, 0, 0));

        painter.begin(&canvas);
        for (const QRect& rect : {QRect(0, 0, 0, 0), QRect(5, 5, 1, 1), QRect(0, 0, 3, 200),
                                  QRect(0, 0, 200, 3), QRect(10, 10, 160, 100)}) {
            option.rect = rect;
            cell.paint(&painter, option, model.index(1, 0));
        }
        painter.end();
        // A sliver-shaped picture still fills the cell.
        QCOMPARE(canvas.pixel(90, 60), qRgb(255, 0, 0));
    }

    void clickSelectsTheCellAndRightClickOpensItsMenu() {
        TemporaryLibrary library;
        library.writePng("Desktop/Shot.png");
        QVERIFY(library.openUntilIdle());
        Gallery gallery(library);
        QWidget* viewport = gallery.view.viewport();
        const QRect rect = gallery.rectOf("Shot.png");
        QSignalSpy selected(&gallery.cell, &ScreenshotThumbnail::selected);

        // A press that moves away before the release is no click.
        QTest::mousePress(viewport, Qt::LeftButton, {}, rect.center());
        QTest::mouseMove(viewport, rect.center() + QPoint(30, 0));
        QTest::mouseRelease(viewport, Qt::LeftButton, {}, rect.center() + QPoint(30, 0));
        QTest::qWait(50);
        QCOMPARE(selected.count(), 0);

        QTest::mouseClick(viewport, Qt::LeftButton, {}, rect.center());
        QVERIFY(selected.count() == 1 || selected.wait(kWaitMs));
        QCOMPARE(selected.first().first().value<ScreenshotItem>().fileName(), QString("Shot.png"));

        // Right-clicking the cell opens its menu (the menu names the file);
        // so does the menu key on the current cell.
        auto menuShownFor = [&](QWidget* receiver, QContextMenuEvent::Reason reason,
                                const QPoint& position) {
            QStringList shownEntries;
            QString menuName;
            auto* poll = new QTimer(this);
            poll->setInterval(10);
            connect(poll, &QTimer::timeout, poll, [&, poll] {
                auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
                if (!menu || !menu->isVisible()) {
                    return;
                }
                poll->stop();
                poll->deleteLater();
                shownEntries = entries(*menu);
                menuName = menu->accessibleName();
                menu->close();
            });
            poll->start();
            QContextMenuEvent request(reason, position, receiver->mapToGlobal(position));
            QCoreApplication::sendEvent(receiver, &request);
            return shownEntries.isEmpty()
                       ? QString()
                       : menuName + ": " + shownEntries.first() + " … " + shownEntries.last();
        };
        const QString expected("Shot.png: Color Label … Move to Trash");
        QCOMPARE(menuShownFor(viewport, QContextMenuEvent::Mouse, rect.center()), expected);
        gallery.view.setCurrentIndex(gallery.indexOf("Shot.png"));
        QCOMPARE(menuShownFor(&gallery.view, QContextMenuEvent::Keyboard, QPoint(1, 1)), expected);
    }
};

QTEST_MAIN(ScreenshotThumbnailTest)
#include "screenshot_thumbnail_test.moc"
