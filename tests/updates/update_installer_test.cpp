// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

// The installer against a local HTTPS server, real zip archives, the real
// unzip and a real install script run by bash over a fake Quillix.app.

#include "updates/update_installer.h"

#include <QApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QLabel>
#include <QPointer>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>
#include <memory>

#include "storage/preferences.h"
#include "updates/download_progress_panel.h"

namespace {

void writeProgram(const QString& appFolder, const QString& version) {
    QVERIFY(QDir().mkpath(appFolder + QStringLiteral("/bin")));
    QFile program(appFolder + QStringLiteral("/bin/quillix"));
    QVERIFY(program.open(QIODevice::WriteOnly));
    // Started, it leaves its version next to the Quillix.app folder.
    program.write("#!/bin/sh\necho " + version.toUtf8() +
                  " > \"$(dirname \"$0\")/../../started\"\n");
    program.close();
    QVERIFY(program.setPermissions(program.permissions() | QFile::ExeOwner));
}

// Every path, permission and byte under folder.
QByteArray treeHash(const QString& folder) {
    QCryptographicHash hash(QCryptographicHash::Sha256);
    QStringList paths;
    QDirIterator it(folder, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        paths << it.next();
    }
    paths.sort();
    for (const QString& path : paths) {
        QFile file(path);
        hash.addData(path.toUtf8());
        hash.addData(QByteArray::number(int(file.permissions())));
        if (file.open(QIODevice::ReadOnly)) {
            hash.addData(file.readAll());
        }
    }
    return hash.result().toHex();
}

QByteArray fileText(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}  // namespace

class UpdateInstallerTest : public QObject {
    Q_OBJECT

    QTemporaryDir served_;
    QTemporaryDir certificate_;
    QProcess server_;
    QString base_;

    // One install: its own temporary folder, installed app and outcome.
    struct Run {
        QTemporaryDir dir;
        QString appFolder;
        std::unique_ptr<Preferences> preferences;
        std::unique_ptr<UpdateInstaller> installer;
        bool quit = false;
        QStringList failures;
    };

    std::unique_ptr<Run> makeRun(const QString& installName, bool fromAppFolder = true) {
        auto run = std::make_unique<Run>();
        run->appFolder = run->dir.filePath(installName + QStringLiteral("/Quillix.app"));
        writeProgram(run->appFolder, QStringLiteral("1.0.0"));
        const QString conf = run->dir.filePath(QStringLiteral("Quillix.conf"));
        QSettings(conf, QSettings::IniFormat)
            .setValue(QStringLiteral("updateCAFile"), certificate_.filePath("cert.pem"));
        run->preferences = std::make_unique<Preferences>(conf);
        Run* raw = run.get();
        const QString temp = run->dir.filePath(QStringLiteral("tmp"));
        QDir().mkpath(temp);
        run->installer = std::make_unique<UpdateInstaller>(
            *run->preferences,
            UpdateInstaller::Environment{fromAppFolder ? run->appFolder : QString(), temp,
                                         [raw] { raw->quit = true; },
                                         [raw](const QString& title, const QString& text) {
                                             raw->failures << title + QStringLiteral(": ") + text;
                                         }});
        return run;
    }

    void makeArchive(const QString& name, const QString& bundlePath) {
        QTemporaryDir staging;
        writeProgram(staging.filePath(bundlePath), QStringLiteral("1.1.0"));
        QProcess zip;
        zip.setWorkingDirectory(staging.path());
        zip.start(QStringLiteral("/usr/bin/zip"),
                  {QStringLiteral("-qr"), served_.filePath(name), QStringLiteral(".")});
        QVERIFY(zip.waitForFinished() && zip.exitCode() == 0);
    }

    static void install(Run& run, const AppcastRelease& release) {
        run.installer->install(release);
        QTRY_VERIFY_WITH_TIMEOUT(run.quit || !run.failures.isEmpty(), 30000);
    }

private Q_SLOTS:
    void initTestCase() {
        makeArchive(QStringLiteral("good.zip"), QStringLiteral("Quillix.app"));
        makeArchive(QStringLiteral("nested.zip"), QStringLiteral("Quillix 1.1.0/Quillix.app"));
        QFile garbage(served_.filePath(QStringLiteral("garbage.zip")));
        QVERIFY(garbage.open(QIODevice::WriteOnly) && garbage.write("not a zip") > 0);
        garbage.close();
        server_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        server_.start(QStringLiteral("/usr/bin/python3"),
                      {QStringLiteral(QUILLIX_TESTS_DIR "/updates/https_server.py"), served_.path(),
                       certificate_.filePath("cert.pem"), certificate_.filePath("requests.log")});
        QVERIFY(server_.waitForReadyRead(30000));
        base_ = QStringLiteral("https://127.0.0.1:%1/")
                    .arg(QString::fromLatin1(server_.readLine().trimmed()));
    }

    void cleanupTestCase() {
        server_.kill();
        server_.waitForFinished();
    }

    void replacesTheAppAndStartsIt_data() {
        QTest::addColumn<QString>("installName");
        QTest::newRow("plain") << QStringLiteral("T1");
        QTest::newRow("quotes and shell characters")
            << QStringLiteral("we\"ird 'it's' $HOME `id` \\");
    }

    void replacesTheAppAndStartsIt() {
        QFETCH(QString, installName);
        auto run = makeRun(installName);
        const QByteArray sha =
            QCryptographicHash::hash(fileText(served_.filePath(QStringLiteral("good.zip"))),
                                     QCryptographicHash::Sha256)
                .toHex()
                .toUpper();
        run->installer->install(
            {QStringLiteral("1.1.0"), base_ + QStringLiteral("good.zip"), {}, QString(sha)});
        DownloadProgressPanel* panel = run->installer->progressPanel();
        QVERIFY(panel != nullptr && panel->isVisible());
        QCOMPARE(panel->size(), QSize(280, 80));
        QCOMPARE(panel->findChild<QLabel*>()->text(), QStringLiteral("Downloading Quillix 1.1.0…"));
        QTRY_VERIFY_WITH_TIMEOUT(run->quit || !run->failures.isEmpty(), 30000);
        QCOMPARE(run->failures, QStringList());
        QVERIFY(run->installer->progressPanel() == nullptr);
        // The script waits a second for the quit, then swaps and starts.
        const QString started = QFileInfo(run->appFolder).dir().filePath(QStringLiteral("started"));
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(started), 10000);
        QCOMPARE(fileText(started), QByteArray("1.1.0\n"));
        QVERIFY(fileText(run->appFolder + QStringLiteral("/bin/quillix")).contains("echo 1.1.0"));
        QTRY_VERIFY(!QFile::exists(run->dir.filePath(QStringLiteral("tmp/quillix-update.sh"))));
    }

    void aSecondInstallReplacesThePanel() {
        auto run = makeRun(QStringLiteral("T1"));
        const AppcastRelease missing{QStringLiteral("1.1.0"), base_ + "missing.zip", {}, {}};
        run->installer->install(missing);
        const QPointer<DownloadProgressPanel> first = run->installer->progressPanel();
        run->installer->install(missing);
        QTRY_VERIFY(first.isNull());
        QVERIFY(run->installer->progressPanel() != nullptr);
        QTRY_COMPARE_WITH_TIMEOUT(run->failures.size(), 2, 30000);
        QTRY_VERIFY(run->installer->progressPanel() == nullptr);
        const QWidgetList windows = QApplication::topLevelWidgets();
        QVERIFY(std::none_of(windows.begin(), windows.end(),
                             [](const QWidget* window) { return window->isVisible(); }));
    }

    void failuresLeaveTheAppAsItWas_data() {
        QTest::addColumn<QString>("url");
        QTest::addColumn<QString>("sha256");
        QTest::addColumn<bool>("fromAppFolder");
        QTest::addColumn<QString>("alert");
        const QString install = QStringLiteral("Update Failed: Install failed: ");
        QTest::newRow("wrong checksum")
            << "good.zip" << QString(64, QLatin1Char('a')) << true
            << install + "The downloaded update does not match its checksum.";
        QTest::newRow("plain http") << "http://127.0.0.1:1/good.zip" << QString() << true
                                    << "Update Failed: The download URL in the update is invalid.";
        QTest::newRow("bundle in a subfolder")
            << "nested.zip" << QString() << true
            << install + "Could not find Quillix.app inside the downloaded archive.";
        QTest::newRow("not a zip") << "garbage.zip" << QString() << true
                                   << install + "Failed to unzip the downloaded update.";
        // Said at once: the archive is never fetched.
        QTest::newRow("installed by the package manager")
            << "unfetched.zip" << QString() << false
            << install +
                   "Quillix was installed by your distribution's package manager; "
                   "update it there.";
        QTest::newRow("404") << "missing.zip" << QString() << true
                             << "Update Failed: Download failed: Error transferring %1 - server "
                                "replied: File not found";
        QTest::newRow("no answer in 15 s")
            << "hang/update.zip" << QString() << true
            << "Update Failed: Download failed: The request timed out.";
    }

    void failuresLeaveTheAppAsItWas() {
        QFETCH(QString, url);
        QFETCH(QString, sha256);
        QFETCH(bool, fromAppFolder);
        QFETCH(QString, alert);
        auto run = makeRun(QStringLiteral("T1"), fromAppFolder);
        const QByteArray before = treeHash(run->dir.filePath(QStringLiteral("T1")));
        install(*run, {QStringLiteral("1.1.0"),
                       url.startsWith("http") ? url : base_ + url,
                       {},
                       sha256.isEmpty() ? std::nullopt : std::optional<QString>(sha256)});
        QCOMPARE(run->failures, QStringList{alert.arg(base_ + url)});
        if (!fromAppFolder) {
            QVERIFY(!fileText(certificate_.filePath("requests.log")).contains(url.toUtf8()));
        }
        QVERIFY(!run->quit);
        QVERIFY(run->installer->progressPanel() == nullptr);
        QTest::qWait(1500);  // a wrongly started script would have run by now
        QCOMPARE(treeHash(run->dir.filePath(QStringLiteral("T1"))), before);
    }
};

QTEST_MAIN(UpdateInstallerTest)
#include "update_installer_test.moc"
