// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

// A window of another process for tests that point at windows: a plain
// top-level window of one colour at a given place and size.
//   test_window X Y WIDTH HEIGHT COLOUR TITLE
// Prints its X window id once it is on screen, then stays until killed.
#include <QApplication>
#include <QTimer>
#include <QWidget>
#include <cstdio>

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 7) {
        std::fprintf(stderr, "usage: test_window X Y WIDTH HEIGHT COLOUR TITLE\n");
        return 2;
    }
    QWidget window;
    window.setWindowTitle(arguments.at(6));
    window.setAccessibleName(arguments.at(6));
    window.setAutoFillBackground(true);
    QPalette palette = window.palette();
    palette.setColor(QPalette::Window, QColor(arguments.at(5)));
    window.setPalette(palette);
    window.setGeometry(arguments.at(1).toInt(), arguments.at(2).toInt(), arguments.at(3).toInt(),
                       arguments.at(4).toInt());
    window.show();
    QTimer::singleShot(0, &window, [&window] {
        std::printf("%llu\n", static_cast<unsigned long long>(window.winId()));
        std::fflush(stdout);
    });
    return QApplication::exec();
}
