// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

// The welcome window in the virtual desktop: its preferences are a real INI
// file in a temporary folder, read back with a QSettings of the test's own.
#include "onboarding/onboarding_view.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

#include "onboarding/onboarding_window_controller.h"
#include "onboarding/page_dots.h"
#include "onboarding/permission_slide.h"
#include "onboarding/symbol_button.h"
#include "storage/preferences.h"

class OnboardingViewTest : public QObject {
    Q_OBJECT

private:
    QTemporaryDir dir_;
    std::unique_ptr<Preferences> preferences_;
    std::unique_ptr<OnboardingWindowController> controller_;
    bool granted_ = true;
    int settingsOpened_ = 0;

    QString iniPath() const { return dir_.filePath(QStringLiteral("Quillix.conf")); }
    OnboardingView& view() { return *controller_->view(); }

    bool storedAsSeen() const {
        return QSettings(iniPath(), QSettings::IniFormat).value("hasSeenOnboarding").toBool();
    }

    void showWindow() {
        controller_->show();
        QVERIFY(QTest::qWaitForWindowActive(controller_->window()));
    }

    // Dismissed means: stored at once, then the window goes and says so.
    void expectDismissedBy(const std::function<void()>& action) {
        QSignalSpy closed(controller_.get(), &OnboardingWindowController::closed);
        QVERIFY(!storedAsSeen());
        action();
        QVERIFY(storedAsSeen());
        QVERIFY(closed.wait());
        QCOMPARE(closed.count(), 1);
        QVERIFY(!controller_->window()->isVisible());
    }

    // The controls Tab visits on the current slide, from the close button on.
    QSet<QWidget*> tabCycle() {
        QSet<QWidget*> seen;
        view().closeButton()->setFocus(Qt::TabFocusReason);
        for (int press = 0; press < 30; ++press) {
            seen.insert(QApplication::focusWidget());
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        }
        return seen;
    }

private Q_SLOTS:
    void init() {
        QVERIFY(dir_.isValid());
        QFile::remove(iniPath());
        granted_ = true;
        settingsOpened_ = 0;
        preferences_ = std::make_unique<Preferences>(iniPath());
        controller_ =
            std::make_unique<OnboardingWindowController>(OnboardingWindowController::Dependencies{
                .preferences = *preferences_,
                .screenCaptureGranted = [this] { return granted_; },
                .openScreenCaptureSettings = [this] { ++settingsOpened_; }});
    }

    void cleanup() {
        controller_.reset();
        preferences_.reset();
    }

    void theWindowIsNamedAndShowsTheLogo() {
        showWindow();
        QCOMPARE(controller_->window()->windowTitle(), QStringLiteral("Welcome to Quillix"));
        QCOMPARE(controller_->window()->accessibleName(), QStringLiteral("Welcome to Quillix"));
        QCOMPARE(controller_->window()->size(), QSize(520, 360));
        QCOMPARE(view().slide(), 0);
        // The logo comes from the program's resources: some of it is drawn.
        QLabel* logo = nullptr;
        for (QLabel* label : controller_->window()->findChildren<QLabel*>()) {
            if (label->accessibleName() == QStringLiteral("Quillix icon")) {
                logo = label;
            }
        }
        QVERIFY(logo != nullptr);
        const QImage image = logo->pixmap().toImage();
        QVERIFY(image.pixelColor(image.width() / 2, image.height() / 2).alpha() > 0);
    }

    void closingAtAnyTimeRemembersTheSlidesWereSeen() {
        showWindow();
        expectDismissedBy([this] { QTest::mouseClick(view().closeButton(), Qt::LeftButton); });
        // Closing through the window manager is the same.
        cleanup();
        init();
        showWindow();
        view().goToSlide(2);
        expectDismissedBy([this] { controller_->window()->close(); });
        // And so is Escape, wherever the keyboard is.
        cleanup();
        init();
        showWindow();
        expectDismissedBy([] { QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape); });
    }

    void backOnTheFirstSlideIsDimmedAndDoesNothing() {
        showWindow();
        SymbolButton* back = view().backButton();
        QTest::mouseClick(back, Qt::LeftButton);
        QCOMPARE(view().slide(), 0);
        QVERIFY(!back->isEnabled());
        QCOMPARE(back->symbolOpacity(), 0.12);
        view().goToSlide(1);
        QVERIFY(back->isEnabled());
        QCOMPARE(back->symbolOpacity(), 0.5);
        QTest::mouseClick(back, Qt::LeftButton);
        QCOMPARE(view().slide(), 0);
        // The arrow keys turn the slides too.
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
        QCOMPARE(view().slide(), 1);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Left);
        QCOMPARE(view().slide(), 0);
    }

    void nextWalksThroughTheSlidesAndDoneDismisses() {
        showWindow();
        SymbolButton* forward = view().forwardButton();
        for (int slide = 0; slide < OnboardingView::totalSlides - 1; ++slide) {
            QCOMPARE(view().slide(), slide);
            QCOMPARE(forward->accessibleName(), QStringLiteral("Next"));
            QVERIFY(forward->word().isEmpty());
            QTest::mouseClick(forward, Qt::LeftButton);
        }
        QCOMPARE(view().slide(), 4);
        QCOMPARE(view().pageDots()->current(), 4);
        QTRY_COMPARE(view().pageDots()->selection(4), 1.0);
        QCOMPARE(forward->word(), QStringLiteral("Done"));
        QCOMPARE(forward->accessibleName(), QStringLiteral("Done"));
        expectDismissedBy([forward] { QTest::mouseClick(forward, Qt::LeftButton); });
    }

    void thePermissionSlideFollowsTheAnswer() {
        showWindow();
        view().goToSlide(2);
        PermissionSlide* slide = view().permissionSlide();
        QVERIFY(slide->granted());
        QVERIFY(slide->grantedLabel()->isVisible());
        QCOMPARE(slide->grantedLabel()->text(), QStringLiteral("Permission granted"));
        QVERIFY(!slide->grantButton()->isVisible());

        // Not granted: the button opens the settings; coming back to the
        // program asks again.
        granted_ = false;
        view().goToSlide(1);
        view().goToSlide(2);
        QVERIFY(!slide->granted());
        QVERIFY(slide->grantButton()->isVisible());
        QCOMPARE(slide->grantButton()->text(), QStringLiteral("Grant Access"));
        QVERIFY(!slide->grantedLabel()->isVisible());
        QTest::mouseClick(slide->grantButton(), Qt::LeftButton);
        QCOMPARE(settingsOpened_, 1);
        granted_ = true;
        Q_EMIT qApp->applicationStateChanged(Qt::ApplicationActive);
        QVERIFY(slide->grantedLabel()->isVisible());
        QVERIFY(!slide->grantButton()->isVisible());
    }

    void everyControlIsNamedAndReachedWithTab() {
        showWindow();
        granted_ = false;
        for (int slide = 0; slide < OnboardingView::totalSlides; ++slide) {
            view().goToSlide(slide);
            const QSet<QWidget*> reached = tabCycle();
            int controls = 0;
            for (QWidget* widget : controller_->window()->findChildren<QWidget*>()) {
                if ((widget->focusPolicy() & Qt::TabFocus) == 0 || !widget->isVisible() ||
                    !widget->isEnabled()) {
                    continue;
                }
                ++controls;
                QVERIFY2(!widget->accessibleName().isEmpty(), widget->metaObject()->className());
                QVERIFY2(reached.contains(widget), qPrintable(widget->accessibleName()));
            }
            // Close, the dots and next at least; back from the second slide on.
            QVERIFY(controls >= 2 + OnboardingView::totalSlides);
        }
        QCOMPARE(view().pageDots()->dot(2)->accessibleName(), QStringLiteral("Slide 3 of 5"));
    }
};

QTEST_MAIN(OnboardingViewTest)
#include "onboarding_view_test.moc"
