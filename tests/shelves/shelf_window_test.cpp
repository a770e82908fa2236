// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

// The shelves window over real shelf folders next to a real library in a
// temporary folder, with the real freedesktop trash. Drags are delivered as
// Qt drag events.
#include "shelves/shelf_window.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QListWidget>
#include <QMimeData>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

#include "shelves/new_shelf_card.h"
#include "shelves/shelf_card.h"
#include "shelves/shelf_detail_view.h"
#include "shelves/shelf_list_view.h"
#include "storage/shelf_store.h"
#include "support/temporary_library.h"

class ShelfWindowTest : public QObject {
    Q_OBJECT

private:
    ShelfWindow& window() { return *window_; }
    ShelfListView& list() { return *window_->listView(); }
    ShelfDetailView& detail() { return *window_->detailView(); }

    // Types `name` into the new-shelf card and ends with `key`.
    void typeNewShelf(const QString& name, Qt::Key key) {
        QTest::mouseClick(list().newShelfButton(), Qt::LeftButton);
        QVERIFY(list().isCreating());
        QLineEdit* field = list().newShelfCard()->nameField();
        field->clear();
        QTest::keyClicks(field, name);
        QTest::keyClick(field, key);
    }

    // Opens the shelf named `name` and waits for its files.
    void openShelf(const QString& name) {
        const auto& cards = list().cards();
        const auto card = std::find_if(cards.begin(), cards.end(),
                                       [&](ShelfCard* c) { return c->shelf().name == name; });
        QVERIFY(card != cards.end());
        QSignalSpy listed(&detail(), &ShelfDetailView::filesListed);
        QTest::mouseClick(*card, Qt::LeftButton);
        QVERIFY(window().isShowingDetail());
        QVERIFY(listed.wait());
    }

    bool drop(const QStringList& files) {
        QMimeData mime;
        QList<QUrl> urls;
        for (const QString& file : files) {
            urls.append(QUrl::fromLocalFile(file));
        }
        mime.setUrls(urls);
        QDragEnterEvent enter(QPoint(50, 200), Qt::MoveAction, &mime, Qt::LeftButton,
                              Qt::NoModifier);
        QApplication::sendEvent(&detail(), &enter);
        if (!enter.isAccepted() || detail().dropAreaText() != QStringLiteral("Release to add")) {
            return false;
        }
        QDropEvent dropEvent(QPointF(50, 200), Qt::MoveAction, &mime, Qt::LeftButton,
                             Qt::NoModifier);
        QApplication::sendEvent(&detail(), &dropEvent);
        return dropEvent.isAccepted();
    }

    QString shelfFolder(const QString& name) const {
        return library_->desktop(ShelfStore::folderName(name));
    }

    std::unique_ptr<TemporaryLibrary> library_;
    std::unique_ptr<ShelfStore> store_;
    std::unique_ptr<ShelfWindow> window_;
    QList<ScreenshotItem> previewed_;

private Q_SLOTS:
    void init() {
        library_ = std::make_unique<TemporaryLibrary>();
        library_->writePng("Desktop/capture.png", {64, 40}, Qt::red, Qt::blue);
        QVERIFY(library_->openUntilIdle());
        store_ = std::make_unique<ShelfStore>(library_->path("shelves"), library_->path("old"),
                                              library_->settings, library_->desktop());
        previewed_.clear();
        window_ = std::make_unique<ShelfWindow>(
            ShelfWindow::Stores{*store_, library_->settings, library_->preferences,
                                library_->metadata, library_->store()},
            [this](const ScreenshotItem& item) { previewed_.append(item); });
        window_->present();
        QVERIFY(QTest::qWaitForWindowExposed(window_.get()));
    }

    void cleanup() {
        window_.reset();
        store_.reset();
        library_.reset();
    }

    void windowIsTheShelvesWindowAndClosingOnlyHidesIt() {
        QCOMPARE(window().windowTitle(), QStringLiteral("Shelves"));
        QCOMPARE(window().minimumSize(), QSize(340, 420));
        QVERIFY(list().isShowingEmptyState());
        window().move(window().pos() + QPoint(7, 5));
        window().close();
        QVERIFY(!window().isVisible());
        QVERIFY(!library_->preferences.windowFrame(QStringLiteral("ShelfWindow")).isEmpty());
    }

    void aSecondWindowComesBackWithTheRememberedSize() {
        window().resize(410, 530);
        QTRY_COMPARE(window().size(), QSize(410, 530));
        window().hide();
        ShelfWindow again({*store_, library_->settings, library_->preferences, library_->metadata,
                           library_->store()},
                          {});
        QCOMPARE(again.size(), QSize(410, 530));
    }

    void cardsRenameInPlaceAndIgnoreRefusedNames() {
        QVERIFY(!store_->createShelf(QStringLiteral("Old")));
        QVERIFY(!store_->createShelf(QStringLiteral("Taken")));
        const auto renameFirst = [this](const QString& text, Qt::Key key) {
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            ShelfCard* card = list().cards().constFirst();
            card->startRenaming();
            QCOMPARE(card->renameField()->text(), card->shelf().name);
            card->renameField()->setText(text);
            QTest::keyClick(card->renameField(), key);
            QVERIFY(!card->isRenaming());
        };
        renameFirst(QStringLiteral(" New\t"), Qt::Key_Return);
        QCOMPARE(store_->shelves().constFirst().name, QStringLiteral("New"));
        QVERIFY(QFileInfo(shelfFolder("New")).isDir());
        QVERIFY(!QFileInfo::exists(shelfFolder("Old")));

        renameFirst(QStringLiteral("Taken"), Qt::Key_Return);
        renameFirst(QStringLiteral("Elsewhere"), Qt::Key_Escape);
        QCOMPARE(store_->shelves().constFirst().name, QStringLiteral("New"));
        QVERIFY(list().errorMessage().isEmpty());
    }

    void newShelfCardCreatesRefusesDuplicatesAndCancels() {
        typeNewShelf(QStringLiteral("  Design\t"), Qt::Key_Return);
        QVERIFY(QFileInfo(shelfFolder("Design")).isDir());
        QVERIFY(!list().isCreating());
        QVERIFY(!list().isShowingEmptyState());
        QCOMPARE(list().cards().size(), 1);
        QCOMPARE(list().cards().constFirst()->shelf().name, QStringLiteral("Design"));

        typeNewShelf(QStringLiteral("Design"), Qt::Key_Return);
        QVERIFY(list().isCreating());
        QCOMPARE(list().errorMessage(), QStringLiteral("A shelf with that name already exists."));
        QCOMPARE(list().newShelfCard()->name(), QStringLiteral("Design"));

        QTest::keyClick(list().newShelfCard()->nameField(), Qt::Key_Escape);
        QVERIFY(!list().isCreating());
        QVERIFY(list().errorMessage().isEmpty());

        typeNewShelf(QStringLiteral("   "), Qt::Key_Return);
        QVERIFY(!list().isCreating());
        QCOMPARE(store_->shelves().size(), 1);
        typeNewShelf(QStringLiteral("Later"), Qt::Key_Escape);
        QCOMPARE(store_->shelves().size(), 1);
        QVERIFY(!QFileInfo::exists(shelfFolder("Later")));
    }

    void cardsCountFilesAndPreviewOnlyPictures() {
        QVERIFY(!store_->createShelf(QStringLiteral("Pictures")));
        QVERIFY(!store_->createShelf(QStringLiteral("Films")));
        library_->writePng("Desktop/Pictures:shelf/a.png", {30, 20}, Qt::green, Qt::green);
        library_->writeFile("Desktop/Pictures:shelf/notes.txt", "not media");
        library_->writeFile("Desktop/Films:shelf/clip.mp4", "not really a video");
        list().reload();
        for (ShelfCard* card : list().cards()) {
            QSignalSpy loaded(card, &ShelfCard::contentLoaded);
            QVERIFY(card->itemCount() >= 0 || loaded.wait());
            const bool pictures = card->shelf().name == QStringLiteral("Pictures");
            QCOMPARE(card->itemCount(), 1);
            QCOMPARE(card->hasPreview(), pictures);
        }
    }

    void detailListsTheFolderAndADropMovesTheCaptureIn() {
        QVERIFY(!store_->createShelf(QStringLiteral("Inbox")));
        library_->writePng("Desktop/Inbox:shelf/old.png", {30, 20}, Qt::green, Qt::green);
        list().reload();
        openShelf(QStringLiteral("Inbox"));
        QCOMPARE(detail().files(), QStringList{shelfFolder("Inbox") + "/old.png"});
        QCOMPARE(detail().grid()->count(), 1);
        QVERIFY(detail().dropAreaText().isEmpty());

        const QString capture = library_->desktop("capture.png");
        library_->metadata.setColorLabel(ColorLabel::blue, capture);
        QSignalSpy dropped(&detail(), &ShelfDetailView::dropFinished);
        QVERIFY(drop({capture}));
        QVERIFY(dropped.wait());
        QCOMPARE(dropped.constFirst().at(1).toBool(), true);
        const QString moved = shelfFolder("Inbox") + "/capture.png";
        QVERIFY(!QFileInfo::exists(capture));
        QCOMPARE(QImage(moved).pixelColor(2, 2), QColor(Qt::red));
        QVERIFY(detail().files().contains(moved));
        QCOMPARE(detail().grid()->count(), 2);
        QVERIFY(!library_->item("capture.png"));
        QVERIFY(!library_->metadata.recordFor(moved).colorLabel);

        // A name already in the shelf leaves the file where it was.
        const QString twin = library_->writeFile("elsewhere/old.png", "twin");
        QVERIFY(drop({twin}));
        QVERIFY(dropped.wait());
        QCOMPARE(dropped.last().at(1).toBool(), false);
        QVERIFY(QFileInfo::exists(twin));
        QCOMPARE(detail().grid()->count(), 2);

        detail().openPreview(moved);
        QCOMPARE(previewed_.size(), 1);
        QCOMPARE(previewed_.constFirst().path(), moved);
    }

    void moveToTrashRemovesTheTileAndBackShowsTheList() {
        QVERIFY(!store_->createShelf(QStringLiteral("Bin")));
        const QString file =
            library_->writePng("Desktop/Bin:shelf/gone.png", {30, 20}, Qt::green, Qt::green);
        list().reload();
        openShelf(QStringLiteral("Bin"));
        QSignalSpy trashed(&detail(), &ShelfDetailView::trashFinished);
        detail().moveToTrash(file);
        QVERIFY(trashed.wait());
        QCOMPARE(trashed.constFirst().at(1).toBool(), true);
        QVERIFY(!QFileInfo::exists(file));
        QVERIFY(QFileInfo::exists(library_->trashed("gone.png")));
        QVERIFY(detail().files().isEmpty());
        QCOMPARE(detail().dropAreaText(), QStringLiteral("Drop files here"));

        QTest::mouseClick(detail().backButton(), Qt::LeftButton);
        QVERIFY(!window().isShowingDetail());
        openShelf(QStringLiteral("Bin"));
        QTest::keyClick(&detail(), Qt::Key_Escape);  // the keyboard's way back
        QVERIFY(!window().isShowingDetail());
    }

    // /dev/shm is a tmpfs: the move crosses file systems and copies.
    void changingTheLocationToAnotherFileSystemMovesTheFiles() {
        QTemporaryDir tmpfs(QStringLiteral("/dev/shm/quillix-shelf-window-XXXXXX"));
        QVERIFY(tmpfs.isValid());
        QVERIFY(!store_->createShelf(QStringLiteral("Far")));
        library_->writePng("Desktop/Far:shelf/kept.png", {30, 20}, Qt::green, Qt::green);
        list().reload();
        openShelf(QStringLiteral("Far"));
        detail().changeLocation(tmpfs.path());
        const QString moved = tmpfs.filePath(QStringLiteral("Far:shelf"));
        QTRY_COMPARE_WITH_TIMEOUT(detail().shelf()->folderPath, moved, 20000);
        QCOMPARE(QImage(moved + "/kept.png").pixelColor(1, 1), QColor(Qt::green));
        QVERIFY(!QFileInfo::exists(shelfFolder("Far")));
        QCOMPARE(library_->settings.lastShelfLocation(), std::optional<QString>(tmpfs.path()));
    }

    void changingTheLocationRemembersTheFolderEvenWhenTheMoveFails() {
        QVERIFY(!store_->createShelf(QStringLiteral("Roam")));
        list().reload();
        openShelf(QStringLiteral("Roam"));
        const QString blocked = library_->path("blocked");
        QVERIFY(QDir().mkpath(blocked + "/Roam:shelf"));
        detail().changeLocation(blocked);
        QCOMPARE(library_->settings.lastShelfLocation(), std::optional<QString>(blocked));
        QTRY_VERIFY(!store_->isMoving(store_->shelves().constFirst().id));
        QCOMPARE(store_->shelves().constFirst().folderPath, shelfFolder("Roam"));
    }
};

QTEST_MAIN(ShelfWindowTest)
#include "shelf_window_test.moc"
