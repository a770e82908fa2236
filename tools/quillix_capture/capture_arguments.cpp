// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "capture_arguments.h"

#include <QRegularExpression>

namespace {

void fail(ParsedCaptureArguments* parsed, const QString& error) {
    parsed->arguments.reset();
    parsed->error = error;
}

// Decimal, or hexadecimal after "0x"; never 0, which names no window.
std::optional<std::uint32_t> parseWindowId(const QString& text) {
    static const QRegularExpression pattern(
        QStringLiteral("^(0[xX][0-9a-fA-F]{1,8}|[0-9]{1,10})$"));
    if (!pattern.match(text).hasMatch()) {
        return std::nullopt;
    }
    bool ok = false;
    const qulonglong value = text.toULongLong(&ok, 0 /* base from the prefix */);
    if (!ok || value == 0 || value > 0xffffffffULL) {
        return std::nullopt;
    }
    return std::uint32_t(value);
}

std::optional<QRect> parseArea(const QString& text) {
    static const QRegularExpression pattern(
        QStringLiteral("^(-?[0-9]{1,6}),(-?[0-9]{1,6}),([0-9]{1,6}),([0-9]{1,6})$"));
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch()) {
        return std::nullopt;
    }
    const QRect area(match.captured(1).toInt(), match.captured(2).toInt(),
                     match.captured(3).toInt(), match.captured(4).toInt());
    if (area.isEmpty()) {
        return std::nullopt;
    }
    return area;
}

}  // namespace

ParsedCaptureArguments parseCaptureArguments(const QStringList& arguments) {
    ParsedCaptureArguments parsed;
    CaptureArguments result;
    QStringList positional;
    bool optionsEnded = false;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments.at(i);
        if (optionsEnded || !argument.startsWith(QLatin1Char('-')) ||
            argument == QLatin1String("-")) {
            positional.append(argument);
            continue;
        }
        if (argument == QLatin1String("--")) {
            optionsEnded = true;
        } else if (argument == QLatin1String("-h") || argument == QLatin1String("--help")) {
            result.showHelp = true;
        } else if (argument == QLatin1String("-x")) {
            // No capture sound: the tool never plays one.
        } else if (argument == QLatin1String("-l") || argument == QLatin1String("-R")) {
            if (result.target != CaptureArguments::Target::screen) {
                fail(&parsed, QStringLiteral("give only one of -l and -R, once"));
                continue;
            }
            if (i + 1 >= arguments.size()) {
                fail(&parsed, argument == QLatin1String("-l")
                                  ? QStringLiteral("option -l needs a window id")
                                  : QStringLiteral("option -R needs X,Y,W,H"));
                continue;
            }
            const QString& value = arguments.at(++i);
            if (argument == QLatin1String("-l")) {
                const std::optional<std::uint32_t> id = parseWindowId(value);
                if (!id) {
                    fail(&parsed,
                         QStringLiteral("'%1' is not a window id (decimal or 0x hexadecimal)")
                             .arg(value));
                    continue;
                }
                result.target = CaptureArguments::Target::window;
                result.windowId = *id;
            } else {
                const std::optional<QRect> area = parseArea(value);
                if (!area) {
                    fail(&parsed,
                         QStringLiteral("'%1' is not a rectangle X,Y,W,H with W and H above 0")
                             .arg(value));
                    continue;
                }
                result.target = CaptureArguments::Target::area;
                result.area = *area;
            }
        } else {
            fail(&parsed, QStringLiteral("unknown option '%1'").arg(argument));
        }
    }

    // Help wins over every other complaint, as people ask for it when stuck.
    if (result.showHelp) {
        parsed.error.clear();
        parsed.arguments = result;
        return parsed;
    }
    if (!parsed.error.isEmpty()) {
        return parsed;
    }
    if (positional.isEmpty()) {
        fail(&parsed, QStringLiteral("missing the path of the PNG file to write"));
        return parsed;
    }
    if (positional.size() > 1) {
        fail(&parsed, QStringLiteral("unexpected argument '%1'").arg(positional.at(1)));
        return parsed;
    }
    if (positional.first() == QLatin1String("-")) {
        fail(&parsed,
             QStringLiteral("writing to standard output is not supported; give a file path"));
        return parsed;
    }
    result.outputPath = positional.first();
    parsed.arguments = result;
    return parsed;
}

QString captureUsage() {
    return QStringLiteral(
        "Usage: quillix-capture [-x] [-l WINDOW_ID | -R X,Y,W,H] [--] FILE.png\n"
        "\n"
        "Writes the pixels of one X11 window, of a rectangle of the screen, or of the\n"
        "whole screen (when neither -l nor -R is given) to FILE.png as a PNG image.\n"
        "\n"
        "  -l WINDOW_ID  the window with this X id (decimal, or hexadecimal after 0x):\n"
        "                its own pixels, exactly its size, even where other windows\n"
        "                cover it (through the Composite extension when the X server\n"
        "                has it)\n"
        "  -R X,Y,W,H    the rectangle of W by H pixels at X,Y, clamped to the screen\n"
        "  -x            no capture sound (accepted; the tool never plays one)\n"
        "  -h, --help    show this help and exit\n"
        "\n"
        "The image is written to a temporary file beside FILE.png and renamed into\n"
        "place, so FILE.png is either complete or left as it was.\n"
        "\n"
        "Exit status:\n"
        "  0  the image was written\n"
        "  2  bad arguments\n"
        "  3  no X display\n"
        "  4  no such window\n"
        "  5  the window is not shown (unmapped, minimised, input-only or off-screen)\n"
        "  6  the rectangle lies outside the screen\n"
        "  7  the file could not be written\n"
        "  8  the X server did not hand out the pixels\n");
}
