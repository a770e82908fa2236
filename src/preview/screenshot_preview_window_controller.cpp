// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "preview/screenshot_preview_window_controller.h"

#include <QApplication>
#include <QCloseEvent>
#include <QCursor>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMessageBox>
#include <QPointer>
#include <QPropertyAnimation>
#include <QPushButton>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>
#include <QWidget>
#include <algorithm>
#include <memory>

#include "library/screenshot_store.h"
#include "preview/screenshot_preview_view.h"
#include "storage/screenshot_metadata_store.h"

namespace {

const char* const kControllerProperty = "quillixPreviewController";

QScreen* screenUnderPointer() {
    if (QScreen* screen = QGuiApplication::screenAt(QCursor::pos())) {
        return screen;
    }
    return QGuiApplication::primaryScreen();
}

// The open preview windows' controllers, in no particular order.
QList<ScreenshotPreviewWindowController*> openControllers() {
    QList<ScreenshotPreviewWindowController*> controllers;
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (auto* controller = ScreenshotPreviewWindowController::of(window)) {
            if (window->isVisible()) {
                controllers.append(controller);
            }
        }
    }
    return controllers;
}

std::function<void()>& popoverCloser() {
    static std::function<void()> closer;
    return closer;
}

void closePopover() {
    if (popoverCloser()) {
        popoverCloser()();
    }
}

}  // namespace

void ScreenshotPreviewWindowController::setPopoverCloser(std::function<void()> closer) {
    popoverCloser() = std::move(closer);
}

void ScreenshotPreviewWindowController::show(const ScreenshotItem& item) {
    closePopover();
    QTimer::singleShot(kOpenDelayMs, qApp, [item] {
        open(item, ScreenshotMetadataStore::shared(), ScreenshotStore::shared());
    });
}

QWidget* ScreenshotPreviewWindowController::open(const ScreenshotItem& item,
                                                 ScreenshotMetadataStore& metaStore,
                                                 ScreenshotStore& library) {
    auto* window = new QWidget(nullptr, Qt::Tool | Qt::Window | Qt::WindowTitleHint |
                                            Qt::WindowSystemMenuHint | Qt::WindowMinMaxButtonsHint |
                                            Qt::WindowCloseButtonHint);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setWindowTitle(QFileInfo(item.path()).completeBaseName());
    window->setAccessibleName(QFileInfo(item.path()).fileName());
    QScreen* screen = screenUnderPointer();
    const QRect available =
        screen ? screen->availableGeometry()
               : QRect(0, 0, kWidth + 2 * kScreenMargin, kHeight + 2 * kScreenMargin);
    const QRect frame = fittedGeometry(available);
    window->setMinimumSize(fittedMinimumSize(available));
    window->resize(frame.size());

    auto* view = new ScreenshotPreviewView(item, metaStore, library, window);
    auto* layout = new QVBoxLayout(window);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(view);

    auto* controller = new ScreenshotPreviewWindowController(window, view);
    window->setProperty(kControllerProperty, QVariant::fromValue<QObject*>(controller));

    window->move(frame.topLeft());
    // A window still open when the program quits goes with it, so nothing
    // outlives the application object.
    QObject::connect(qApp, &QCoreApplication::aboutToQuit, qApp,
                     [guard = QPointer<QWidget>(window)] { delete guard.data(); });

    window->setWindowOpacity(0.0);
    window->show();
    window->raise();
    window->activateWindow();
    controller->fadeIn();
    return window;
}

ScreenshotPreviewWindowController* ScreenshotPreviewWindowController::of(const QWidget* window) {
    if (!window) {
        return nullptr;
    }
    return qobject_cast<ScreenshotPreviewWindowController*>(
        window->property(kControllerProperty).value<QObject*>());
}

QRect ScreenshotPreviewWindowController::fittedGeometry(const QRect& available) {
    const QSize room = available.size() - QSize(2 * kScreenMargin, 2 * kScreenMargin);
    const QSize size(std::clamp(room.width(), 1, kWidth), std::clamp(room.height(), 1, kHeight));
    const QPoint origin = available.topLeft() + QPoint((available.width() - size.width()) / 2,
                                                       (available.height() - size.height()) / 2);
    return {origin, size};
}

QSize ScreenshotPreviewWindowController::fittedMinimumSize(const QRect& available) {
    return fittedGeometry(available).size().boundedTo(QSize(kMinimumWidth, kMinimumHeight));
}

ScreenshotPreviewWindowController::ScreenshotPreviewWindowController(QWidget* window,
                                                                     ScreenshotPreviewView* view)
    : QObject(window), window_(window), view_(view) {
    window_->installEventFilter(this);
    connect(view_, &ScreenshotPreviewView::fileTrashed, this,
            &ScreenshotPreviewWindowController::followTrash);
}

void ScreenshotPreviewWindowController::settleUnsavedChanges(std::function<void()> proceed) {
    QList<QPointer<ScreenshotPreviewWindowController>> pending;
    for (ScreenshotPreviewWindowController* controller : openControllers()) {
        if (controller->question_) {
            // A question is up already: it is answered first.
            controller->question_->raise();
            controller->question_->activateWindow();
            return;
        }
        if (controller->view_->hasUnsavedChanges()) {
            pending.append(controller);
        }
    }
    if (pending.isEmpty()) {
        proceed();
        return;
    }
    // The popover and its pill float above every window: out of the way.
    closePopover();
    askInTurn(std::move(pending), std::move(proceed));
}

void ScreenshotPreviewWindowController::askInTurn(
    QList<QPointer<ScreenshotPreviewWindowController>> pending, std::function<void()> proceed) {
    while (!pending.isEmpty() && !pending.constFirst()) {
        pending.removeFirst();  // closed meanwhile
    }
    if (pending.isEmpty()) {
        proceed();
        return;
    }
    ScreenshotPreviewWindowController* controller = pending.takeFirst();
    controller->askAboutUnsavedChanges(
        Reason::quitting, [pending = std::move(pending), proceed = std::move(proceed)](bool goOn) {
            if (goOn) {
                askInTurn(pending, proceed);
            }
        });
}

void ScreenshotPreviewWindowController::requestClose() {
    if (closing_) {
        return;
    }
    if (question_) {
        question_->raise();
        question_->activateWindow();
        return;
    }
    if (!view_->hasUnsavedChanges()) {
        fadeOut();
        return;
    }
    askAboutUnsavedChanges(Reason::closing, [this](bool goOn) {
        if (goOn) {
            fadeOut();
        }
    });
}

void ScreenshotPreviewWindowController::askAboutUnsavedChanges(
    Reason reason, const std::function<void(bool)>& done) {
    const QString name = view_->item().fileName();
    auto* box = new QMessageBox(window_);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowModality(Qt::WindowModal);
    box->setIcon(QMessageBox::Warning);
    box->setWindowTitle(kQuestionTitle);
    box->setAccessibleName(kQuestionTitle);
    const QString when =
        reason == Reason::closing ? QStringLiteral("closing") : QStringLiteral("quitting");
    if (view_->isFileGone()) {
        box->setText(
            QStringLiteral("“%1” was moved to the trash. Discard its annotations?").arg(name));
        box->setInformativeText(QStringLiteral("They cannot be saved there any more."));
    } else {
        box->setText(QStringLiteral("Save the annotations on “%1” before %2?").arg(name, when));
        box->setInformativeText(QStringLiteral("If you don't save, they will be lost."));
    }
    box->setAccessibleDescription(box->text());
    QPushButton* save = nullptr;
    if (!view_->isFileGone()) {
        save = box->addButton(QStringLiteral("Save"), QMessageBox::AcceptRole);
        save->setAccessibleName(save->text());
    }
    QPushButton* discard = box->addButton(QStringLiteral("Discard"), QMessageBox::DestructiveRole);
    discard->setAccessibleName(discard->text());
    QPushButton* cancel = box->addButton(QStringLiteral("Cancel"), QMessageBox::RejectRole);
    cancel->setAccessibleName(cancel->text());
    box->setDefaultButton(save ? save : cancel);
    box->setEscapeButton(cancel);
    connect(box, &QMessageBox::finished, this, [this, box, save, discard, done] {
        const QAbstractButton* answer = box->clickedButton();
        if (save && answer == save) {
            saveThen(done);
        } else {
            done(answer == discard);
        }
    });
    question_ = box;
    window_->raise();
    box->open();
}

void ScreenshotPreviewWindowController::saveThen(const std::function<void(bool)>& done) {
    if (!view_->save()) {
        done(false);
        return;
    }
    // Exactly one of the two answers arrives; both connections go with it.
    auto connections = std::make_shared<QList<QMetaObject::Connection>>();
    const auto finish = [connections, done](bool saved) {
        for (const QMetaObject::Connection& connection : *connections) {
            QObject::disconnect(connection);
        }
        done(saved);
    };
    connections->append(
        connect(view_, &ScreenshotPreviewView::saved, this, [finish] { finish(true); }));
    connections->append(
        connect(view_, &ScreenshotPreviewView::saveFailed, this, [finish] { finish(false); }));
}

void ScreenshotPreviewWindowController::followTrash() {
    // Nothing to lose: the window has nothing left to show. Otherwise it
    // stays with its note until the user closes it (and is asked).
    if (!view_->hasUnsavedChanges() && !question_) {
        requestClose();
    }
}

void ScreenshotPreviewWindowController::fadeIn() {
    auto* fade = new QPropertyAnimation(window_, "windowOpacity", this);
    fade->setDuration(kFadeInMs);
    fade->setStartValue(0.0);
    fade->setEndValue(1.0);
    fade->setEasingCurve(QEasingCurve::OutCubic);
    fade_ = fade;
    fade->start(QAbstractAnimation::DeleteWhenStopped);
}

void ScreenshotPreviewWindowController::fadeOut() {
    closing_ = true;
    if (fade_) {
        fade_->stop();
    }
    auto* fade = new QPropertyAnimation(window_, "windowOpacity", this);
    fade->setDuration(kFadeOutMs);
    fade->setStartValue(window_->windowOpacity());
    fade->setEndValue(0.0);
    fade->setEasingCurve(QEasingCurve::InCubic);
    connect(fade, &QPropertyAnimation::finished, this, [this] {
        faded_ = true;
        window_->close();
    });
    fade_ = fade;
    fade->start(QAbstractAnimation::DeleteWhenStopped);
}

bool ScreenshotPreviewWindowController::eventFilter(QObject* watched, QEvent* event) {
    if (watched == window_ && event->type() == QEvent::Close && !faded_) {
        // A close request asks first when there is drawing to lose, then
        // only starts the fade; its end closes the window for real.
        event->ignore();
        if (!window_->isVisible()) {
            faded_ = true;
            event->accept();
            return false;
        }
        requestClose();
        return true;
    }
    return QObject::eventFilter(watched, event);
}
