#include "platform/dbus/freedesktop_notifier.h"

#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QUuid>
#include <QtConcurrent>

#include "platform/notification_attachment.h"
#include "support/test_support.h"

namespace {

constexpr int kWaitMs = 10000;

// The dunst checks need the throw-away desktop of scripts/with-desktop: they
// post real notifications and close all of them.
bool inTestDesktop() {
    return qEnvironmentVariableIsSet("WITH_DESKTOP_SESSION_DIR");
}

QByteArray runTool(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished(kWaitMs);
    return process.readAllStandardOutput();
}

int displayedNotifications() {
    return runTool(QStringLiteral("dunstctl"),
                   {QStringLiteral("count"), QStringLiteral("displayed")})
        .trimmed()
        .toInt();
}

bool closeAllNotifications() {
    runTool(QStringLiteral("dunstctl"), {QStringLiteral("close-all")});
    return QTest::qWaitFor([] { return displayedNotifications() == 0; }, kWaitMs);
}

// dunst's history entry (closed notifications, as JSON) whose body is `body`.
QJsonObject historyEntryWithBody(const QString& body) {
    const QJsonDocument history =
        QJsonDocument::fromJson(runTool(QStringLiteral("dunstctl"), {QStringLiteral("history")}));
    const QJsonArray entries = history[QStringLiteral("data")].toArray().at(0).toArray();
    for (const QJsonValue& entry : entries) {
        if (entry[QStringLiteral("body")][QStringLiteral("data")].toString() == body) {
            return entry.toObject();
        }
    }
    return {};
}

QString historyField(const QJsonObject& entry, const QString& name) {
    return entry[name][QStringLiteral("data")].toString();
}

QString freshCaptureName() {
    return QStringLiteral("Screenshot_%1.png").arg(QUuid::createUuid().toString(QUuid::Id128));
}

// Points QDir::tempPath() at `folder` for the lifetime of this object.
class TemporaryFolderOverride {
public:
    explicit TemporaryFolderOverride(const QString& folder) : saved_(qgetenv("TMPDIR")) {
        qputenv("TMPDIR", folder.toUtf8());
    }
    ~TemporaryFolderOverride() {
        if (saved_.isNull()) {
            qunsetenv("TMPDIR");
        } else {
            qputenv("TMPDIR", saved_);
        }
    }

private:
    QByteArray saved_;
};

// The top-left pixel of the popup area that dunst draws for the notification
// at the top of its stack.
QPoint topNotificationPoint() {
    const QStringList windows =
        QString::fromUtf8(
            runTool(QStringLiteral("xdotool"),
                    {QStringLiteral("search"), QStringLiteral("--class"), QStringLiteral("Dunst")}))
            .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString& window : windows) {
        const QString shell = QString::fromUtf8(
            runTool(QStringLiteral("xdotool"),
                    {QStringLiteral("getwindowgeometry"), QStringLiteral("--shell"), window}));
        const auto number = [&shell](const char* key) {
            const QRegularExpression pattern(QStringLiteral("%1=(\\d+)").arg(QLatin1String(key)));
            return pattern.match(shell).captured(1).toInt();
        };
        if (number("HEIGHT") > 1) {  // dunst keeps a 1-pixel window while idle
            return {number("X") + number("WIDTH") / 2, number("Y") + 10};
        }
    }
    return {};
}

void clickAt(const QPoint& point) {
    runTool(QStringLiteral("xdotool"),
            {QStringLiteral("mousemove"), QString::number(point.x()), QString::number(point.y()),
             QStringLiteral("click"), QStringLiteral("1")});
}

QStringList activatedBodies(const QSignalSpy& spy) {
    QStringList bodies;
    for (const QList<QVariant>& arguments : spy) {
        bodies << arguments.at(0).toString();
    }
    return bodies;
}

// A dbus-daemon of the test's own with no services at all.
class BareBus {
public:
    explicit BareBus(const QString& folder) {
        const QString config = QDir(folder).filePath(QStringLiteral("bus.conf"));
        writeFileBytes(config, QStringLiteral(R"(<!DOCTYPE busconfig PUBLIC
 "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:dir=%1</listen>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)")
                                   .arg(folder)
                                   .toUtf8());
        daemon_.start(QStringLiteral("dbus-daemon"),
                      {QStringLiteral("--config-file=") + config, QStringLiteral("--nofork"),
                       QStringLiteral("--print-address=1")});
        while (address_.isEmpty() && daemon_.waitForReadyRead(kWaitMs)) {
            address_ = QString::fromUtf8(daemon_.readLine()).trimmed();
        }
    }
    ~BareBus() {
        daemon_.terminate();
        daemon_.waitForFinished(kWaitMs);
    }

    QString address() const { return address_; }

private:
    QProcess daemon_;
    QString address_;
};

TEST(NotificationAttachment, WritesThePngUnderAFreshUuidNameInTheTemporaryFolder) {
    TestFolder folder;
    const QString temporary = folder.path(QStringLiteral("tmp with space"));
    QDir().mkpath(temporary);
    TemporaryFolderOverride override(temporary);
    QImage image(37, 21, QImage::Format_ARGB32);
    image.fill(QColor(200, 30, 90, 128));
    image.setPixelColor(36, 20, Qt::green);

    // The capture service writes it off the GUI thread.
    const QString first = QtConcurrent::run(writeNotificationAttachment, image).result();
    const QString second = writeNotificationAttachment(image);

    const QRegularExpression uuidPng(
        QStringLiteral("^[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12}\\.png$"));
    for (const QString& path : {first, second}) {
        EXPECT_EQ(QFileInfo(path).absolutePath(), QFileInfo(temporary).canonicalFilePath());
        EXPECT_TRUE(uuidPng.match(QFileInfo(path).fileName()).hasMatch()) << path.toStdString();
        EXPECT_EQ(QImage(path, "png").convertToFormat(QImage::Format_ARGB32), image);
        EXPECT_TRUE(readFileBytes(path).startsWith("\x89PNG"));
    }
    EXPECT_NE(first, second);
}

TEST(NotificationAttachment, NullImageOrMissingTemporaryFolderGivesNoFile) {
    TestFolder folder;
    EXPECT_EQ(writeNotificationAttachment(QImage()), QString());

    QImage image(4, 4, QImage::Format_RGB32);
    image.fill(Qt::blue);
    const QString workingFolder = QDir::currentPath();
    const QStringList before = QDir(workingFolder).entryList(QDir::Files);
    {
        TemporaryFolderOverride override(folder.path(QStringLiteral("missing/folder")));
        EXPECT_EQ(writeNotificationAttachment(image), QString());
    }
    EXPECT_FALSE(QFileInfo::exists(folder.path(QStringLiteral("missing"))));
    EXPECT_EQ(QDir(workingFolder).entryList(QDir::Files), before);
}

TEST(FreedesktopNotifier, IsAuthorisedWhileTheDesktopServesNotifications) {
    if (!inTestDesktop()) {
        GTEST_SKIP() << "needs scripts/with-desktop";
    }
    FreedesktopNotifier notifier;
    EXPECT_TRUE(notifier.isAuthorised());
    EXPECT_TRUE(notifier.isAuthorised());  // the cached answer
}

TEST(FreedesktopNotifier, PostedNotificationCarriesAppNameSummaryBodyAndImage) {
    if (!inTestDesktop()) {
        GTEST_SKIP() << "needs scripts/with-desktop";
    }
    ASSERT_TRUE(closeAllNotifications());
    TestFolder folder;
    const QString temporary = folder.path(QStringLiteral("a #folder"));
    QDir().mkpath(temporary);
    QImage image(64, 48, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    QString imagePath;
    {
        TemporaryFolderOverride override(temporary);
        imagePath = writeNotificationAttachment(image);
    }
    ASSERT_FALSE(imagePath.isEmpty());
    const QString body = freshCaptureName();

    FreedesktopNotifier notifier;
    notifier.post(QStringLiteral("Screenshot saved"), body, imagePath);
    ASSERT_TRUE(QTest::qWaitFor([] { return displayedNotifications() == 1; }, kWaitMs));
    ASSERT_TRUE(closeAllNotifications());  // dunst reports closed notifications in its history

    const QJsonObject entry = historyEntryWithBody(body);
    ASSERT_FALSE(entry.isEmpty()) << "not in dunst's history";
    EXPECT_EQ(historyField(entry, QStringLiteral("appname")), "Quillix");
    EXPECT_EQ(historyField(entry, QStringLiteral("summary")), "Screenshot saved");
    EXPECT_EQ(historyField(entry, QStringLiteral("default_action_name")), "default");
    // dunst resolved the image-path hint (a file:// URI) back to the file.
    EXPECT_EQ(historyField(entry, QStringLiteral("icon_path")), imagePath);
}

TEST(FreedesktopNotifier, NotificationWithoutImageIsPostedToo) {
    if (!inTestDesktop()) {
        GTEST_SKIP() << "needs scripts/with-desktop";
    }
    ASSERT_TRUE(closeAllNotifications());
    const QString body = freshCaptureName();
    FreedesktopNotifier notifier;
    notifier.post(QStringLiteral("Screenshot saved"), body, QString());
    ASSERT_TRUE(QTest::qWaitFor([] { return displayedNotifications() == 1; }, kWaitMs));
    ASSERT_TRUE(closeAllNotifications());
    const QJsonObject entry = historyEntryWithBody(body);
    ASSERT_FALSE(entry.isEmpty());
    EXPECT_EQ(historyField(entry, QStringLiteral("icon_path")), QString());
}

TEST(FreedesktopNotifier, ClickingEachOfTwoPopupsReportsThatPopupsBody) {
    if (!inTestDesktop()) {
        GTEST_SKIP() << "needs scripts/with-desktop";
    }
    ASSERT_TRUE(closeAllNotifications());
    FreedesktopNotifier notifier;
    QSignalSpy activated(&notifier, &Notifier::activated);
    const QString older = freshCaptureName();
    const QString newer = freshCaptureName();
    notifier.post(QStringLiteral("Screenshot saved"), older, QString());
    notifier.post(QStringLiteral("Screenshot saved"), newer, QString());
    ASSERT_TRUE(QTest::qWaitFor([] { return displayedNotifications() == 2; }, kWaitMs));

    // dunst stacks the older popup on top; a left click invokes its default
    // action and closes it, which brings the newer one to the top.
    clickAt(topNotificationPoint());
    ASSERT_TRUE(QTest::qWaitFor([&] { return activated.count() == 1; }, kWaitMs));
    ASSERT_TRUE(QTest::qWaitFor([] { return displayedNotifications() == 1; }, kWaitMs));
    clickAt(topNotificationPoint());
    ASSERT_TRUE(QTest::qWaitFor([&] { return activated.count() == 2; }, kWaitMs));

    EXPECT_EQ(activatedBodies(activated), (QStringList{older, newer}));
}

// Two notifiers sharing one bus connection each see the other's clicks; each
// reports only its own.
TEST(FreedesktopNotifier, ReportsOnlyClicksOnItsOwnNotifications) {
    if (!inTestDesktop()) {
        GTEST_SKIP() << "needs scripts/with-desktop";
    }
    ASSERT_TRUE(closeAllNotifications());
    FreedesktopNotifier first;
    FreedesktopNotifier second;
    QSignalSpy firstActivated(&first, &Notifier::activated);
    QSignalSpy secondActivated(&second, &Notifier::activated);
    const QString firstBody = freshCaptureName();
    const QString secondBody = freshCaptureName();
    first.post(QStringLiteral("Screenshot saved"), firstBody, QString());
    ASSERT_TRUE(QTest::qWaitFor([] { return displayedNotifications() == 1; }, kWaitMs));
    second.post(QStringLiteral("Screenshot saved"), secondBody, QString());
    ASSERT_TRUE(QTest::qWaitFor([] { return displayedNotifications() == 2; }, kWaitMs));

    // The older popup is on top: each click reports and closes the top one.
    clickAt(topNotificationPoint());
    ASSERT_TRUE(QTest::qWaitFor([&] { return firstActivated.count() == 1; }, kWaitMs));
    ASSERT_TRUE(QTest::qWaitFor([] { return displayedNotifications() == 1; }, kWaitMs));
    clickAt(topNotificationPoint());
    ASSERT_TRUE(QTest::qWaitFor([&] { return secondActivated.count() == 1; }, kWaitMs));
    QTest::qWait(200);  // time for a wrongly delivered second report

    EXPECT_EQ(activatedBodies(firstActivated), QStringList{firstBody});
    EXPECT_EQ(activatedBodies(secondActivated), QStringList{secondBody});
    ASSERT_TRUE(closeAllNotifications());
}

TEST(FreedesktopNotifier, PrivateBusWithoutNotificationServiceIsNotAuthorised) {
    TestFolder folder;
    BareBus bus(folder.path());
    ASSERT_FALSE(bus.address().isEmpty()) << "dbus-daemon did not start";
    const QDBusConnection connection =
        QDBusConnection::connectToBus(bus.address(), QStringLiteral("bare"));
    ASSERT_TRUE(connection.isConnected());

    {
        FreedesktopNotifier notifier(connection);
        QSignalSpy activated(&notifier, &Notifier::activated);
        EXPECT_FALSE(notifier.isAuthorised());
        // The bus answers Notify with an error; that must go by quietly.
        notifier.post(QStringLiteral("Screenshot saved"), freshCaptureName(), QString());
        QTest::qWait(300);
        EXPECT_EQ(activated.count(), 0);

        // A service that appears later is noticed.
        QDBusConnection server =
            QDBusConnection::connectToBus(bus.address(), QStringLiteral("server"));
        ASSERT_TRUE(server.registerService(QStringLiteral("org.freedesktop.Notifications")));
        EXPECT_TRUE(QTest::qWaitFor([&] { return notifier.isAuthorised(); }, kWaitMs));
        server.unregisterService(QStringLiteral("org.freedesktop.Notifications"));
        EXPECT_TRUE(QTest::qWaitFor([&] { return !notifier.isAuthorised(); }, kWaitMs));
        QDBusConnection::disconnectFromBus(QStringLiteral("server"));
    }
    QDBusConnection::disconnectFromBus(QStringLiteral("bare"));
}

TEST(FreedesktopNotifier, WithoutAnyBusNothingIsPostedAndNothingBreaks) {
    const QDBusConnection nowhere = QDBusConnection::connectToBus(
        QStringLiteral("unix:path=/nonexistent/bus"), QStringLiteral("nowhere"));
    ASSERT_FALSE(nowhere.isConnected());
    FreedesktopNotifier notifier(nowhere);
    EXPECT_FALSE(notifier.isAuthorised());
    notifier.post(QStringLiteral("Screenshot saved"), freshCaptureName(), QString());
    QTest::qWait(100);
    QDBusConnection::disconnectFromBus(QStringLiteral("nowhere"));
}

}  // namespace
