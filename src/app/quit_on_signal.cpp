// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "app/quit_on_signal.h"

#include <sys/socket.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QSocketNotifier>
#include <csignal>

namespace {

int signalSockets[2] = {-1, -1};

void onSignal(int) {
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = ::write(signalSockets[0], &byte, 1);
}

}  // namespace

void quitOnTerminationSignals() {
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, signalSockets) != 0) {
        return;
    }
    auto* notifier =
        new QSocketNotifier(signalSockets[1], QSocketNotifier::Read, QCoreApplication::instance());
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [notifier] {
        notifier->setEnabled(false);
        char byte = 0;
        [[maybe_unused]] const ssize_t read = ::read(signalSockets[1], &byte, 1);
        // exit(), not quit(): quit() lets a window that animates its closing
        // (the preview fades out) veto the whole quit.
        QCoreApplication::exit(0);
    });
    struct sigaction action {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (const int signalNumber : {SIGTERM, SIGINT, SIGHUP}) {
        sigaction(signalNumber, &action, nullptr);
    }
}
