// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "platform/x11/x11_window_grabber.h"

#include <xcb/composite.h>
#include <xcb/xcb.h>

#include <QHash>
#include <algorithm>
#include <bit>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

// A window that was covered or off-screen gets Expose events once it is
// redirected and repaints those parts in its own time. The grab watches the
// parts change and waits for them to settle, within these bounds.
constexpr auto kRepaintPollInterval = std::chrono::milliseconds(10);
constexpr auto kQuietAfterRepaint = std::chrono::milliseconds(80);
constexpr auto kWaitForFirstRepaint = std::chrono::milliseconds(750);
constexpr auto kRepaintDeadline = std::chrono::milliseconds(3000);

// Large images are read in strips so that no single reply grows huge.
constexpr qsizetype kMaxStripBytes = 8 * 1024 * 1024;

// No real window tree is this deep; the bound only guards the walk.
constexpr int kMaxTreeDepth = 256;

// X error codes, and a code of our own for a lost connection or a short reply.
constexpr std::uint8_t kNoError = 0;
constexpr std::uint8_t kBadWindow = 3;
constexpr std::uint8_t kBadMatch = 8;
constexpr std::uint8_t kBadDrawable = 9;
constexpr std::uint8_t kNoReply = 255;

struct FreeWithMalloc {
    void operator()(void* pointer) const { std::free(pointer); }
};
template <typename T>
using XcbPointer = std::unique_ptr<T, FreeWithMalloc>;

QString windowName(std::uint32_t window) {
    return QStringLiteral("window 0x%1").arg(window, 0, 16);
}

X11GrabResult failure(X11GrabError error, const QString& reason) {
    X11GrabResult result;
    result.error = error;
    result.reason = reason;
    return result;
}

// One colour channel of `pixel` scaled to 8 bits.
std::uint32_t channel(std::uint32_t pixel, std::uint32_t mask) {
    if (mask == 0) {
        return 0;
    }
    const int bits = std::popcount(mask);
    const std::uint32_t value = (pixel & mask) >> std::countr_zero(mask);
    if (bits >= 8) {
        return value >> (bits - 8);
    }
    const std::uint32_t maximum = (1u << bits) - 1;
    return (value * 255 + maximum / 2) / maximum;
}

std::uint32_t readPixel(const uchar* bytes, int byteCount, bool lsbFirst) {
    std::uint32_t value = 0;
    for (int i = 0; i < byteCount; ++i) {
        const int shift = lsbFirst ? 8 * i : 8 * (byteCount - 1 - i);
        value |= std::uint32_t(bytes[i]) << shift;
    }
    return value;
}

}  // namespace

// How the server lays out the pixels of one visual in a ZPixmap image.
struct X11WindowGrabber::PixelLayout {
    int bitsPerPixel = 0;
    int scanlinePad = 0;
    bool lsbFirst = true;
    std::uint32_t red = 0;
    std::uint32_t green = 0;
    std::uint32_t blue = 0;
    std::uint32_t alpha = 0;

    bool hasAlpha() const { return alpha != 0; }
    QImage::Format imageFormat() const {
        // ARGB visuals carry premultiplied colour, as Render and compositing
        // managers treat them.
        return hasAlpha() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32;
    }
    int stride(int width) const {
        const qint64 bits = qint64(width) * bitsPerPixel;
        return int((bits + scanlinePad - 1) / scanlinePad * scanlinePad / 8);
    }
    bool isNativeArgb32() const {
        return bitsPerPixel == 32 && lsbFirst == (Q_BYTE_ORDER == Q_LITTLE_ENDIAN) &&
               red == 0xff0000u && green == 0xff00u && blue == 0xffu &&
               (alpha == 0 || alpha == 0xff000000u);
    }

    void convertRow(const uchar* source, QRgb* target, int width) const {
        if (isNativeArgb32()) {
            std::memcpy(target, source, std::size_t(width) * 4);
            for (int x = 0; x < width; ++x) {
                target[x] = finish(target[x]);
            }
            return;
        }
        const int bytesPerPixel = bitsPerPixel / 8;
        for (int x = 0; x < width; ++x) {
            const std::uint32_t pixel =
                readPixel(source + x * bytesPerPixel, bytesPerPixel, lsbFirst);
            target[x] = finish(qRgba(int(channel(pixel, red)), int(channel(pixel, green)),
                                     int(channel(pixel, blue)), int(channel(pixel, alpha))));
        }
    }

    // Opaque visuals get full alpha; colour above its alpha (clients that
    // draw unpremultiplied colour into an ARGB window) is clamped so the
    // image stays a valid premultiplied one.
    QRgb finish(QRgb pixel) const {
        if (!hasAlpha()) {
            return pixel | 0xff000000u;
        }
        const int a = qAlpha(pixel);
        return qRgba(std::min(qRed(pixel), a), std::min(qGreen(pixel), a),
                     std::min(qBlue(pixel), a), a);
    }
};

struct X11WindowGrabber::WindowState {
    std::uint32_t id = 0;
    QRect rect;  // the contents, in root coordinates
    int borderWidth = 0;
    PixelLayout layout;
};

X11WindowGrabber::X11WindowGrabber(xcb_connection_t* connection, int screenNumber)
    : connection_(connection) {
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection_));
    for (int i = 0; screens.rem > 0; xcb_screen_next(&screens), ++i) {
        if (i == screenNumber || screen_ == nullptr) {
            screen_ = screens.data;
        }
    }
    const xcb_query_extension_reply_t* composite =
        xcb_get_extension_data(connection_, &xcb_composite_id);
    if (composite != nullptr && composite->present) {
        // Naming a window's pixmap arrived with version 0.2.
        XcbPointer<xcb_composite_query_version_reply_t> version(xcb_composite_query_version_reply(
            connection_, xcb_composite_query_version(connection_, 0, 4), nullptr));
        hasComposite_ = version && (version->major_version > 0 || version->minor_version >= 2);
    }
}

X11WindowGrabber::~X11WindowGrabber() {
    xcb_disconnect(connection_);
}

std::unique_ptr<X11WindowGrabber> X11WindowGrabber::connect(const QByteArray& displayName,
                                                            QString* failureReason) {
    const QByteArray name = displayName.isEmpty() ? qgetenv("DISPLAY") : displayName;
    if (name.isEmpty()) {
        *failureReason = QStringLiteral("no X display (DISPLAY is not set)");
        return nullptr;
    }
    int screenNumber = 0;
    xcb_connection_t* connection = xcb_connect(name.constData(), &screenNumber);
    if (xcb_connection_has_error(connection) != 0) {
        xcb_disconnect(connection);
        *failureReason =
            QStringLiteral("cannot open X display %1").arg(QString::fromLocal8Bit(name));
        return nullptr;
    }
    std::unique_ptr<X11WindowGrabber> grabber(new X11WindowGrabber(connection, screenNumber));
    if (grabber->screen_ == nullptr) {
        *failureReason =
            QStringLiteral("X display %1 has no screens").arg(QString::fromLocal8Bit(name));
        return nullptr;
    }
    return grabber;
}

QSize X11WindowGrabber::screenSize() const {
    return QSize(screen_->width_in_pixels, screen_->height_in_pixels);
}

X11GrabResult X11WindowGrabber::grabWindow(std::uint32_t windowId) {
    const auto attributesCookie = xcb_get_window_attributes(connection_, windowId);
    const auto geometryCookie = xcb_get_geometry(connection_, windowId);
    xcb_generic_error_t* rawError = nullptr;
    XcbPointer<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(connection_, attributesCookie, &rawError));
    XcbPointer<xcb_generic_error_t> attributesError(rawError);
    rawError = nullptr;
    XcbPointer<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(connection_, geometryCookie, &rawError));
    XcbPointer<xcb_generic_error_t> geometryError(rawError);

    const QString name = windowName(windowId);
    if (!attributes || !geometry) {
        const xcb_generic_error_t* error =
            attributesError ? attributesError.get() : geometryError.get();
        if (error != nullptr &&
            (error->error_code == kBadWindow || error->error_code == kBadDrawable)) {
            return failure(X11GrabError::unknownWindow,
                           QStringLiteral("no %1 on this display").arg(name));
        }
        return failure(X11GrabError::grabFailed,
                       QStringLiteral("the X server did not describe %1").arg(name));
    }
    if (attributes->_class == XCB_WINDOW_CLASS_INPUT_ONLY) {
        return failure(X11GrabError::windowNotViewable,
                       QStringLiteral("%1 is input-only and has no pixels").arg(name));
    }
    if (attributes->map_state != XCB_MAP_STATE_VIEWABLE) {
        return failure(X11GrabError::windowNotViewable,
                       QStringLiteral("%1 is not shown (unmapped or minimised)").arg(name));
    }
    const std::optional<PixelLayout> layout = pixelLayout(attributes->visual, geometry->depth);
    if (!layout) {
        return failure(X11GrabError::unsupportedVisual,
                       QStringLiteral("%1 uses a visual whose pixels are not read (depth %2)")
                           .arg(name)
                           .arg(geometry->depth));
    }
    const std::optional<QRect> rect = rectInRoot(windowId);
    if (!rect) {
        return failure(X11GrabError::unknownWindow,
                       QStringLiteral("%1 disappeared during the grab").arg(name));
    }
    const WindowState window{windowId, *rect, geometry->border_width, *layout};
    if (hasComposite_) {
        if (std::optional<X11GrabResult> result = grabThroughComposite(window)) {
            return *result;
        }
    }
    return grabVisiblePart(window);
}

X11GrabResult X11WindowGrabber::grabArea(const QRect& area) {
    const QRect screen(QPoint(0, 0), screenSize());
    const QRect clamped = area.normalized().intersected(screen);
    if (clamped.isEmpty()) {
        return failure(X11GrabError::emptyArea,
                       QStringLiteral("the %1x%2 area at %3,%4 lies outside the %5x%6 screen")
                           .arg(area.width())
                           .arg(area.height())
                           .arg(area.x())
                           .arg(area.y())
                           .arg(screen.width())
                           .arg(screen.height()));
    }
    const std::optional<PixelLayout> layout =
        pixelLayout(screen_->root_visual, screen_->root_depth);
    if (!layout) {
        return failure(X11GrabError::unsupportedVisual,
                       QStringLiteral("the screen uses a visual whose pixels are not read"));
    }
    return readImage(screen_->root, clamped, *layout, QStringLiteral("the screen"));
}

X11GrabResult X11WindowGrabber::grabScreen() {
    return grabArea(QRect(QPoint(0, 0), screenSize()));
}

std::optional<X11GrabResult> X11WindowGrabber::grabThroughComposite(const WindowState& window) {
    const QRect contents(QPoint(window.borderWidth, window.borderWidth), window.rect.size());
    const QString subject = windowName(window.id);

    // A window that is redirected already (by a compositing manager, or by the
    // server itself for an ARGB window inside an opaque parent) keeps all of
    // its pixels off-screen and needs no repaint.
    std::uint32_t pixmap = xcb_generate_id(connection_);
    if (namePixmap(window.id, pixmap)) {
        X11GrabResult result = readImage(pixmap, contents, window.layout, subject);
        succeeds(xcb_free_pixmap_checked(connection_, pixmap).sequence);
        return result;
    }

    // Redirecting copies what the screen shows into the window's new pixmap;
    // the parts the screen did not show are repainted by the window's owner.
    const std::optional<QRegion> shown = shownRegion(window, true);
    const QRegion hidden = shown ? QRegion(QRect(QPoint(0, 0), window.rect.size())) - *shown
                                 : QRegion(QRect(QPoint(0, 0), window.rect.size()));
    if (!succeeds(xcb_composite_redirect_window_checked(connection_, window.id,
                                                        XCB_COMPOSITE_REDIRECT_AUTOMATIC)
                      .sequence)) {
        return std::nullopt;
    }
    std::optional<X11GrabResult> result;
    pixmap = xcb_generate_id(connection_);
    if (namePixmap(window.id, pixmap)) {
        if (!hidden.isEmpty()) {
            waitForRepaint(pixmap, hidden.boundingRect().translated(contents.topLeft()),
                           window.layout);
        }
        result = readImage(pixmap, contents, window.layout, subject);
        succeeds(xcb_free_pixmap_checked(connection_, pixmap).sequence);
    }
    succeeds(xcb_composite_unredirect_window_checked(connection_, window.id,
                                                     XCB_COMPOSITE_REDIRECT_AUTOMATIC)
                 .sequence);
    return result;
}

X11GrabResult X11WindowGrabber::grabVisiblePart(const WindowState& window) {
    const QString subject = windowName(window.id);
    const std::optional<QRegion> shown = shownRegion(window, false);
    if (!shown) {
        return failure(X11GrabError::unknownWindow,
                       QStringLiteral("%1 disappeared during the grab").arg(subject));
    }
    const QRect visible = shown->boundingRect();
    if (visible.isEmpty()) {
        return failure(X11GrabError::windowNotViewable,
                       QStringLiteral("%1 lies entirely outside the screen").arg(subject));
    }
    X11GrabResult part = readImage(window.id, visible, window.layout, subject);
    if (!part.ok() || visible.size() == window.rect.size()) {
        return part;
    }
    // The server only hands out the on-screen part; the rest stays empty.
    QImage whole(window.rect.size(), window.layout.imageFormat());
    if (whole.isNull()) {
        return failure(X11GrabError::grabFailed,
                       QStringLiteral("%1 is too large to hold in memory").arg(subject));
    }
    whole.fill(window.layout.hasAlpha() ? Qt::transparent : Qt::black);
    for (int row = 0; row < visible.height(); ++row) {
        std::memcpy(whole.scanLine(visible.y() + row) + visible.x() * 4,
                    part.image.constScanLine(row), std::size_t(visible.width()) * 4);
    }
    part.image = whole;
    return part;
}

// The part of the window's contents that the screen shows, in the window's
// coordinates: cut by the edges of every ancestor (the screen last) and, when
// asked, by the mapped windows stacked above the window or above an ancestor.
std::optional<QRegion> X11WindowGrabber::shownRegion(const WindowState& window,
                                                     bool subtractCoveringWindows) {
    QRegion shown(window.rect);
    XcbPointer<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(connection_, xcb_query_tree(connection_, window.id), nullptr));
    std::uint32_t current = window.id;
    for (int level = 0; tree && tree->parent != XCB_NONE && level < kMaxTreeDepth; ++level) {
        const std::uint32_t parent = tree->parent;
        XcbPointer<xcb_query_tree_reply_t> parentTree(
            xcb_query_tree_reply(connection_, xcb_query_tree(connection_, parent), nullptr));
        const std::optional<QRect> parentRect = rectInRoot(parent);
        if (!parentTree || !parentRect) {
            return std::nullopt;
        }
        shown &= *parentRect;

        const xcb_window_t* siblings = xcb_query_tree_children(parentTree.get());
        const int siblingCount = xcb_query_tree_children_length(parentTree.get());
        // Children come bottom to top: those after `current` cover it.
        const int firstAbove =
            std::min(siblingCount,
                     int(std::find(siblings, siblings + siblingCount, current) - siblings) + 1);
        if (subtractCoveringWindows) {
            shown -= mappedWindowsArea(siblings + firstAbove, siblingCount - firstAbove,
                                       parentRect->topLeft());
        }
        current = parent;
        tree = std::move(parentTree);
    }
    if (!tree) {
        return std::nullopt;
    }
    return shown.translated(-window.rect.topLeft());
}

// The area that the mapped, drawable windows among `windows` (children of one
// parent whose contents start at `parentOrigin`) take up, borders included.
QRegion X11WindowGrabber::mappedWindowsArea(const std::uint32_t* windows, int count,
                                            const QPoint& parentOrigin) {
    std::vector<xcb_get_window_attributes_cookie_t> attributeCookies;
    std::vector<xcb_get_geometry_cookie_t> geometryCookies;
    for (int i = 0; i < count; ++i) {
        attributeCookies.push_back(xcb_get_window_attributes(connection_, windows[i]));
        geometryCookies.push_back(xcb_get_geometry(connection_, windows[i]));
    }
    QRegion area;
    for (int i = 0; i < count; ++i) {
        XcbPointer<xcb_get_window_attributes_reply_t> attributes(
            xcb_get_window_attributes_reply(connection_, attributeCookies[i], nullptr));
        XcbPointer<xcb_get_geometry_reply_t> geometry(
            xcb_get_geometry_reply(connection_, geometryCookies[i], nullptr));
        if (!attributes || !geometry || attributes->map_state != XCB_MAP_STATE_VIEWABLE ||
            attributes->_class != XCB_WINDOW_CLASS_INPUT_OUTPUT) {
            continue;
        }
        const int border = geometry->border_width;
        area += QRect(parentOrigin + QPoint(geometry->x, geometry->y),
                      QSize(geometry->width + 2 * border, geometry->height + 2 * border));
    }
    return area;
}

std::optional<QRect> X11WindowGrabber::rectInRoot(std::uint32_t window) {
    const auto geometryCookie = xcb_get_geometry(connection_, window);
    XcbPointer<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(connection_, geometryCookie, nullptr));
    if (!geometry) {
        return std::nullopt;
    }
    XcbPointer<xcb_translate_coordinates_reply_t> origin(xcb_translate_coordinates_reply(
        connection_, xcb_translate_coordinates(connection_, window, geometry->root, 0, 0),
        nullptr));
    if (!origin) {
        return std::nullopt;
    }
    return QRect(origin->dst_x, origin->dst_y, geometry->width, geometry->height);
}

// Waits until the window's owner has repainted `area` of the pixmap: until it
// changed and then kept still for a moment, or, when it never changes (the
// owner was quick, or paints what the pixmap already holds), for a while.
void X11WindowGrabber::waitForRepaint(std::uint32_t pixmap, const QRect& area,
                                      const PixelLayout& layout) {
    const Clock::time_point start = Clock::now();
    std::optional<std::size_t> previous = contentsDigest(pixmap, area, layout);
    std::optional<Clock::time_point> lastChange;
    while (previous) {
        const Clock::time_point now = Clock::now();
        const bool settled = lastChange ? now - *lastChange >= kQuietAfterRepaint
                                        : now - start >= kWaitForFirstRepaint;
        if (settled || now - start >= kRepaintDeadline) {
            return;
        }
        std::this_thread::sleep_for(kRepaintPollInterval);
        const std::optional<std::size_t> current = contentsDigest(pixmap, area, layout);
        if (current != previous) {
            lastChange = Clock::now();
        }
        previous = current;
    }
}

std::optional<std::size_t> X11WindowGrabber::contentsDigest(std::uint32_t drawable,
                                                            const QRect& area,
                                                            const PixelLayout& layout) {
    std::size_t digest = 0;
    const std::uint8_t error =
        readStrips(drawable, area, layout, [&digest](const uchar* data, int, int rows, int stride) {
            digest = qHashBits(data, std::size_t(rows) * std::size_t(stride), digest);
        });
    if (error != kNoError) {
        return std::nullopt;
    }
    return digest;
}

X11GrabResult X11WindowGrabber::readImage(std::uint32_t drawable, const QRect& area,
                                          const PixelLayout& layout, const QString& subject) {
    QImage image(area.size(), layout.imageFormat());
    if (image.isNull()) {
        return failure(X11GrabError::grabFailed,
                       QStringLiteral("%1 is too large to hold in memory (%2x%3 pixels)")
                           .arg(subject)
                           .arg(area.width())
                           .arg(area.height()));
    }
    const std::uint8_t error = readStrips(
        drawable, area, layout, [&](const uchar* data, int firstRow, int rows, int stride) {
            for (int row = 0; row < rows; ++row) {
                layout.convertRow(data + qsizetype(row) * stride,
                                  reinterpret_cast<QRgb*>(image.scanLine(firstRow + row)),
                                  area.width());
            }
        });
    switch (error) {
        case kNoError: {
            X11GrabResult result;
            result.image = image;
            return result;
        }
        case kBadWindow:
        case kBadDrawable:
            return failure(X11GrabError::unknownWindow,
                           QStringLiteral("%1 disappeared during the grab").arg(subject));
        case kBadMatch:
            return failure(X11GrabError::windowNotViewable,
                           QStringLiteral("%1 is no longer shown").arg(subject));
        case kNoReply:
            return failure(X11GrabError::grabFailed,
                           QStringLiteral("lost the connection to the X server"));
        default:
            return failure(X11GrabError::grabFailed,
                           QStringLiteral("the X server refused the pixels of %1 (error %2)")
                               .arg(subject)
                               .arg(error));
    }
}

// Reads `area` of `drawable` as ZPixmap strips and hands each one to
// `consume(data, firstRow, rows, stride)`. Returns the X error code of a
// refused request, or kNoError.
std::uint8_t X11WindowGrabber::readStrips(
    std::uint32_t drawable, const QRect& area, const PixelLayout& layout,
    const std::function<void(const uchar*, int, int, int)>& consume) {
    const int stride = layout.stride(area.width());
    const int rowsPerStrip = int(std::max<qsizetype>(1, kMaxStripBytes / stride));
    for (int top = 0; top < area.height(); top += rowsPerStrip) {
        const int rows = std::min(rowsPerStrip, area.height() - top);
        const auto cookie =
            xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, drawable, std::int16_t(area.x()),
                          std::int16_t(area.y() + top), std::uint16_t(area.width()),
                          std::uint16_t(rows), ~std::uint32_t(0));
        xcb_generic_error_t* rawError = nullptr;
        XcbPointer<xcb_get_image_reply_t> reply(
            xcb_get_image_reply(connection_, cookie, &rawError));
        XcbPointer<xcb_generic_error_t> error(rawError);
        if (!reply) {
            return error ? error->error_code : kNoReply;
        }
        if (xcb_get_image_data_length(reply.get()) < qint64(stride) * rows) {
            return kNoReply;
        }
        consume(xcb_get_image_data(reply.get()), top, rows, stride);
    }
    return kNoError;
}

bool X11WindowGrabber::namePixmap(std::uint32_t window, std::uint32_t pixmap) {
    return succeeds(xcb_composite_name_window_pixmap_checked(connection_, window, pixmap).sequence);
}

bool X11WindowGrabber::succeeds(unsigned int requestSequence) {
    XcbPointer<xcb_generic_error_t> error(
        xcb_request_check(connection_, xcb_void_cookie_t{requestSequence}));
    return !error;
}

std::optional<X11WindowGrabber::PixelLayout> X11WindowGrabber::pixelLayout(std::uint32_t visualId,
                                                                           int depth) const {
    const xcb_setup_t* setup = xcb_get_setup(connection_);
    PixelLayout layout;
    for (auto formats = xcb_setup_pixmap_formats_iterator(setup); formats.rem > 0;
         xcb_format_next(&formats)) {
        if (formats.data->depth == depth) {
            layout.bitsPerPixel = formats.data->bits_per_pixel;
            layout.scanlinePad = formats.data->scanline_pad;
        }
    }
    const bool readable =
        layout.bitsPerPixel == 16 || layout.bitsPerPixel == 24 || layout.bitsPerPixel == 32;
    if (!readable || layout.scanlinePad <= 0 || layout.scanlinePad % 8 != 0) {
        return std::nullopt;
    }
    layout.lsbFirst = setup->image_byte_order == XCB_IMAGE_ORDER_LSB_FIRST;

    for (auto screens = xcb_setup_roots_iterator(setup); screens.rem > 0;
         xcb_screen_next(&screens)) {
        for (auto depths = xcb_screen_allowed_depths_iterator(screens.data); depths.rem > 0;
             xcb_depth_next(&depths)) {
            for (auto visuals = xcb_depth_visuals_iterator(depths.data); visuals.rem > 0;
                 xcb_visualtype_next(&visuals)) {
                const xcb_visualtype_t* visual = visuals.data;
                if (visual->visual_id != visualId) {
                    continue;
                }
                // Colour-mapped visuals would need the colormap; none are read.
                if (visual->_class != XCB_VISUAL_CLASS_TRUE_COLOR &&
                    visual->_class != XCB_VISUAL_CLASS_DIRECT_COLOR) {
                    return std::nullopt;
                }
                layout.red = visual->red_mask;
                layout.green = visual->green_mask;
                layout.blue = visual->blue_mask;
                const std::uint32_t depthMask =
                    depth >= 32 ? ~std::uint32_t(0) : (std::uint32_t(1) << depth) - 1;
                layout.alpha = depthMask & ~(layout.red | layout.green | layout.blue);
                return layout;
            }
        }
    }
    return std::nullopt;
}
