// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

// The update checker against a real HTTPS server on 127.0.0.1 whose
// self-signed certificate is trusted through "updateCAFile".

#include "updates/update_checker.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QNetworkAccessManager>
#include <QProcess>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

#include "storage/preferences.h"
#include "support/test_support.h"

namespace {

const QString kRunning = QStringLiteral("1.4");

QMessageBox* shownAlert() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (auto* box = qobject_cast<QMessageBox*>(window); box != nullptr && box->isVisible()) {
            return box;
        }
    }
    return nullptr;
}

}  // namespace

class UpdateCheckerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void reportsEachOutcomeOnlyWhereItShould_data();
    void reportsEachOutcomeOnlyWhereItShould();
    void startWithAutomaticChecksOffNeverAsks();
    void startChecksSoonAndKeepsChecking();
    void theProgramsCheckerAlertsWithoutBlocking();

private:
    // A checker reading a Quillix.conf with the given keys; every outcome
    // it reports is appended to `outcomes_`.
    std::unique_ptr<UpdateChecker> makeChecker(const QString& feedPath, bool trustServer,
                                               bool automatic = true);
    QStringList requests() const;

    QTemporaryDir dir_;
    QProcess server_;
    int port_ = 0;
    std::unique_ptr<Preferences> preferences_;
    QNetworkAccessManager network_;
    QStringList outcomes_;
};

void UpdateCheckerTest::initTestCase() {
    QVERIFY(dir_.isValid());
    writeFileBytes(dir_.filePath(QStringLiteral("www/newer/appcast.json")),
                   R"({"version": "1.5", "downloadURL": "https://127.0.0.1/q.zip", "x": 1})");
    writeFileBytes(dir_.filePath(QStringLiteral("www/same/appcast.json")),
                   R"({"version": "1.4", "downloadURL": "https://127.0.0.1/q.zip"})");
    writeFileBytes(dir_.filePath(QStringLiteral("www/broken/appcast.json")),
                   R"({"version": "1.5"})");
    server_.start(QStringLiteral("/usr/bin/python3"),
                  {QStringLiteral(QUILLIX_TESTS_DIR "/updates/https_server.py"),
                   dir_.filePath(QStringLiteral("www")), dir_.filePath(QStringLiteral("ca.pem")),
                   dir_.filePath(QStringLiteral("requests.log"))});
    QVERIFY(server_.waitForReadyRead(20000));
    port_ = server_.readLine().trimmed().toInt();
    QVERIFY(port_ > 0);
}

void UpdateCheckerTest::cleanupTestCase() {
    server_.kill();
    server_.waitForFinished();
}

std::unique_ptr<UpdateChecker> UpdateCheckerTest::makeChecker(const QString& feedPath,
                                                              bool trustServer, bool automatic) {
    const QString confPath = dir_.filePath(QStringLiteral("Quillix.conf"));
    QFile::remove(confPath);
    {
        QSettings settings(confPath, QSettings::IniFormat);
        const QString url = feedPath.startsWith(QLatin1String("https:"))
                                ? feedPath
                                : QStringLiteral("https://127.0.0.1:%1%2").arg(port_).arg(feedPath);
        settings.setValue(QStringLiteral("appcastURL"), url);
        if (trustServer) {
            settings.setValue(QStringLiteral("updateCAFile"),
                              dir_.filePath(QStringLiteral("ca.pem")));
        }
        settings.setValue(QStringLiteral("checkForUpdatesAutomatically"), automatic);
    }
    preferences_ = std::make_unique<Preferences>(confPath);
    // A kept-alive connection would skip the certificate check.
    network_.clearConnectionCache();
    outcomes_.clear();
    UpdateChecker::Presenter presenter{[this](const AppcastRelease& release) {
                                           outcomes_ << QStringLiteral("offer ") + release.version;
                                       },
                                       [this] { outcomes_ << QStringLiteral("upToDate"); },
                                       [this] { outcomes_ << QStringLiteral("failed"); }};
    return std::make_unique<UpdateChecker>(*preferences_, kRunning, presenter, &network_);
}

QStringList UpdateCheckerTest::requests() const {
    return QString::fromUtf8(readFileBytes(dir_.filePath(QStringLiteral("requests.log"))))
        .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

void UpdateCheckerTest::reportsEachOutcomeOnlyWhereItShould_data() {
    QTest::addColumn<QString>("feed");
    QTest::addColumn<bool>("trusted");
    QTest::addColumn<bool>("userInitiated");
    QTest::addColumn<QString>("outcome");
    const QString newer = QStringLiteral("/newer/appcast.json");
    const QString same = QStringLiteral("/same/appcast.json");
    const QString missing = QStringLiteral("/missing/appcast.json");  // a 404 HTML page
    const QString broken = QStringLiteral("/broken/appcast.json");
    const QString refused = QStringLiteral("https://127.0.0.1:1/appcast.json");
    QTest::newRow("newer, automatic") << newer << true << false << "offer 1.5";
    QTest::newRow("newer, asked") << newer << true << true << "offer 1.5";
    QTest::newRow("same, automatic") << same << true << false << "";
    QTest::newRow("same, asked") << same << true << true << "upToDate";
    QTest::newRow("404, automatic") << missing << true << false << "";
    QTest::newRow("404, asked") << missing << true << true << "failed";
    QTest::newRow("no downloadURL, asked") << broken << true << true << "failed";
    QTest::newRow("server gone, asked") << refused << true << true << "failed";
    QTest::newRow("server gone, automatic") << refused << true << false << "";
    QTest::newRow("no answer in 15 s, asked") << "/hang/appcast.json" << true << true << "failed";
    QTest::newRow("untrusted certificate, asked") << newer << false << true << "failed";
}

void UpdateCheckerTest::reportsEachOutcomeOnlyWhereItShould() {
    QFETCH(QString, feed);
    QFETCH(bool, trusted);
    QFETCH(bool, userInitiated);
    QFETCH(QString, outcome);
    auto checker = makeChecker(feed, trusted);
    QSignalSpy done(&network_, &QNetworkAccessManager::finished);
    checker->check(userInitiated);
    QTRY_COMPARE_WITH_TIMEOUT(done.count(), 1, 20000);
    QCOMPARE(outcomes_.join(QLatin1Char(',')), outcome);
}

void UpdateCheckerTest::startWithAutomaticChecksOffNeverAsks() {
    auto checker = makeChecker(QStringLiteral("/newer/appcast.json"), true, false);
    checker->setFirstCheckDelayMs(50);
    const qsizetype before = requests().size();
    checker->start();
    // Switching automatic checks on later does not start them.
    preferences_->setCheckForUpdatesAutomatically(true);
    checker->start();
    QTest::qWait(1000);
    QCOMPARE(requests().size(), before);
    QVERIFY(outcomes_.isEmpty());
    QVERIFY(!checker->scheduled());
}

void UpdateCheckerTest::startChecksSoonAndKeepsChecking() {
    auto checker = makeChecker(QStringLiteral("/newer/appcast.json"), true);
    checker->setFirstCheckDelayMs(50);
    checker->start();
    QVERIFY(checker->scheduled());
    // The first, automatic check offers the newer release; switching
    // automatic checks off does not stop the schedule.
    preferences_->setCheckForUpdatesAutomatically(false);
    QTRY_COMPARE_WITH_TIMEOUT(outcomes_, QStringList{QStringLiteral("offer 1.5")}, 20000);
    QVERIFY(checker->scheduled());
    QCOMPARE(requests().constLast(), QStringLiteral("/newer/appcast.json"));
}

void UpdateCheckerTest::theProgramsCheckerAlertsWithoutBlocking() {
    qputenv("XDG_CONFIG_HOME", dir_.filePath(QStringLiteral("config")).toUtf8());
    QSettings settings(dir_.filePath(QStringLiteral("config/Quillix/Quillix.conf")),
                       QSettings::IniFormat);
    settings.setValue(QStringLiteral("appcastURL"),
                      QStringLiteral("https://127.0.0.1:%1/missing/appcast.json").arg(port_));
    settings.sync();
    UpdateChecker::shared().check(true);
    QTRY_VERIFY_WITH_TIMEOUT(shownAlert() != nullptr, 20000);
    QMessageBox* alert = shownAlert();
    QCOMPARE(alert->windowTitle(), QStringLiteral("Update Check Failed"));
    QCOMPARE(alert->accessibleName(), QStringLiteral("Update Check Failed"));
    QCOMPARE(alert->text(), QStringLiteral("Could not reach the update server. Please check "
                                           "your internet connection."));
    alert->button(QMessageBox::Ok)->click();
    QTRY_VERIFY(shownAlert() == nullptr);
}

QTEST_MAIN(UpdateCheckerTest)
#include "update_checker_test.moc"
