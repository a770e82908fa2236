// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include <QApplication>
#include <QThreadPool>
#include <QTimer>
#include <cstdio>

#include "app/app_control.h"
#include "app/app_delegate.h"
#include "app/command_line.h"
#include "app/log_output.h"
#include "app/quit_on_signal.h"
#include "library/captures_in_flight.h"
#include "library/screenshot_store.h"
#include "platform/notification_attachment.h"
#include "recording/recording_picker.h"

namespace {

void print(std::FILE* stream, const QString& text) {
    const QByteArray utf8 = text.toUtf8();
    std::fwrite(utf8.constData(), 1, static_cast<size_t>(utf8.size()), stream);
    std::fflush(stream);
}

QStringList argumentsOf(int argc, char* argv[]) {
    QStringList arguments;
    for (int index = 1; index < argc; ++index) {
        arguments.append(QString::fromLocal8Bit(argv[index]));
    }
    return arguments;
}

// One copy per session: the first keeps running, a later one opens the
// first one's gallery and leaves.
void handOverToRunningCopy() {
    print(stdout, AppControl::openGalleryOfRunningCopy()
                      ? QStringLiteral("Quillix is already running; its gallery is open.\n")
                      : QStringLiteral("Quillix is already running (it did not answer).\n"));
}

}  // namespace

int main(int argc, char* argv[]) {
    QCoreApplication::setApplicationVersion(QStringLiteral(QUILLIX_VERSION));
    // Answered before the application exists: no display, bus or data file.
    const CommandLine commandLine = CommandLine::parse(argumentsOf(argc, argv));
    if (commandLine.action() != CommandLine::Action::run) {
        const bool refused = commandLine.action() == CommandLine::Action::refuse;
        print(refused ? stderr : stdout, commandLine.text());
        return commandLine.exitStatus();
    }

    installLogOutput();
    // The icons live in the widget layer's resources, which a static library
    // does not register by itself.
    Q_INIT_RESOURCE(quillix);
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Quillix"));
    QApplication::setOrganizationName(QStringLiteral("Quillix"));
    QApplication::setDesktopFileName(QStringLiteral("quillix"));
    // A tray-resident program: closing its last window does not end it.
    QApplication::setQuitOnLastWindowClosed(false);

    if (AppControl::claimName() == AppControl::Instance::alreadyRunning) {
        handOverToRunningCopy();
        return 0;
    }

    // A session ending (SIGTERM) or Ctrl+C quits cleanly.
    quitOnTerminationSignals();
    // Notification pictures that a crashed run left in the temporary folder.
    QThreadPool::globalInstance()->start(&NotificationAttachments::removeLeftoversOfEndedRuns);

    AppDelegate delegate;
    AppControl control(delegate);
    QTimer::singleShot(0, &delegate, [&delegate, &control] {
        delegate.applicationDidFinishLaunching();
        control.publish();
    });
    const int status = QApplication::exec();
    // A recording running at the quit is stopped, and its file finished and
    // listed, before the library stops.
    RecordingPicker::shared().finishBeforeQuit();
    // A capture saved just before the quit (a logout's SIGTERM right after
    // Return) still gets its follow-up, so it stays in the gallery.
    waitForCapturesInFlight();
    // The library's workers end before the program does.
    ScreenshotStore::shared().stopWork();
    // Popups still on screen lose their pictures; none stays behind.
    NotificationAttachments::shared().removeAll();
    return status;
}
