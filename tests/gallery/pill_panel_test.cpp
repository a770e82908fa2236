// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

// The pill under the gallery: its buttons and the trash drop target, over a
// real library in a temporary folder, the real freedesktop trash and the
// real canberra player. Drags are delivered as Qt drag events; the
// end-to-end tests drag with the real pointer.
#include "gallery/pill_panel.h"

#include <QApplication>
#include <QFileInfo>
#include <QMimeData>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QUrl>

#include "platform/canberra/canberra_sound_player.h"
#include "support/temporary_library.h"

class PillPanelTest : public QObject {
    Q_OBJECT

private:
    QString path(const QString& relative) const { return library_->path(relative); }

    static std::unique_ptr<QMimeData> dragOf(const QString& file) {
        auto mime = std::make_unique<QMimeData>();
        mime->setUrls({QUrl::fromLocalFile(file)});
        return mime;
    }

    // Enters the pill with `mime`; whether the pill accepted the drag.
    bool enter(PillPanel& pill, const QMimeData* mime) {
        QDragEnterEvent event(QPoint(160, 22), Qt::CopyAction | Qt::MoveAction, mime,
                              Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&pill, &event);
        return event.isAccepted();
    }
    bool drop(PillPanel& pill, const QMimeData* mime) {
        QDropEvent event(QPointF(160, 22), Qt::CopyAction | Qt::MoveAction, mime, Qt::LeftButton,
                         Qt::NoModifier);
        QApplication::sendEvent(&pill, &event);
        return event.isAccepted();
    }

    std::unique_ptr<TemporaryLibrary> library_;
    CanberraSoundPlayer sounds_;

private Q_SLOTS:
    void init() {
        library_ = std::make_unique<TemporaryLibrary>();
        library_->writePng("Desktop/listed.png", {16, 10}, Qt::darkCyan, Qt::darkCyan);
        library_->writePng("elsewhere/foreign.png", {16, 10}, Qt::darkCyan, Qt::darkCyan);
        QVERIFY(library_->openUntilIdle());
        QCOMPARE(library_->store().screenshots().size(), 1);
    }

    void cleanup() { library_.reset(); }

    void buttonsAreNamedAndLaidOutLeftToRight() {
        PillPanel pill(library_->store(), sounds_, {});
        pill.show();
        QVERIFY(QTest::qWaitForWindowExposed(&pill));
        FooterPillView* content = pill.content();
        QCOMPARE(content->settingsButton()->accessibleName(), QStringLiteral("Settings"));
        QCOMPARE(content->shelvesButton()->accessibleName(), QStringLiteral("Shelves"));
        QCOMPARE(content->quitButton()->accessibleName(), QStringLiteral("Quit"));
        QCOMPARE(content->trashIcon()->accessibleName(), QStringLiteral("Trash"));
        const int settingsX = content->settingsButton()->geometry().x();
        QCOMPARE(settingsX, 20);
        QVERIFY(content->trashIcon()->geometry().x() >
                content->settingsButton()->geometry().right());
        QVERIFY(content->shelvesButton()->geometry().x() >
                content->trashIcon()->geometry().right());
        QCOMPARE(content->quitButton()->geometry().right(), pill.width() - 20 - 1);
    }

    void settingsClosesThePopoverFirstAndQuitWaitsATenthOfASecond() {
        bool settingsShown = false;
        bool quit = false;
        FooterPillView::Actions actions;
        actions.showSettings = [&] { settingsShown = true; };
        actions.quit = [&] { quit = true; };
        int closeRequests = 0;
        actions.closePopover = [&closeRequests] { ++closeRequests; };
        PillPanel pill(library_->store(), sounds_, actions);

        pill.content()->settingsButton()->click();
        QCOMPARE(closeRequests, 1);
        QVERIFY(!settingsShown);
        QTRY_VERIFY(settingsShown);

        pill.content()->quitButton()->click();
        QVERIFY(!quit);
        QTRY_VERIFY(quit);
        QCOMPARE(closeRequests, 1);
    }

    // Shown, the pill leaves the keyboard where it was; reached with Tab its
    // buttons take it in turn, Return presses one and Escape closes the
    // popover.
    void buttonsTakeTheKeyboardOnlyWhenReachedByTab() {
        bool quit = false;
        FooterPillView::Actions actions;
        actions.quit = [&] { quit = true; };
        int closeRequests = 0;
        actions.closePopover = [&closeRequests] { ++closeRequests; };
        PillPanel pill(library_->store(), sounds_, actions);
        pill.showFadingIn();
        QVERIFY(QTest::qWaitForWindowExposed(&pill));
        QTest::qWait(200);
        QVERIFY(!pill.isActiveWindow());
        QCOMPARE(PillPanel::shown(), &pill);

        pill.takeFocus(true);
        QTRY_VERIFY(pill.content()->settingsButton()->hasFocus());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QVERIFY(pill.content()->shelvesButton()->hasFocus());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QVERIFY(pill.content()->quitButton()->hasFocus());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QTRY_VERIFY(quit);

        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QCOMPARE(closeRequests, 1);
    }

    void listedCaptureDroppedOnThePillGoesToTheTrash() {
        PillPanel pill(library_->store(), sounds_, {});
        QSignalSpy played(&sounds_, &CanberraSoundPlayer::played);
        const QString listed = path("Desktop/listed.png");
        const auto mime = dragOf(listed);

        QVERIFY(enter(pill, mime.get()));
        QVERIFY(pill.content()->trashHovering());
        QVERIFY(drop(pill, mime.get()));
        QVERIFY(!pill.content()->trashHovering());
        QVERIFY(pill.content()->trashSucking());
        QTRY_COMPARE(played.count(), 1);
        QCOMPARE(played.at(0).at(0).toString(), QStringLiteral("trash-empty"));
        // The file stays until the swallow is over.
        QVERIFY(QFileInfo::exists(listed));
        QTRY_VERIFY(!pill.content()->trashSucking());
        QTRY_VERIFY(library_->store().screenshots().isEmpty());
        QVERIFY(library_->waitUntilIdle());
        QVERIFY(!QFileInfo::exists(listed));
        QVERIFY(QFileInfo::exists(library_->trashed("listed.png")));
    }

    void foreignFilesTurnTheTrashRedButAreNeverDeleted() {
        PillPanel pill(library_->store(), sounds_, {});
        const QString foreign = path("elsewhere/foreign.png");
        const auto mime = dragOf(foreign);
        QVERIFY(enter(pill, mime.get()));
        QVERIFY(pill.content()->trashHovering());
        QVERIFY(!drop(pill, mime.get()));
        QVERIFY(!pill.content()->trashSucking());
        QTest::qWait(300);
        QVERIFY(QFileInfo::exists(foreign));
        QCOMPARE(library_->store().screenshots().size(), 1);
    }

    void dragsWithoutAFileAreRefusedAndLeavingRestoresTheOutline() {
        PillPanel pill(library_->store(), sounds_, {});
        QMimeData text;
        text.setText(QStringLiteral("just words"));
        QVERIFY(!enter(pill, &text));
        QVERIFY(!pill.content()->trashHovering());

        const auto mime = dragOf(path("Desktop/listed.png"));
        QVERIFY(enter(pill, mime.get()));
        QDragLeaveEvent leave;
        QApplication::sendEvent(&pill, &leave);
        QVERIFY(!pill.content()->trashHovering());
        QVERIFY(QFileInfo::exists(path("Desktop/listed.png")));
    }
};

QTEST_MAIN(PillPanelTest)
#include "pill_panel_test.moc"
