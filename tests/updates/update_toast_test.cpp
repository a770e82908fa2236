// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

// The update toast on the test desktop: where it lands, that only one is up,
// that it leaves the keyboard where it was, and its buttons and timer.

#include <QAbstractButton>
#include <QApplication>
#include <QCursor>
#include <QLabel>
#include <QLineEdit>
#include <QScreen>
#include <QTest>
#include <QWindow>

#include "updates/update_toast_controller.h"
#include "updates/update_toast_view.h"

namespace {

AppcastRelease release(const QString& version) {
    return {version, QStringLiteral("https://127.0.0.1/q.zip"), std::nullopt, std::nullopt};
}

// The toast windows on screen.
QList<QWidget*> toasts() {
    QList<QWidget*> shown;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->isVisible() && widget->accessibleName() == QStringLiteral("Quillix update")) {
            shown << widget;
        }
    }
    return shown;
}

}  // namespace

class UpdateToastTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { UpdateToastController::setAutoDismissMs(UpdateToastController::kAutoDismissMs); }
    void cleanup();
    void slidesIntoTheTopRightCornerWithoutTakingFocus();
    void aNewerToastReplacesTheShownOne();
    void updateAndRestartRunsTheInstallWithTheRelease();
    void closesByItselfAfterItsTime();
};

void UpdateToastTest::cleanup() {
    if (UpdateToastController* toast = UpdateToastController::current()) {
        toast->dismiss();
    }
    QTRY_VERIFY(toasts().isEmpty());
}

void UpdateToastTest::slidesIntoTheTopRightCornerWithoutTakingFocus() {
    QLineEdit editor;
    editor.setAccessibleName(QStringLiteral("editor"));
    editor.show();
    editor.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&editor));
    QWindow* focused = QGuiApplication::focusWindow();

    UpdateToastController::show(release(QStringLiteral("1.5")), {});
    UpdateToastController* toast = UpdateToastController::current();
    QVERIFY(toast != nullptr);
    QWidget* panel = toast->panel();
    QCOMPARE(panel->size(), QSize(320, 112));
    const QRect area = QGuiApplication::screenAt(QCursor::pos())->availableGeometry();
    const QPoint corner(area.x() + area.width() - 320 - 16, area.y() + 16);
    QVERIFY(panel->pos().y() < corner.y());  // it comes down from above
    QTRY_COMPARE(panel->frameGeometry().topLeft(), corner);
    QTest::qWait(300);
    QCOMPARE(QGuiApplication::focusWindow(), focused);
    QVERIFY(panel->windowFlags().testFlag(Qt::WindowDoesNotAcceptFocus));
    QStringList texts;
    for (const QLabel* label : toast->view()->findChildren<QLabel*>()) {
        texts << label->text();
    }
    QCOMPARE(texts, (QStringList{QStringLiteral("Quillix 1.5 available"),
                                 QStringLiteral("A new version is ready to install")}));
}

void UpdateToastTest::aNewerToastReplacesTheShownOne() {
    UpdateToastController::show(release(QStringLiteral("1.5")), {});
    UpdateToastController::show(release(QStringLiteral("1.6")), {});
    QTRY_COMPARE(toasts().size(), 1);
    QTest::qWait(400);  // the replaced one has faded out by now
    QCOMPARE(toasts().size(), 1);
    auto* view = toasts().constFirst()->findChild<UpdateToastView*>();
    QCOMPARE(view->release().version, QStringLiteral("1.6"));
    QCOMPARE(UpdateToastController::current()->view(), view);
}

void UpdateToastTest::updateAndRestartRunsTheInstallWithTheRelease() {
    QStringList installed;
    UpdateToastController::show(release(QStringLiteral("2.0")), [&](const AppcastRelease& offered) {
        installed << offered.version + QLatin1Char(' ') + offered.downloadURL;
    });
    QAbstractButton* update = UpdateToastController::current()->view()->updateButton();
    QCOMPARE(update->accessibleName(), QStringLiteral("Update & Restart"));
    QTest::mouseClick(update, Qt::LeftButton);
    QCOMPARE(installed, QStringList{QStringLiteral("2.0 https://127.0.0.1/q.zip")});
    QVERIFY(UpdateToastController::current() == nullptr);
    QTRY_VERIFY(toasts().isEmpty());
}

void UpdateToastTest::closesByItselfAfterItsTime() {
    UpdateToastController::setAutoDismissMs(600);
    UpdateToastController::show(release(QStringLiteral("1.5")), {});
    QCOMPARE(toasts().size(), 1);
    QTRY_VERIFY(toasts().isEmpty());
    QVERIFY(UpdateToastController::current() == nullptr);

    UpdateToastController::setAutoDismissMs(UpdateToastController::kAutoDismissMs);
    UpdateToastController::show(release(QStringLiteral("1.5")), {});
    QAbstractButton* close = UpdateToastController::current()->view()->closeButton();
    QCOMPARE(close->accessibleName(), QStringLiteral("Close"));
    QTest::mouseClick(close, Qt::LeftButton);
    QTRY_VERIFY(toasts().isEmpty());
}

QTEST_MAIN(UpdateToastTest)
#include "update_toast_test.moc"
