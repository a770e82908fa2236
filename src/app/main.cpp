#include <QApplication>
#include <QTimer>

#include "app/app_delegate.h"

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Quillix"));
    QApplication::setOrganizationName(QStringLiteral("Quillix"));
    QApplication::setApplicationVersion(QStringLiteral(QUILLIX_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("quillix"));
    // A tray-resident program: closing its last window does not end it.
    QApplication::setQuitOnLastWindowClosed(false);

    AppDelegate delegate;
    QTimer::singleShot(0, &delegate, &AppDelegate::applicationDidFinishLaunching);
    return QApplication::exec();
}
