// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

// Showing a file in the file manager over the test desktop's session bus.
// No file manager runs there, so the test registers a stand-in for the
// org.freedesktop.FileManager1 service and checks the call it receives.
#include "platform/dbus/file_manager_reveal.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QElapsedTimer>
#include <QStringList>
#include <QUrl>

class StandInFileManager : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

public:
    QList<QStringList> shown;

public Q_SLOTS:
    // NOLINTNEXTLINE(readability-identifier-naming): the D-Bus method's name
    Q_SCRIPTABLE void ShowItems(const QStringList& uris, const QString& /*startupId*/) {
        shown.append(uris);
    }
};

TEST(FileManagerRevealTest, StandInFileManagerIsAskedToShowTheFileByItsUrl) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    ASSERT_TRUE(bus.isConnected());
    StandInFileManager manager;
    ASSERT_TRUE(bus.registerObject(QStringLiteral("/org/freedesktop/FileManager1"), &manager,
                                   QDBusConnection::ExportScriptableSlots));
    ASSERT_TRUE(bus.registerService(QStringLiteral("org.freedesktop.FileManager1")));

    const QString path = QStringLiteral("/tmp/some folder/Design:shelf/shot #1.png");
    revealInFileManager(path);
    QElapsedTimer clock;
    clock.start();
    while (manager.shown.isEmpty() && clock.elapsed() < 5000) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    bus.unregisterService(QStringLiteral("org.freedesktop.FileManager1"));
    bus.unregisterObject(QStringLiteral("/org/freedesktop/FileManager1"));

    ASSERT_EQ(manager.shown.size(), 1);
    ASSERT_EQ(manager.shown.constFirst().size(), 1);
    EXPECT_EQ(QUrl(manager.shown.constFirst().constFirst()).toLocalFile(), path);
}

#include "file_manager_reveal_test.moc"
