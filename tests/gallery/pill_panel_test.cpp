// The pill under the gallery: its buttons and the trash drop target, over a
// real library in a temporary folder, the real freedesktop trash and the
// real canberra player. Drags are delivered as Qt drag events; the
// end-to-end tests drag with the real pointer.
#include "gallery/pill_panel.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QMimeData>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

#include "library/capture_registry.h"
#include "library/screenshot_store.h"
#include "platform/canberra/canberra_sound_player.h"
#include "storage/user_defaults.h"
#include "storage/user_settings.h"

class PillPanelTest : public QObject {
    Q_OBJECT

private:
    QString path(const QString& relative) const { return home_.filePath(relative); }

    void writePng(const QString& file) {
        QDir().mkpath(QFileInfo(file).absolutePath());
        QImage image(16, 10, QImage::Format_RGB32);
        image.fill(Qt::darkCyan);
        QVERIFY(image.save(file, "PNG"));
    }

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

    QTemporaryDir home_;
    std::unique_ptr<CaptureRegistry> registry_;
    std::unique_ptr<UserSettings> settings_;
    std::unique_ptr<UserDefaults> defaults_;
    std::unique_ptr<ScreenshotStore> library_;
    CanberraSoundPlayer sounds_;

private Q_SLOTS:
    void init() {
        qputenv("XDG_DATA_HOME", path("data").toUtf8());
        writePng(path("Desktop/listed.png"));
        writePng(path("elsewhere/foreign.png"));
        registry_ = std::make_unique<CaptureRegistry>(path("data/Quillix"), path("legacy"));
        settings_ = std::make_unique<UserSettings>(path("data/Quillix"), path("legacy"));
        settings_->setShowOnlyQuillixItems(false);
        defaults_ = std::make_unique<UserDefaults>(path("config/Quillix.conf"));
        library_ = std::make_unique<ScreenshotStore>(path("Desktop"), path("Pictures/Screenshots"),
                                                     *registry_, *settings_, *defaults_);
        QVERIFY(library_->waitForIdle());
        QCOMPARE(library_->screenshots().size(), 1);
    }

    void cleanup() {
        library_.reset();
        QDir(path("")).removeRecursively();
    }

    void buttonsAreNamedAndLaidOutLeftToRight() {
        PillPanel pill(*library_, sounds_, {});
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
        PillPanel pill(*library_, sounds_, actions);

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
        PillPanel pill(*library_, sounds_, actions);
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
        PillPanel pill(*library_, sounds_, {});
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
        QTRY_VERIFY(library_->screenshots().isEmpty());
        QVERIFY(library_->waitForIdle());
        QVERIFY(!QFileInfo::exists(listed));
        QVERIFY(QFileInfo::exists(path("data/Trash/files/listed.png")));
    }

    void foreignFilesTurnTheTrashRedButAreNeverDeleted() {
        PillPanel pill(*library_, sounds_, {});
        const QString foreign = path("elsewhere/foreign.png");
        const auto mime = dragOf(foreign);
        QVERIFY(enter(pill, mime.get()));
        QVERIFY(pill.content()->trashHovering());
        QVERIFY(!drop(pill, mime.get()));
        QVERIFY(!pill.content()->trashSucking());
        QTest::qWait(300);
        QVERIFY(QFileInfo::exists(foreign));
        QCOMPARE(library_->screenshots().size(), 1);
    }

    void dragsWithoutAFileAreRefusedAndLeavingRestoresTheOutline() {
        PillPanel pill(*library_, sounds_, {});
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
