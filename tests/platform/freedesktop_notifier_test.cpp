// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "platform/dbus/freedesktop_notifier.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QDBusConnection>
#include <QDir>
#include <QElapsedTimer>
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

QImage filledImage(QSize size, const QColor& color) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(color);
    return image;
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
        resume();
        daemon_.terminate();
        daemon_.waitForFinished(kWaitMs);
    }

    QString address() const { return address_; }

    // A stopped daemon takes every message and answers none: the slowest
    // bus there is.
    void stall() { ::kill(static_cast<pid_t>(daemon_.processId()), SIGSTOP); }
    void resume() { ::kill(static_cast<pid_t>(daemon_.processId()), SIGCONT); }

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

    const QImage image = filledImage({4, 4}, Qt::blue);
    const QString workingFolder = QDir::currentPath();
    const QStringList before = QDir(workingFolder).entryList(QDir::Files);
    {
        TemporaryFolderOverride override(folder.path(QStringLiteral("missing/folder")));
        EXPECT_EQ(writeNotificationAttachment(image), QString());
    }
    EXPECT_FALSE(QFileInfo::exists(folder.path(QStringLiteral("missing"))));
    EXPECT_EQ(QDir(workingFolder).entryList(QDir::Files), before);
}

// A child process writes an attachment, as a run of the program would: while
// it runs its file stays, once it has ended without cleaning up the file goes.
// Files that only look like attachments are never touched.
TEST(NotificationAttachment, LeftoversOfEndedRunsGoAndThoseOfRunningOnesStay) {
    TestFolder folder;
    const TemporaryFolderOverride override(folder.path());
    const QImage image = filledImage({16, 16}, Qt::cyan);
    const QString lookalike =
        folder.path(QStringLiteral("0A0A0A0A-0000-4000-8000-000000000000.png"));
    ASSERT_TRUE(image.save(lookalike, "png"));
    writeFileBytes(folder.path(QStringLiteral("notes.png")), "\x89PNG");

    int written[2];
    int mayEnd[2];
    ASSERT_EQ(::pipe(written), 0);
    ASSERT_EQ(::pipe(mayEnd), 0);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        NotificationAttachments run;
        const QByteArray path = run.write(image).toUtf8();
        [[maybe_unused]] ssize_t io = ::write(written[1], path.constData(), path.size());
        char go = 0;
        io = ::read(mayEnd[0], &go, 1);
        ::_exit(0);  // as a crash would: nothing removed
    }
    char buffer[512] = {};
    const ssize_t length = ::read(written[0], buffer, sizeof buffer - 1);
    const QString leftover = QString::fromUtf8(buffer, static_cast<int>(qMax<ssize_t>(length, 0)));
    ASSERT_TRUE(QFileInfo::exists(leftover)) << leftover.toStdString();

    NotificationAttachments::removeLeftoversOfEndedRuns();
    EXPECT_TRUE(QFileInfo::exists(leftover));

    ASSERT_EQ(::write(mayEnd[1], "x", 1), 1);
    ASSERT_EQ(::waitpid(child, nullptr, 0), child);
    NotificationAttachments::removeLeftoversOfEndedRuns();
    EXPECT_FALSE(QFileInfo::exists(leftover));
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files),
              (QStringList{QFileInfo(lookalike).fileName(), "notes.png"}));
    for (const int end : {written[0], written[1], mayEnd[0], mayEnd[1]}) {
        ::close(end);
    }
}

// Against the test desktop's dunst, starting with no notification shown.
class FreedesktopNotifierOnDunst : public testing::Test {
protected:
    void SetUp() override {
        if (!inTestDesktop()) {
            GTEST_SKIP() << "needs scripts/with-desktop";
        }
        ASSERT_TRUE(closeAllNotifications());
    }
};

// Authorised while the desktop serves notifications; a notification without
// an image is posted too.
TEST_F(FreedesktopNotifierOnDunst, PostedNotificationCarriesAppNameSummaryBodyAndImage) {
    TestFolder folder;
    const QString temporary = folder.path(QStringLiteral("a #folder"));
    QDir().mkpath(temporary);
    const QImage image = filledImage({64, 48}, Qt::darkCyan);
    QString imagePath;
    {
        TemporaryFolderOverride override(temporary);
        imagePath = writeNotificationAttachment(image);
    }
    ASSERT_FALSE(imagePath.isEmpty());
    const QString body = freshCaptureName();
    const QString plainBody = freshCaptureName();

    FreedesktopNotifier notifier;
    EXPECT_TRUE(QTest::qWaitFor([&] { return notifier.isAuthorised(); }, kWaitMs));
    notifier.post(QStringLiteral("Screenshot saved"), body, imagePath);
    notifier.post(QStringLiteral("Screenshot saved"), plainBody, QString());
    ASSERT_TRUE(QTest::qWaitFor([] { return displayedNotifications() == 2; }, kWaitMs));
    ASSERT_TRUE(closeAllNotifications());  // dunst reports closed notifications in its history

    const QJsonObject entry = historyEntryWithBody(body);
    ASSERT_FALSE(entry.isEmpty()) << "not in dunst's history";
    EXPECT_EQ(historyField(entry, QStringLiteral("appname")), "Quillix");
    EXPECT_EQ(historyField(entry, QStringLiteral("summary")), "Screenshot saved");
    EXPECT_EQ(historyField(entry, QStringLiteral("default_action_name")), "default");
    // dunst resolved the image-path hint (a file:// URI) back to the file.
    EXPECT_EQ(historyField(entry, QStringLiteral("icon_path")), imagePath);
    const QJsonObject plain = historyEntryWithBody(plainBody);
    ASSERT_FALSE(plain.isEmpty());
    EXPECT_EQ(historyField(plain, QStringLiteral("icon_path")), QString());
}

TEST_F(FreedesktopNotifierOnDunst, AttachmentsGoWhenTheirNotificationsClose) {
    TestFolder folder;
    const TemporaryFolderOverride override(folder.path());
    const QImage image = filledImage({32, 24}, Qt::darkMagenta);
    const QString closedByUser = writeNotificationAttachment(image);
    const QString stillShown = writeNotificationAttachment(image);
    ASSERT_TRUE(QFileInfo::exists(closedByUser) && QFileInfo::exists(stillShown));

    FreedesktopNotifier notifier;
    notifier.post(QStringLiteral("Screenshot saved"), freshCaptureName(), closedByUser);
    ASSERT_TRUE(QTest::qWaitFor([] { return displayedNotifications() == 1; }, kWaitMs));
    ASSERT_TRUE(closeAllNotifications());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !QFileInfo::exists(closedByUser); }, kWaitMs));

    notifier.post(QStringLiteral("Screenshot saved"), freshCaptureName(), stillShown);
    ASSERT_TRUE(QTest::qWaitFor([] { return displayedNotifications() == 1; }, kWaitMs));
    QTest::qWait(200);
    EXPECT_TRUE(QFileInfo::exists(stillShown));
    ASSERT_TRUE(closeAllNotifications());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !QFileInfo::exists(stillShown); }, kWaitMs));
}

// Clicking each popup reports that popup's body. Two notifiers sharing one
// bus connection each see the other's clicks; each reports only its own.
TEST_F(FreedesktopNotifierOnDunst, ReportsOnlyClicksOnItsOwnNotifications) {
    FreedesktopNotifier first;
    FreedesktopNotifier second;
    QSignalSpy firstActivated(&first, &Notifier::activated);
    QSignalSpy secondActivated(&second, &Notifier::activated);
    const QStringList firstBodies{freshCaptureName(), freshCaptureName()};
    const QString secondBody = freshCaptureName();
    for (const QString& body : firstBodies) {
        first.post(QStringLiteral("Screenshot saved"), body, QString());
    }
    ASSERT_TRUE(QTest::qWaitFor([] { return displayedNotifications() == 2; }, kWaitMs));
    second.post(QStringLiteral("Screenshot saved"), secondBody, QString());
    ASSERT_TRUE(QTest::qWaitFor([] { return displayedNotifications() == 3; }, kWaitMs));

    // dunst stacks the older popups on top; a left click invokes the top
    // one's default action and closes it.
    for (int shown = 3; shown > 0; --shown) {
        clickAt(topNotificationPoint());
        ASSERT_TRUE(
            QTest::qWaitFor([&] { return displayedNotifications() == shown - 1; }, kWaitMs));
    }
    ASSERT_TRUE(QTest::qWaitFor([&] { return secondActivated.count() == 1; }, kWaitMs));
    QTest::qWait(200);  // time for a wrongly delivered second report

    EXPECT_EQ(activatedBodies(firstActivated), firstBodies);
    EXPECT_EQ(activatedBodies(secondActivated), QStringList{secondBody});
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
        QTest::qWait(200);  // time for the bus's answer
        EXPECT_FALSE(notifier.isAuthorised());
        // The bus answers Notify with an error; that must go by quietly, and
        // the picture nobody will show goes at once.
        const TemporaryFolderOverride override(folder.path());
        const QString attachment = writeNotificationAttachment(filledImage({8, 8}, Qt::red));
        ASSERT_TRUE(QFileInfo::exists(attachment));
        notifier.post(QStringLiteral("Screenshot saved"), freshCaptureName(), attachment);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !QFileInfo::exists(attachment); }, kWaitMs));
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

// While the bus answers nothing, making a notifier, asking it and posting
// all come back at once; the bus's answer is taken when it comes.
TEST(FreedesktopNotifier, NeverWaitsForAStalledBus) {
    TestFolder folder;
    BareBus bus(folder.path());
    ASSERT_FALSE(bus.address().isEmpty()) << "dbus-daemon did not start";
    const QDBusConnection connection =
        QDBusConnection::connectToBus(bus.address(), QStringLiteral("stalled"));
    QDBusConnection server = QDBusConnection::connectToBus(bus.address(), QStringLiteral("server"));
    ASSERT_TRUE(server.registerService(QStringLiteral("org.freedesktop.Notifications")));
    {
        bus.stall();
        QElapsedTimer elapsed;
        elapsed.start();
        FreedesktopNotifier notifier(connection);
        for (int capture = 0; capture < 3; ++capture) {
            EXPECT_FALSE(notifier.isAuthorised());  // no answer yet
            notifier.post(QStringLiteral("Screenshot saved"), freshCaptureName(), QString());
        }
        // Waiting for the bus would take its time-out (seconds); none of
        // this needs more than microseconds.
        EXPECT_LT(elapsed.elapsed(), 500);
        bus.resume();
        EXPECT_TRUE(QTest::qWaitFor([&] { return notifier.isAuthorised(); }, kWaitMs));
    }
    QDBusConnection::disconnectFromBus(QStringLiteral("server"));
    QDBusConnection::disconnectFromBus(QStringLiteral("stalled"));
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
