// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

// The settings window over real stores in a temporary folder, the real
// notification service of the virtual desktop and real files: the autostart
// entry, the copied tray icon, shelf folders.
#include <QAccessible>
#include <QCheckBox>
#include <QClipboard>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QProcess>
#include <QPushButton>
#include <QSignalSpy>
#include <QSlider>
#include <QStandardPaths>
#include <QTest>
#include <QToolButton>

#include "platform/autostart_entry.h"
#include "platform/dbus/freedesktop_notifier.h"
#include "platform/keyboard_layout.h"
#include "settings/about_settings_view.h"
#include "settings/general_settings_view.h"
#include "settings/help_contact_row.h"
#include "settings/help_settings_view.h"
#include "settings/permission_row.h"
#include "settings/rename_shelf_sheet.h"
#include "settings/settings_group.h"
#include "settings/settings_view.h"
#include "settings/settings_window_controller.h"
#include "settings/shelves_settings_view.h"
#include "settings/storage_settings_view.h"
#include "storage/shelf_store.h"
#include "support/temporary_library.h"

class SettingsWindowTest : public QObject {
    Q_OBJECT

private:
    SettingsView& view() { return *controller_->view(); }

    QString readFile(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }

    void clickTimes(QToolButton* button, int times) {
        for (int i = 0; i < times; ++i) {
            QTest::mouseClick(button, Qt::LeftButton);
        }
    }

    std::unique_ptr<TemporaryLibrary> library_;
    std::unique_ptr<ShelfStore> shelves_;
    std::unique_ptr<AutostartEntry> autostart_;
    FixedKeyboardLayout layout_;
    FreedesktopNotifier notifier_;
    std::unique_ptr<SettingsWindowController> controller_;
    int pauses_ = 0;
    int resumes_ = 0;

private Q_SLOTS:
    void init() {
        // The About page shows the version the program sets at start.
        QCoreApplication::setApplicationVersion(QStringLiteral("4.5.6"));
        library_ = std::make_unique<TemporaryLibrary>();
        shelves_ = std::make_unique<ShelfStore>(library_->path("shelves"), library_->path("old"),
                                                library_->settings, library_->desktop());
        autostart_ =
            std::make_unique<AutostartEntry>(library_->path("config/autostart/quillix.desktop"),
                                             library_->path("Quillix app/bin/quillix"));
        pauses_ = resumes_ = 0;
        controller_ = std::make_unique<SettingsWindowController>(
            SettingsServices{library_->preferences,
                             library_->settings,
                             *shelves_,
                             layout_,
                             notifier_,
                             *autostart_,
                             library_->path("data/icons"),
                             [] { return true; },
                             [] { return true; },
                             [this] { ++pauses_; },
                             [this] { ++resumes_; },
                             {}});
        controller_->show();
        QVERIFY(QTest::qWaitForWindowExposed(controller_->window()));
    }

    void cleanup() {
        controller_.reset();
        shelves_.reset();
        library_.reset();
    }

    void theWindowIsMadeOnceWithGeneralFirstAndRemembersItsFrame() {
        QWidget* window = controller_->window();
        QCOMPARE(window->windowTitle(), QStringLiteral("Settings"));
        QCOMPARE(window->size(), QSize(800, 500));
        QCOMPARE(window->minimumSize(), window->maximumSize());
        QCOMPARE(view().selected(), SettingsSection::general);
        QCOMPARE(view().sidebar()->count(), 6);
        QCOMPARE(view().sidebar()->item(3)->text(), QStringLiteral("Shelves"));

        view().select(SettingsSection::about);
        window->hide();
        QVERIFY(!library_->preferences.windowFrame(QStringLiteral("SettingsWindow")).isEmpty());
        controller_->show();
        QCOMPARE(controller_->window(), window);
        QCOMPARE(view().selected(), SettingsSection::about);
    }

    // What a screen reader reads for each control, and Tab reaching it.
    void everyControlIsNamedAndReachableWithTab() {
        for (const SettingsSection section : kAllSettingsSections) {
            view().select(section);
            QTest::qWait(20);
            const QList<QWidget*> widgets = controller_->window()->findChildren<QWidget*>();
            for (QWidget* widget : widgets) {
                if (!widget->isVisible() || !(widget->focusPolicy() & Qt::TabFocus)) {
                    continue;
                }
                QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(widget);
                QVERIFY2(accessible && !accessible->text(QAccessible::Name).isEmpty(),
                         qPrintable(QString::fromLatin1(widget->metaObject()->className())));
            }
        }
        view().select(SettingsSection::general);
        QWidget* general = view().general()->launchAtLoginToggle();
        general->setFocus();
        QSet<QWidget*> reached;
        for (int i = 0; i < 40 && !reached.contains(view().general()->checkForUpdatesToggle());
             ++i) {
            reached.insert(QApplication::focusWidget());
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        }
        QVERIFY(reached.contains(view().general()->autoDismissSlider()));
        QVERIFY(reached.contains(view().general()->onlyQuillixToggle()));
    }

    void generalWritesEachValueAtOnce() {
        GeneralSettingsView& general = *view().general();
        general.launchAtLoginToggle()->click();
        QVERIFY(library_->preferences.launchAtLogin());
        const QString entry = readFile(autostart_->path());
        QVERIFY(entry.contains(QStringLiteral("Exec=\"") +
                               library_->path("Quillix app/bin/quillix") + QLatin1Char('"')));
        const QString validator = QStandardPaths::findExecutable("desktop-file-validate");
        if (!validator.isEmpty()) {
            QProcess validate;
            validate.start(validator, {autostart_->path()});
            QVERIFY(validate.waitForFinished());
            QCOMPARE(validate.readAll(), QByteArray());
            QCOMPARE(validate.exitCode(), 0);
        }
        general.launchAtLoginToggle()->click();
        QVERIFY(!QFile::exists(autostart_->path()));

        general.autoDismissSlider()->setValue(12);
        QCOMPARE(library_->preferences.autoDismissSeconds(), 12.0);
        QCOMPARE(general.autoDismissLabel()->text(), QStringLiteral("12s"));

        const bool showOnly = library_->settings.showOnlyQuillixItems();
        general.onlyQuillixToggle()->click();
        QCOMPARE(library_->settings.showOnlyQuillixItems(), !showOnly);
        QCOMPARE(UserSettings(library_->path("data/Quillix"), {}).showOnlyQuillixItems(),
                 !showOnly);
        QCOMPARE(general.onlyQuillixCaption()->text().startsWith(QStringLiteral("All PNG, MP4")),
                 showOnly);

        QVERIFY(!general.checkNowButton()->isEnabled());
        QTRY_VERIFY(general.notificationsRow()->granted());
    }

    void aChosenIconIsCopiedAndResetLeavesTheFile() {
        GeneralSettingsView& general = *view().general();
        QSignalSpy changed(&general, &GeneralSettingsView::customBarIconChanged);
        const QString svg = library_->writeFile(
            "picked/mark.svg",
            "<svg xmlns='http://www.w3.org/2000/svg' width='18' height='18'><circle cx='9' cy='9' "
            "r='8'/></svg>");
        const QString png = library_->writePng("picked/mark.png", {18, 18}, Qt::red, Qt::blue);
        const QString folder = library_->path("data/icons");

        general.chooseIcon(svg);
        QVERIFY(changed.wait());
        QCOMPARE(changed.last().at(0).toString(), folder + "/custom_bar_icon.svg");
        QCOMPARE(readFile(folder + "/custom_bar_icon.svg"), readFile(svg));
        QVERIFY(general.resetIconButton()->isVisible());

        general.chooseIcon(png);
        QVERIFY(changed.wait());
        QCOMPARE(library_->preferences.customAppIconPath(), folder + "/custom_bar_icon.png");
        QVERIFY(QFile::exists(folder + "/custom_bar_icon.svg"));

        general.chooseIcon(library_->path("picked/missing.png"));
        QVERIFY(!changed.wait(300));
        QCOMPARE(library_->preferences.customAppIconPath(), folder + "/custom_bar_icon.png");

        general.resetIconButton()->click();
        QCOMPARE(changed.last().at(0).toString(), QString());
        QVERIFY(library_->preferences.customAppIconPath().isEmpty());
        QVERIFY(QFile::exists(folder + "/custom_bar_icon.png"));
        QVERIFY(!general.resetIconButton()->isVisible());
    }

    void theSteppersStayOnTheirGridAndInside() {
        QCOMPARE(StorageSettingsView::kAutoClearDaysRange.stepped(30, true), 35);
        QCOMPARE(StorageSettingsView::kAutoClearDaysRange.stepped(30, false), 28);
        QCOMPARE(StorageSettingsView::kAutoClearDaysRange.stepped(364, true), 365);
        QCOMPARE(StorageSettingsView::kAutoClearDaysRange.stepped(365, false), 364);
        QCOMPARE(StorageSettingsView::kMaxScreenshotsRange.stepped(75, true), 100);
        QCOMPARE(StorageSettingsView::kMaxScreenshotsRange.stepped(75, false), 50);
        QCOMPARE(StorageSettingsView::kMaxScreenshotsRange.stepped(5000, false), 1000);

        view().select(SettingsSection::storage);
        SettingsStepper* screenshots = view().storage()->maxScreenshotsStepper();
        clickTimes(screenshots->upButton(), 20);
        QCOMPARE(library_->preferences.maxScreenshots(), 1000);
        QVERIFY(!screenshots->upButton()->isEnabled());
        clickTimes(screenshots->downButton(), 20);
        QCOMPARE(library_->preferences.maxScreenshots(), 50);
        QCOMPARE(screenshots->accessibleName(), QStringLiteral("Keep up to 50 screenshots"));

        SettingsStepper* days = view().storage()->autoClearDaysStepper();
        clickTimes(days->upButton(), 60);
        QCOMPARE(library_->preferences.autoClearDays(), 365);
        clickTimes(days->downButton(), 60);
        QCOMPARE(library_->preferences.autoClearDays(), 7);

        QCOMPARE(view().storage()->saveFolderLabel()->text(), QStringLiteral("~/Desktop"));
        view().storage()->chooseSaveFolder(library_->path("elsewhere"));
        QCOMPARE(library_->preferences.customSaveFolder(), library_->path("elsewhere"));
        QCOMPARE(view().storage()->saveFolderLabel()->text(), library_->path("elsewhere"));
    }

    void shelvesAreCountedRenamedAndDeleted() {
        QVERIFY(!shelves_->createShelf("Empty"));
        QVERIFY(!shelves_->createShelf("One"));
        QVERIFY(!shelves_->createShelf("Two"));
        const auto folder = [this](const QString& name) {
            return QStringLiteral("Desktop/") + ShelfStore::folderName(name);
        };
        library_->writePng(folder("One") + "/a.png");
        library_->writeFile(folder("One") + "/notes.txt", "not media");
        library_->writePng(folder("Two") + "/a.png");
        library_->writeFile(folder("Two") + "/b.mp4", "video");
        view().select(SettingsSection::shelves);
        ShelvesSettingsView& section = *view().shelves();
        QSignalSpy counted(&section, &ShelvesSettingsView::countsShown);
        QVERIFY(counted.wait());
        QCOMPARE(section.shelvesGroup()->title(), QStringLiteral("Your Shelves (3)"));
        const QList<ShelfItem> items = shelves_->shelves();
        QCOMPARE(section.shownItemCount(items.at(0).id), QStringLiteral("0 items"));
        QCOMPARE(section.shownItemCount(items.at(1).id), QStringLiteral("1 item"));
        QCOMPARE(section.shownItemCount(items.at(2).id), QStringLiteral("2 items"));

        section.openRenameSheet(items.at(1));
        RenameShelfSheet* sheet = section.renameSheet();
        QVERIFY(sheet && sheet->isVisible());
        sheet->renameButton()->click();
        QCOMPARE(sheet->errorLabel()->text(),
                 QStringLiteral("A shelf with that name already exists."));
        QVERIFY(sheet->isVisible());
        sheet->nameField()->setText(QStringLiteral("Uno"));
        sheet->renameButton()->click();
        QTRY_VERIFY(!section.renameSheet());
        QCOMPARE(shelves_->shelves().at(1).name, QStringLiteral("Uno"));

        QMenu* menu = section.rowMenu(items.at(0).id);
        QVERIFY(menu);
        QCOMPARE(menu->actions().at(0)->text(), QStringLiteral("Show in File Manager"));
        menu->actions().at(2)->trigger();
        QTRY_COMPARE(section.shelvesGroup()->title(), QStringLiteral("Your Shelves (2)"));
    }

    void helpCopiesAndAboutShowsTheVersion() {
        view().select(SettingsSection::help);
        HelpContactRow* email = view().help()->emailRow();
        email->copyButton()->click();
        QCOMPARE(QGuiApplication::clipboard()->text(), HelpSettingsView::supportEmail());
        QVERIFY(email->copied());
        QTRY_VERIFY_WITH_TIMEOUT(!email->copied(), HelpContactRow::kCopiedMs + 1000);

        view().select(SettingsSection::about);
        const auto labels = view().about()->findChildren<QLabel*>();
        QVERIFY(std::any_of(labels.begin(), labels.end(), [](const QLabel* label) {
            return label->text() == QStringLiteral("Version 4.5.6");
        }));
        QVERIFY(!view().about()->checkButton()->isEnabled());
    }

    void execWordsAreQuotedAsDesktopEntriesNeedThem() {
        QCOMPARE(AutostartEntry::quotedExecArgument("/usr/bin/quillix"),
                 QStringLiteral("/usr/bin/quillix"));
        QCOMPARE(AutostartEntry::quotedExecArgument("/opt/My Apps/quillix"),
                 QStringLiteral("\"/opt/My Apps/quillix\""));
        QCOMPARE(AutostartEntry::quotedExecArgument("/opt/100%/a$b"),
                 QStringLiteral("\"/opt/100%%/a\\\\$b\""));
    }
};

QTEST_MAIN(SettingsWindowTest)
#include "settings_window_test.moc"
