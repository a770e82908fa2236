// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#pragma once

#include <QByteArray>
#include <QImage>
#include <QRect>
#include <QRegion>
#include <QSize>
#include <QString>
#include <QtGlobal>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

struct xcb_connection_t;
struct xcb_screen_t;

// Why a grab produced no image.
enum class X11GrabError {
    none,
    unknownWindow,      // the id names no window (BadWindow)
    windowNotViewable,  // the window or one of its ancestors is unmapped, or it has no pixels
    emptyArea,          // the requested rectangle lies entirely outside the screen
    unsupportedVisual,  // colour-mapped visuals and pixel layouts that are not read
    grabFailed,         // the server refused the request, or the image is too large to hold
};

// The pixels of one grab, or the reason there are none.
struct X11GrabResult {
    QImage image;  // Format_RGB32, or Format_ARGB32_Premultiplied for windows with alpha
    X11GrabError error = X11GrabError::none;
    QString reason;  // one line for people; empty on success

    bool ok() const { return error == X11GrabError::none; }
};

// Reads pixels from the X server over a connection of its own: one window by
// id (its own pixels even where other windows cover it, through the Composite
// extension), a rectangle of the screen, or the whole screen.
//
// The private connection keeps the grabber independent of the toolkit's
// connection and its event handling, so a grab may run on a worker thread.
// One instance must not be used from two threads at once.
class X11WindowGrabber {
public:
    // Connects to `displayName` (empty: $DISPLAY). Nothing, with a one-line
    // reason, when no X server answers.
    static std::unique_ptr<X11WindowGrabber> connect(const QByteArray& displayName,
                                                     QString* failureReason);

    ~X11WindowGrabber();
    X11WindowGrabber(const X11WindowGrabber&) = delete;
    X11WindowGrabber& operator=(const X11WindowGrabber&) = delete;

    // The default screen's size in pixels.
    QSize screenSize() const;

    // The window's contents (without its border), exactly its size. Parts
    // that are covered or off-screen come from the window itself when the
    // server offers Composite; without Composite they hold whatever the
    // screen shows there, and off-screen parts stay transparent.
    X11GrabResult grabWindow(std::uint32_t windowId);

    // `area` in screen coordinates, clamped to the screen first.
    X11GrabResult grabArea(const QRect& area);

    X11GrabResult grabScreen();

private:
    struct PixelLayout;
    struct WindowState;

    X11WindowGrabber(xcb_connection_t* connection, int screenNumber);

    std::optional<X11GrabResult> grabThroughComposite(const WindowState& window);
    X11GrabResult grabVisiblePart(const WindowState& window);
    std::optional<QRegion> shownRegion(const WindowState& window, bool subtractCoveringWindows);
    QRegion mappedWindowsArea(const std::uint32_t* windows, int count, const QPoint& parentOrigin);
    std::optional<QRect> rectInRoot(std::uint32_t window);
    void waitForRepaint(std::uint32_t pixmap, const QRect& area, const PixelLayout& layout);
    std::optional<std::size_t> contentsDigest(std::uint32_t drawable, const QRect& area,
                                              const PixelLayout& layout);
    X11GrabResult readImage(std::uint32_t drawable, const QRect& area, const PixelLayout& layout,
                            const QString& subject);
    std::uint8_t readStrips(std::uint32_t drawable, const QRect& area, const PixelLayout& layout,
                            const std::function<void(const uchar*, int, int, int)>& consume);
    bool namePixmap(std::uint32_t window, std::uint32_t pixmap);
    bool succeeds(unsigned int requestSequence);
    std::optional<PixelLayout> pixelLayout(std::uint32_t visualId, int depth) const;

    xcb_connection_t* connection_ = nullptr;
    xcb_screen_t* screen_ = nullptr;
    bool hasComposite_ = false;
};
