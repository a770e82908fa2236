#include <xcb/xcb.h>
// xkb.h names a member "explicit", which C++ reserves.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit

#include <QGuiApplication>
#include <QLabel>
#include <QProcess>
#include <QtTest>
#include <memory>

#include "platform/x11/xkb_keyboard_layout.h"
#include "ui/settings/shortcut_view.h"

namespace {

constexpr quint32 kTwoKey = 19;  // position codes of the stored bindings
constexpr quint32 kYKey = 16;

bool setLayout(const QStringList& arguments) {
    return QProcess::execute(QStringLiteral("setxkbmap"), arguments) == 0;
}

// Locks the server's keyboard into layout group `group`, as a layout switch
// key or a desktop's layout menu does, from a client of its own.
bool lockGroup(quint8 group) {
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    xcb_xkb_use_extension_reply_t* extension = xcb_xkb_use_extension_reply(
        connection, xcb_xkb_use_extension(connection, XCB_XKB_MAJOR_VERSION, XCB_XKB_MINOR_VERSION),
        nullptr);
    const bool usable = extension != nullptr && extension->supported != 0;
    std::free(extension);
    xcb_generic_error_t* error = nullptr;
    if (usable) {
        error = xcb_request_check(
            connection, xcb_xkb_latch_lock_state_checked(connection, XCB_XKB_ID_USE_CORE_KBD, 0, 0,
                                                         1, group, 0, 0, 0));
    }
    const bool locked = usable && error == nullptr;
    std::free(error);
    xcb_disconnect(connection);
    return locked;
}

QLabel* keyLabel(const ShortcutView& view) {
    return view.findChildren<QLabel*>(QString(), Qt::FindDirectChildrenOnly).constLast();
}

}  // namespace

// Against the X server of the test desktop: the label shows what the key
// types in the layout in use now, not the one at start.
class ShortcutViewLayoutTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        if (QGuiApplication::platformName() != QLatin1String("xcb")) {
            QSKIP("needs an X server");
        }
        QVERIFY(setLayout({QStringLiteral("us")}));
        layout_ = XkbKeyboardLayout::fromX11(
            qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection());
        QVERIFY(layout_);
    }

    void cleanup() { setLayout({QStringLiteral("us")}); }

    void labelFollowsANewKeymap() {
        ShortcutView view({kTwoKey, HotkeyBinding::kCommand}, *layout_);
        QCOMPARE(view.shownText(), QStringLiteral("⌘2"));
        // On a French keyboard the "2" key types é.
        QVERIFY(setLayout({QStringLiteral("fr")}));
        QTRY_COMPARE(view.shownText(), QStringLiteral("⌘É"));
        QCOMPARE(keyLabel(view)->accessibleName(), QStringLiteral("É"));
        QCOMPARE(view.accessibleName(), QStringLiteral("⌘2"));  // the text form stays

        QVERIFY(setLayout({QStringLiteral("us")}));
        QTRY_COMPARE(view.shownText(), QStringLiteral("⌘2"));
        QCOMPARE(keyLabel(view)->accessibleName(), QStringLiteral("2"));
    }

    void labelFollowsASwitchBetweenTheLayoutsOfOneKeymap() {
        QVERIFY(setLayout({QStringLiteral("-layout"), QStringLiteral("us,de")}));
        ShortcutView view({kYKey, HotkeyBinding::kCommand | HotkeyBinding::kShift}, *layout_);
        QTRY_COMPARE(view.shownText(), QStringLiteral("⌘⇧Y"));
        QVERIFY(lockGroup(1));  // German: Y and Z trade places
        QTRY_COMPARE(view.shownText(), QStringLiteral("⌘⇧Z"));
        QVERIFY(lockGroup(0));
        QTRY_COMPARE(view.shownText(), QStringLiteral("⌘⇧Y"));
    }

    void cleanupTestCase() { layout_.reset(); }

private:
    std::unique_ptr<XkbKeyboardLayout> layout_;
};

QTEST_MAIN(ShortcutViewLayoutTest)
#include "shortcut_view_layout_test.moc"
