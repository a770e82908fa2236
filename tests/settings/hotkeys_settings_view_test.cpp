// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

// The Hotkeys section over a real settings file in a temporary folder, fed
// key presses as the X11 platform delivers them (X keycode as the native scan
// code), with the grab pause counted.
#include "settings/hotkeys_settings_view.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPushButton>
#include <QTest>
#include <QToolButton>
#include <memory>

#include "platform/keyboard_layout.h"
#include "settings/hotkey_recorder_button.h"
#include "settings/key_capture_view.h"
#include "settings/key_recorder_view.h"
#include "storage/app_crypto.h"
#include "storage/user_settings.h"
#include "support/test_support.h"

namespace {

// X keycodes (evdev code + 8) and the X modifier bits of the keys pressed.
constexpr quint32 kXEscape = 9;
constexpr quint32 kXThree = 12;
constexpr quint32 kXFive = 14;
constexpr quint32 kXA = 38;
constexpr quint32 kXK = 45;
constexpr quint32 kXShiftL = 50;
constexpr quint32 kXShiftMask = 0x1;
constexpr quint32 kXLockMask = 0x2;
constexpr quint32 kXSuperMask = 0x40;

// The fixed key names, or a German layout's "Z" on the ANSI "Y" key.
class SwitchableLayout : public FixedKeyboardLayout {
public:
    QString keyLabel(quint32 keyCode) const override {
        return german && keyCode == 16 ? QStringLiteral("Z")
                                       : FixedKeyboardLayout::keyLabel(keyCode);
    }
    bool german = false;
};

constexpr HotkeyBinding kShiftSuperFive{23, KeyModifiers::kShift | KeyModifiers::kSuper};

}  // namespace

class HotkeysSettingsViewTest : public QObject {
    Q_OBJECT

private:
    void openView() {
        view_ = std::make_unique<HotkeysSettingsView>(
            *settings_, layout_, HotkeyGrabPause{[this] { ++pauses_; }, [this] { ++resumes_; }});
        view_->resize(600, 480);
        view_->show();
        QVERIFY(QTest::qWaitForWindowActive(view_.get()));
    }

    // The bindings as a fresh start reads them from settings.bin.
    HotkeyConfig storedHotkeys() const {
        return UserSettings(folder_->dataDir(), folder_->legacyDir()).hotkeys();
    }

    HotkeyRecorderButton* button(const QString& rowLabel) const {
        for (auto* candidate : view_->findChildren<HotkeyRecorderButton*>()) {
            if (candidate->accessibleName().startsWith(rowLabel + QLatin1Char(':'))) {
                return candidate;
            }
        }
        return nullptr;
    }

    void startRecording(const QString& rowLabel) {
        HotkeyRecorderButton* recorder = button(rowLabel);
        QVERIFY(recorder);
        QTest::mouseClick(recorder, Qt::LeftButton);
        QVERIFY(recorder->isRecording());
    }

    // A key press to whatever holds the keyboard focus, as xcb delivers it.
    void press(quint32 xKeycode, Qt::Key key, Qt::KeyboardModifiers modifiers, quint32 xState = 0,
               const QString& text = {}) {
        QWidget* focused = QApplication::focusWidget();
        QVERIFY(focused);
        QKeyEvent event(QEvent::KeyPress, key, modifiers, xKeycode, 0, xState, text);
        QApplication::sendEvent(focused, &event);
    }

    void expectGrabs(int pauses, int resumes) {
        QCOMPARE(pauses_, pauses);
        QCOMPARE(resumes_, resumes);
    }

    std::unique_ptr<TestFolder> folder_;
    std::unique_ptr<UserSettings> settings_;
    SwitchableLayout layout_;
    std::unique_ptr<HotkeysSettingsView> view_;
    int pauses_ = 0;
    int resumes_ = 0;

private Q_SLOTS:
    void init() {
        folder_ = std::make_unique<TestFolder>();
        settings_ = std::make_unique<UserSettings>(folder_->dataDir(), folder_->legacyDir());
        pauses_ = resumes_ = 0;
        layout_.german = false;
        openView();
    }

    void cleanup() {
        view_.reset();
        settings_.reset();
        folder_.reset();
    }

    void recordsKeysHeldWithModifiersByPosition() {
        startRecording(QStringLiteral("Capture area"));
        QCOMPARE(view_->recordingTarget(), HotkeyAction::captureArea);
        QVERIFY(qobject_cast<KeyCaptureView*>(QApplication::focusWidget()));

        // A bare letter, and Shift pressed while Super is held, are not recorded.
        press(kXA, Qt::Key_A, Qt::NoModifier, 0, QStringLiteral("a"));
        press(kXShiftL, Qt::Key_Shift, Qt::MetaModifier | Qt::ShiftModifier, kXSuperMask);
        QCOMPARE(view_->recordingTarget(), HotkeyAction::captureArea);
        QCOMPARE(storedHotkeys(), HotkeyConfig::defaults());

        press(kXFive, Qt::Key_Percent, Qt::MetaModifier | Qt::ShiftModifier,
              kXShiftMask | kXSuperMask, QStringLiteral("%"));
        QCOMPARE(view_->recordingTarget(), std::nullopt);
        QCOMPARE(storedHotkeys().binding(HotkeyAction::captureArea), kShiftSuperFive);
        QCOMPARE(button(QStringLiteral("Capture area"))->shownCaps(),
                 QStringList({QStringLiteral("⇧"), QStringLiteral("⌘"), QStringLiteral("5")}));
        QVERIFY(!qobject_cast<KeyCaptureView*>(QApplication::focusWidget()));
        expectGrabs(1, 1);

        startRecording(QStringLiteral("Capture window"));
        press(kXK, Qt::Key_K, Qt::ShiftModifier, kXShiftMask, QStringLiteral("K"));
        // Caps Lock on: the letter comes upper-case, the mask stays Super alone.
        startRecording(QStringLiteral("Capture fullscreen"));
        press(kXA, Qt::Key_A, Qt::MetaModifier, kXSuperMask | kXLockMask, QStringLiteral("A"));
        // The same shortcut as area capture is allowed.
        startRecording(QStringLiteral("Record window"));
        press(kXFive, Qt::Key_Percent, Qt::MetaModifier | Qt::ShiftModifier,
              kXShiftMask | kXSuperMask, QStringLiteral("%"));

        HotkeyConfig expected = HotkeyConfig::defaults();
        expected.setBinding(HotkeyAction::captureArea, kShiftSuperFive);
        expected.setBinding(HotkeyAction::captureWindow, {40, KeyModifiers::kShift});
        expected.setBinding(HotkeyAction::captureScreen, {0, KeyModifiers::kSuper});
        expected.setBinding(HotkeyAction::recordWindow, kShiftSuperFive);
        QCOMPARE(storedHotkeys(), expected);
        expectGrabs(4, 4);
    }

    void escapeAndSwitchingRowsKeepBindings() {
        startRecording(QStringLiteral("Open Quillix menu"));
        press(kXEscape, Qt::Key_Escape, Qt::NoModifier);
        QCOMPARE(view_->recordingTarget(), std::nullopt);
        startRecording(QStringLiteral("Open Quillix menu"));
        press(kXEscape, Qt::Key_Escape, Qt::ShiftModifier, kXShiftMask);
        QCOMPARE(view_->recordingTarget(), std::nullopt);
        expectGrabs(2, 2);

        // Moving to another row leaves the first unchanged and the grabs paused.
        startRecording(QStringLiteral("Capture area"));
        startRecording(QStringLiteral("Capture window"));
        QVERIFY(!button(QStringLiteral("Capture area"))->isRecording());
        QCOMPARE(view_->recordingTarget(), HotkeyAction::captureWindow);
        expectGrabs(3, 2);
        press(kXThree, Qt::Key_3, Qt::MetaModifier | Qt::ControlModifier, 0x44);
        expectGrabs(3, 3);

        HotkeyConfig expected = HotkeyConfig::defaults();
        expected.setBinding(HotkeyAction::captureWindow,
                            {20, KeyModifiers::kSuper | KeyModifiers::kControl});
        QCOMPARE(storedHotkeys(), expected);

        // Bindings changed elsewhere and layout switches show at once.
        settings_->setHotkey(HotkeyAction::openMenu, {16, KeyModifiers::kControl});
        QCOMPARE(button(QStringLiteral("Open Quillix menu"))->accessibleName(),
                 QStringLiteral("Open Quillix menu: ⌃Y"));
        layout_.german = true;
        Q_EMIT layout_.changed();
        QCOMPARE(button(QStringLiteral("Open Quillix menu"))->shownCaps(),
                 QStringList({QStringLiteral("⌃"), QStringLiteral("Z")}));
    }

    void trashAndResetRestoreDefaults() {
        settings_->setHotkey(HotkeyAction::captureArea, kShiftSuperFive);
        settings_->setHotkey(HotkeyAction::recordScreen, kShiftSuperFive);

        startRecording(QStringLiteral("Capture area"));
        QTest::mouseClick(view_->recorder(HotkeyAction::captureArea)->trashButton(),
                          Qt::LeftButton);
        QCOMPARE(view_->recordingTarget(), std::nullopt);
        expectGrabs(1, 1);
        HotkeyConfig expected = HotkeyConfig::defaults();
        expected.setBinding(HotkeyAction::recordScreen, kShiftSuperFive);
        QCOMPARE(storedHotkeys(), expected);

        startRecording(QStringLiteral("Show capture HUD"));
        QTest::mouseClick(view_->resetButton(), Qt::LeftButton);
        QCOMPARE(view_->recordingTarget(), std::nullopt);
        expectGrabs(2, 2);
        QCOMPARE(storedHotkeys(), HotkeyConfig::defaults());

        // The sealed document is the one a first start writes.
        const TestFolder fresh;
        UserSettings defaults(fresh.dataDir(), fresh.legacyDir());
        const auto document = [](const QString& path) {
            return AppCrypto::decrypt(readFileBytes(path));
        };
        QVERIFY(document(settings_->filePath()).has_value());
        QCOMPARE(document(settings_->filePath()), document(defaults.filePath()));
    }

    void leavingTheSectionResumesTheGrabs() {
        startRecording(QStringLiteral("Record full screen"));
        view_->hide();
        QCOMPARE(view_->recordingTarget(), std::nullopt);
        expectGrabs(1, 1);

        view_->show();
        startRecording(QStringLiteral("Record window"));
        view_->stopRecording();
        view_->stopRecording();
        expectGrabs(2, 2);

        startRecording(QStringLiteral("Record window"));
        view_.reset();
        expectGrabs(3, 3);
        QCOMPARE(storedHotkeys(), HotkeyConfig::defaults());
    }
};

QTEST_MAIN(HotkeysSettingsViewTest)
#include "hotkeys_settings_view_test.moc"
