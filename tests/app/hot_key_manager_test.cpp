// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "app/hot_key_manager.h"

#include <X11/keysym.h>
#include <gtest/gtest.h>
#include <unistd.h>
#include <xcb/xcb.h>
#include <xcb/xcb_keysyms.h>
// xkb.h names a member "explicit", which C++ reserves.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit

#include <QGuiApplication>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>

#include "platform/x11/x11_hotkey_backend.h"
#include "storage/user_settings.h"
#include "support/test_support.h"

namespace {

// Modifier bits of the test desktop's keymap (Xvfb's default).
constexpr quint16 kSuper = XCB_MOD_MASK_4;
constexpr quint16 kNumLock = XCB_MOD_MASK_2;
constexpr int kBadAccess = 10;

// Collects the lines our modules log while it lives, so the diagnostics the
// program really prints can be read. Qt's own messages pass through.
class LogCapture {
public:
    LogCapture() {
        captured().clear();
        previous_ = qInstallMessageHandler(&LogCapture::record);
    }
    ~LogCapture() { qInstallMessageHandler(previous_); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    // The diagnostic lines logged since construction.
    QStringList lines() const { return captured(); }

private:
    static QStringList& captured() {
        static QStringList lines;
        return lines;
    }
    static void record(QtMsgType type, const QMessageLogContext& context, const QString& text) {
        if (context.category != nullptr && QByteArray(context.category).startsWith("quillix.")) {
            captured().append(text);
            return;
        }
        if (previous_ != nullptr) {
            previous_(type, context, text);
        }
    }

    static inline QtMessageHandler previous_ = nullptr;
};

// Another X client on its own connection, competing for the same keys.
class OtherXClient {
public:
    OtherXClient() : connection_(xcb_connect(nullptr, nullptr)) {
        if (xcb_connection_has_error(connection_) == 0) {
            root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
            symbols_ = xcb_key_symbols_alloc(connection_);
        }
    }
    ~OtherXClient() {
        if (symbols_ != nullptr) {
            xcb_key_symbols_free(symbols_);
        }
        xcb_disconnect(connection_);
    }
    OtherXClient(const OtherXClient&) = delete;
    OtherXClient& operator=(const OtherXClient&) = delete;

    bool connected() const { return symbols_ != nullptr; }

    // The X error code of the grab, 0 when it succeeded.
    int grab(xcb_keysym_t keysym, quint16 modifiers) {
        const xcb_void_cookie_t cookie =
            xcb_grab_key_checked(connection_, 0, root_, modifiers, keycodeOf(keysym),
                                 XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        xcb_generic_error_t* error = xcb_request_check(connection_, cookie);
        const int code = error != nullptr ? error->error_code : 0;
        std::free(error);
        return code;
    }

private:
    // Looked up in the server's keymap, independently of the program's table.
    xcb_keycode_t keycodeOf(xcb_keysym_t keysym) {
        xcb_keycode_t* keycodes = xcb_key_symbols_get_keycode(symbols_, keysym);
        const xcb_keycode_t keycode = keycodes != nullptr ? keycodes[0] : 0;
        std::free(keycodes);
        return keycode;
    }

    xcb_connection_t* connection_;
    xcb_window_t root_ = XCB_WINDOW_NONE;
    xcb_key_symbols_t* symbols_ = nullptr;
};

bool xdotool(const char* command, const char* combination) {
    return QProcess::execute(QStringLiteral("xdotool"),
                             {QLatin1String(command), QLatin1String(combination)}) == 0;
}

bool pressKeys(const char* combination) {
    return xdotool("key", combination);
}

// Holds a combination down for `milliseconds` while events are processed;
// the X server repeats the key meanwhile.
bool holdKeys(const char* combination, int milliseconds) {
    const bool pressed = xdotool("keydown", combination);
    QTest::qWait(milliseconds);
    return xdotool("keyup", combination) && pressed;
}

xcb_connection_t* applicationConnection() {
    return qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
}

// How the X server reports a held key to the application's connection for
// the lifetime of the object: as repeated presses alone ("detectable"), or
// as pairs of a release and a press with one time stamp.
class AutoRepeatReports {
public:
    explicit AutoRepeatReports(bool detectable) : saved_(set(detectable)) {}
    ~AutoRepeatReports() { set(saved_); }
    AutoRepeatReports(const AutoRepeatReports&) = delete;
    AutoRepeatReports& operator=(const AutoRepeatReports&) = delete;

private:
    // Sets the flag and answers its former value.
    static bool set(bool detectable) {
        const uint32_t flag = XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT;
        xcb_connection_t* connection = applicationConnection();
        xcb_xkb_per_client_flags_reply_t* reply = xcb_xkb_per_client_flags_reply(
            connection,
            xcb_xkb_per_client_flags(connection, XCB_XKB_ID_USE_CORE_KBD, flag,
                                     detectable ? flag : 0, 0, 0, 0),
            nullptr);
        EXPECT_NE(reply, nullptr);
        const bool former = reply != nullptr && (reply->value & flag) != 0;
        EXPECT_TRUE(reply != nullptr && (reply->supported & flag) != 0);
        std::free(reply);
        return former;
    }

    bool saved_;
};

// Switches a lock key on for the lifetime of the object.
class LockKeyOn {
public:
    explicit LockKeyOn(const char* key) : key_(key) { EXPECT_TRUE(pressKeys(key_)); }
    ~LockKeyOn() { pressKeys(key_); }
    LockKeyOn(const LockKeyOn&) = delete;
    LockKeyOn& operator=(const LockKeyOn&) = delete;

private:
    const char* key_;
};

QStringList registeredLines(std::initializer_list<std::pair<const char*, int>> entries) {
    QStringList lines;
    for (const auto& [shortcut, id] : entries) {
        lines.append(QStringLiteral("✅ Quillix: hotkey %1 registered (id %2)")
                         .arg(QString::fromUtf8(shortcut))
                         .arg(id));
    }
    return lines;
}

QString failureLine(int id, int status) {
    return QStringLiteral("⚠️ Quillix: failed to register hotkey id %1, error %2")
        .arg(id)
        .arg(status);
}

// The line after a failure line: the combination and why it failed.
QString reasonLine(const char* shortcut, const char* reason) {
    return QStringLiteral("⚠️ Quillix: %1 %2").arg(QString::fromUtf8(shortcut), reason);
}
constexpr const char* kHeldElsewhere = "is already held by another program";
constexpr const char* kUngrabbable = "cannot be used as a global hotkey";

const QStringList kDefaultRegistrationLines =
    registeredLines({{"⇧⌘1", 1}, {"⇧⌘2", 2}, {"⌘2", 3}, {"⌘3", 4}, {"⌘6", 5}, {"⌘7", 6}});

class HotKeyManagerTest : public testing::Test {
protected:
    void SetUp() override {
        backend = X11HotkeyBackend::createForApplication();
        ASSERT_TRUE(backend) << "needs the xcb platform";
        manager = std::make_unique<HotKeyManager>(*backend, settings);
        manager->onTriggered = [this] { ++calls[HotKeyManager::kOpenMenuId]; };
        manager->onShowHUD = [this] { ++calls[HotKeyManager::kShowHUDId]; };
        manager->onCaptureArea = [this] { ++calls[HotKeyManager::kCaptureAreaId]; };
        manager->onCaptureWindow = [this] { ++calls[HotKeyManager::kCaptureWindowId]; };
        manager->onRecordWindow = [this] { ++calls[HotKeyManager::kRecordWindowId]; };
        manager->onRecordScreen = [this] { ++calls[HotKeyManager::kRecordScreenId]; };
        ASSERT_TRUE(other.connected());
    }

    QStringList registerAllLogged() {
        LogCapture capture;
        manager->registerAll();
        return capture.lines();
    }

    // Presses the combination and waits until the callback of `id` has run
    // once more.
    bool pressReaches(const char* combination, quint32 id) {
        const int before = calls[id];
        return pressKeys(combination) && QTest::qWaitFor([&] { return calls[id] > before; }, 5000);
    }

    int totalCalls() const {
        int total = 0;
        for (const auto& [id, count] : calls) {
            total += count;
        }
        return total;
    }

    TestFolder folder;
    UserSettings settings{folder.dataDir(), folder.legacyDir()};
    OtherXClient other;
    std::unique_ptr<X11HotkeyBackend> backend;
    std::unique_ptr<HotKeyManager> manager;
    std::map<quint32, int> calls;
};

TEST_F(HotKeyManagerTest, RegistersSixDefaultsButNeverTheScreenBinding) {
    EXPECT_EQ(registerAllLogged(), kDefaultRegistrationLines);
    // ⌘4 stays free for other programs; the registered ones are held.
    EXPECT_EQ(other.grab(XK_4, kSuper), 0);
    EXPECT_EQ(other.grab(XK_2, kSuper), kBadAccess);
    EXPECT_EQ(other.grab(XK_1, kSuper | XCB_MOD_MASK_SHIFT), kBadAccess);
    EXPECT_EQ(other.grab(XK_7, kSuper | kNumLock), kBadAccess);
}

TEST_F(HotKeyManagerTest, RealPressesReachTheirCallbacksWhateverTheLocks) {
    manager->registerAll();
    ASSERT_TRUE(pressReaches("super+2", HotKeyManager::kCaptureAreaId));
    ASSERT_TRUE(pressReaches("super+shift+1", HotKeyManager::kOpenMenuId));
    {
        const LockKeyOn numLock("Num_Lock");
        EXPECT_TRUE(pressReaches("super+2", HotKeyManager::kCaptureAreaId));
        EXPECT_TRUE(pressReaches("super+shift+1", HotKeyManager::kOpenMenuId));
        const LockKeyOn capsLock("Caps_Lock");
        EXPECT_TRUE(pressReaches("super+7", HotKeyManager::kRecordScreenId));
    }
    EXPECT_TRUE(pressReaches("super+shift+2", HotKeyManager::kShowHUDId));
    EXPECT_EQ(calls[HotKeyManager::kCaptureAreaId], 2);
    EXPECT_EQ(calls[HotKeyManager::kOpenMenuId], 2);
    EXPECT_EQ(totalCalls(), 6);
}

// X repeats a held key: whether it reports that as presses alone or as
// release-and-press pairs, a held combination fires once, and a real release
// and a new press fire again.
TEST_F(HotKeyManagerTest, HeldCombinationFiresOnceUntilItIsReleased) {
    manager->registerAll();
    for (const bool detectable : {false, true}) {
        SCOPED_TRACE(detectable ? "presses alone" : "release-and-press pairs");
        const AutoRepeatReports reports(detectable);
        calls.clear();
        ASSERT_TRUE(holdKeys("super+2", 1200));
        ASSERT_TRUE(holdKeys("super+shift+1", 1200));
        ASSERT_TRUE(pressReaches("super+7", HotKeyManager::kRecordScreenId));
        EXPECT_EQ(calls[HotKeyManager::kCaptureAreaId], 1);
        EXPECT_EQ(calls[HotKeyManager::kOpenMenuId], 1);
        EXPECT_TRUE(pressReaches("super+2", HotKeyManager::kCaptureAreaId));
        EXPECT_TRUE(pressReaches("super+2", HotKeyManager::kCaptureAreaId));
    }
}

TEST_F(HotKeyManagerTest, CallbacksRunAfterTheNativeDispatchHasReturned) {
    manager->registerAll();
    int callsWhenPressed = -1;
    QObject::connect(backend.get(), &HotkeyBackend::pressed,
                     [&] { callsWhenPressed = calls[HotKeyManager::kCaptureAreaId]; });
    ASSERT_TRUE(pressReaches("super+2", HotKeyManager::kCaptureAreaId));
    EXPECT_EQ(callsWhenPressed, 0);
}

TEST_F(HotKeyManagerTest, CombinationHeldElsewhereFailsAloneWithBadAccess) {
    ASSERT_EQ(other.grab(XK_6, kSuper), 0);
    QStringList expected = kDefaultRegistrationLines;
    expected[4] = failureLine(5, kBadAccess);
    expected.insert(5, reasonLine("⌘6", kHeldElsewhere));
    EXPECT_EQ(registerAllLogged(), expected);

    // The held key goes to the other client; the following ones still work.
    ASSERT_TRUE(pressKeys("super+6"));
    EXPECT_TRUE(pressReaches("super+7", HotKeyManager::kRecordScreenId));
    EXPECT_TRUE(pressReaches("super+2", HotKeyManager::kCaptureAreaId));
    EXPECT_EQ(calls[HotKeyManager::kRecordWindowId], 0);
}

// The other client holds only the NumLock variant, so two of the four grabs
// succeed before one fails: those two must be given back.
TEST_F(HotKeyManagerTest, PartlyHeldCombinationLeavesNoGrabBehind) {
    ASSERT_EQ(other.grab(XK_6, kSuper | kNumLock), 0);
    EXPECT_TRUE(registerAllLogged().contains(failureLine(5, kBadAccess)));
    OtherXClient third;
    EXPECT_EQ(third.grab(XK_6, kSuper), 0);
    EXPECT_EQ(third.grab(XK_6, kSuper | XCB_MOD_MASK_LOCK), 0);
}

TEST_F(HotKeyManagerTest, ChangedBindingMovesTheGrab) {
    // What the shell does on every change of the bindings.
    QObject::connect(&settings, &UserSettings::hotkeysChanged, manager.get(),
                     &HotKeyManager::registerAll);
    manager->registerAll();

    LogCapture capture;
    settings.setHotkey(HotkeyAction::captureArea, {23, KeyModifiers::kSuper});  // ⌘5
    QStringList expected = kDefaultRegistrationLines;
    expected[2] = registeredLines({{"⌘5", 3}})[0];
    EXPECT_EQ(capture.lines(), expected);

    EXPECT_TRUE(pressReaches("super+5", HotKeyManager::kCaptureAreaId));
    EXPECT_EQ(other.grab(XK_2, kSuper), 0);
    EXPECT_EQ(other.grab(XK_5, kSuper), kBadAccess);
}

TEST_F(HotKeyManagerTest, SecondActionOnTheSameCombinationFails) {
    settings.setHotkey(HotkeyAction::showHUD,
                       {18, KeyModifiers::kShift | KeyModifiers::kSuper});  // ⇧⌘1
    QStringList expected = kDefaultRegistrationLines;
    expected[1] = failureLine(2, kBadAccess);
    expected.insert(2, reasonLine("⇧⌘1", "is already used by hotkey id 1"));
    EXPECT_EQ(registerAllLogged(), expected);

    ASSERT_TRUE(pressReaches("super+shift+1", HotKeyManager::kOpenMenuId));
    EXPECT_EQ(calls[HotKeyManager::kShowHUDId], 0);
}

TEST_F(HotKeyManagerTest, CaptureWindowPressWithoutCallbackDoesNothing) {
    manager->onCaptureWindow = nullptr;
    manager->registerAll();
    QSignalSpy presses(backend.get(), &HotkeyBackend::pressed);
    ASSERT_TRUE(pressKeys("super+3"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return presses.count() == 1; }, 5000));
    EXPECT_EQ(presses.at(0).at(0).value<quint32>(), HotKeyManager::kCaptureWindowId);
    // Queued calls run in order: once this one ran, the dispatch has too.
    bool dispatched = false;
    QMetaObject::invokeMethod(
        manager.get(), [&] { dispatched = true; }, Qt::QueuedConnection);
    ASSERT_TRUE(QTest::qWaitFor([&] { return dispatched; }, 5000));
    EXPECT_EQ(totalCalls(), 0);

    manager->onCaptureWindow = [this] { ++calls[HotKeyManager::kCaptureWindowId]; };
    EXPECT_TRUE(pressReaches("super+3", HotKeyManager::kCaptureWindowId));
}

TEST_F(HotKeyManagerTest, UngrabbableBindingsFailWithBadValue) {
    LogCapture capture;
    manager->registerHotkey(52, KeyModifiers::kSuper, 3);          // no key at that position
    manager->registerHotkey(1000 + 300, KeyModifiers::kSuper, 4);  // beyond X keycodes
    manager->registerHotkey(19, -1, 5);                            // damaged masks
    manager->registerHotkey(19, qint64{1} << 32, 6);
    manager->registerHotkey(19, KeyModifiers::kSuper, 3);
    EXPECT_EQ(capture.lines(),
              QStringList({failureLine(3, 2), reasonLine("⌘(52)", kUngrabbable), failureLine(4, 2),
                           reasonLine("⌘(1300)", kUngrabbable), failureLine(5, 2),
                           reasonLine("⌃⌥⇧⌘2", kUngrabbable), failureLine(6, 2),
                           reasonLine("2", kUngrabbable), registeredLines({{"⌘2", 3}})[0]}));
}

TEST_F(HotKeyManagerTest, UnregisterAndDestructionReleaseEveryGrab) {
    manager->registerAll();
    manager->unregisterAll();
    EXPECT_EQ(other.grab(XK_2, kSuper), 0);

    OtherXClient third;
    manager->registerAll();
    EXPECT_EQ(third.grab(XK_1, kSuper | XCB_MOD_MASK_SHIFT), kBadAccess);
    manager.reset();
    EXPECT_EQ(third.grab(XK_1, kSuper | XCB_MOD_MASK_SHIFT), 0);
    EXPECT_EQ(third.grab(XK_7, kSuper | kNumLock | XCB_MOD_MASK_LOCK), 0);
}

TEST_F(HotKeyManagerTest, OneGrabIsReleasedByItsIdAlone) {
    manager->registerAll();
    ASSERT_EQ(backend->grab(100, 53, 0), 0);  // Escape, as the capture HUD takes it
    EXPECT_EQ(other.grab(XK_Escape, 0), kBadAccess);
    backend->ungrab(100);
    EXPECT_EQ(other.grab(XK_Escape, 0), 0);
    EXPECT_EQ(other.grab(XK_2, kSuper), kBadAccess);  // the hotkeys stay
}

TEST(X11HotkeyBackend, NeedsAnXConnection) {
    EXPECT_EQ(X11HotkeyBackend::create(nullptr, 1), nullptr);
}

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    // Listing the tests happens without a desktop.
    if (testing::GTEST_FLAG(list_tests)) {
        return RUN_ALL_TESTS();
    }
    qputenv("QT_QPA_PLATFORM", "xcb");
    QGuiApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
