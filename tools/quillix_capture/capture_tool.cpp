// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "capture_tool.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "capture_arguments.h"
#include "library/png_encoding.h"
#include "platform/x11/x11_window_grabber.h"
#include "storage/atomic_file.h"

namespace {

CaptureExitStatus complain(CaptureExitStatus status, const QString& reason) {
    const QByteArray line = QStringLiteral("quillix-capture: %1\n").arg(reason).toLocal8Bit();
    std::fputs(line.constData(), stderr);
    std::fflush(stderr);
    return status;
}

CaptureExitStatus exitStatusFor(X11GrabError error) {
    switch (error) {
        case X11GrabError::none:
            return CaptureExitStatus::written;
        case X11GrabError::unknownWindow:
            return CaptureExitStatus::unknownWindow;
        case X11GrabError::windowNotViewable:
            return CaptureExitStatus::windowNotShown;
        case X11GrabError::emptyArea:
            return CaptureExitStatus::emptyArea;
        case X11GrabError::unsupportedVisual:
        case X11GrabError::grabFailed:
            break;
    }
    return CaptureExitStatus::grabFailed;
}

X11GrabResult grab(X11WindowGrabber& grabber, const CaptureArguments& arguments) {
    switch (arguments.target) {
        case CaptureArguments::Target::window:
            return grabber.grabWindow(arguments.windowId);
        case CaptureArguments::Target::area:
            return grabber.grabArea(arguments.area);
        case CaptureArguments::Target::screen:
            break;
    }
    return grabber.grabScreen();
}

// The PNG goes to a temporary file beside `path` that is renamed over it only
// once complete (the program's one atomic write), so a failure leaves
// neither a partial file nor a stray one.
bool writePng(const QImage& image, const QString& path, QString* reason) {
    QString problem;
    const QByteArray png = encodePng(image, &problem);
    if (png.isEmpty()) {
        *reason = QStringLiteral("cannot write %1: %2").arg(path, problem);
        return false;
    }
    if (!writeFileAtomically(path, png)) {
        *reason = QStringLiteral("cannot write %1: %2")
                      .arg(path, QString::fromLocal8Bit(std::strerror(errno)));
        return false;
    }
    return true;
}

}  // namespace

CaptureExitStatus runCaptureTool(const QStringList& commandLine) {
    const ParsedCaptureArguments parsed = parseCaptureArguments(commandLine);
    if (!parsed.arguments) {
        return complain(CaptureExitStatus::badArguments,
                        parsed.error + QStringLiteral(" (see --help)"));
    }
    const CaptureArguments& arguments = *parsed.arguments;
    if (arguments.showHelp) {
        std::fputs(captureUsage().toLocal8Bit().constData(), stdout);
        std::fflush(stdout);
        return CaptureExitStatus::written;
    }

    QString reason;
    const std::unique_ptr<X11WindowGrabber> grabber =
        X11WindowGrabber::connect(QByteArray(), &reason);
    if (!grabber) {
        return complain(CaptureExitStatus::noDisplay, reason);
    }
    const X11GrabResult result = grab(*grabber, arguments);
    if (!result.ok()) {
        return complain(exitStatusFor(result.error), result.reason);
    }
    if (!writePng(result.image, arguments.outputPath, &reason)) {
        return complain(CaptureExitStatus::writeFailed, reason);
    }
    return CaptureExitStatus::written;
}
