#include <QApplication>
#include <QTimer>

#include "app/app_control.h"
#include "app/app_delegate.h"
#include "app/quit_on_signal.h"
#include "capture/captures_in_flight.h"

int main(int argc, char* argv[]) {
    // The icons live in the core library's resources, which a static library
    // does not register by itself.
    Q_INIT_RESOURCE(quillix);
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Quillix"));
    QApplication::setOrganizationName(QStringLiteral("Quillix"));
    QApplication::setApplicationVersion(QStringLiteral(QUILLIX_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("quillix"));
    // A tray-resident program: closing its last window does not end it.
    QApplication::setQuitOnLastWindowClosed(false);

    // A session ending (SIGTERM) or Ctrl+C quits cleanly.
    quitOnTerminationSignals();

    AppDelegate delegate;
    AppControl control(delegate);
    QTimer::singleShot(0, &delegate, [&delegate, &control] {
        delegate.applicationDidFinishLaunching();
        control.publish();
    });
    const int status = QApplication::exec();
    // A capture saved just before the quit (a logout's SIGTERM right after
    // Return) still gets its follow-up, so it stays in the gallery.
    waitForCapturesInFlight();
    return status;
}
