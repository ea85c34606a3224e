#include "Platform/Desktop/X11/Display/WindowSurface.h"

#include <array>

#include <unistd.h>
#include <xcb/xfixes.h>

namespace platform::desktop {
namespace {

// The extension's kinds of shape; its own header is not needed for more.
constexpr std::uint8_t boundingShape = 0;
constexpr std::uint8_t inputShape = 2;

struct Visual {
    std::uint8_t depth;
    xcb_visualid_t identifier;
};

// One with transparency, or else the screen's.
Visual visualFor(const xcb_screen_t& screen) {
    constexpr std::uint8_t withAlpha = 32;
    for (auto depths = xcb_screen_allowed_depths_iterator(&screen); depths.rem; xcb_depth_next(&depths)) {
        auto visuals = xcb_depth_visuals_iterator(depths.data);
        for (; depths.data->depth == withAlpha && visuals.rem; xcb_visualtype_next(&visuals))
            if (visuals.data->_class == XCB_VISUAL_CLASS_TRUE_COLOR && visuals.data->red_mask == 0xFF0000)
                return {withAlpha, visuals.data->visual_id};
    }
    return {screen.root_depth, screen.root_visual};
}

QImage::Format formatFor(std::uint8_t depth) {
    switch (depth) {
    case 16:
        return QImage::Format_RGB16;
    case 30:
        return QImage::Format_RGB30;
    default:
        return QImage::Format_ARGB32_Premultiplied;
    }
}

void setShapeRegion(const XConnection& x, xcb_window_t window, std::uint8_t kind,
                    const std::vector<QRect>& shape) {
    std::vector<xcb_rectangle_t> rectangles;
    rectangles.reserve(shape.size());
    for (const auto& part : shape)
        rectangles.push_back({static_cast<std::int16_t>(part.x()), static_cast<std::int16_t>(part.y()),
                              static_cast<std::uint16_t>(part.width()),
                              static_cast<std::uint16_t>(part.height())});
    const auto region = xcb_generate_id(x);
    xcb_xfixes_create_region(x, region, static_cast<std::uint32_t>(rectangles.size()), rectangles.data());
    xcb_xfixes_set_window_shape_region(x, window, kind, 0, 0, region);
    xcb_xfixes_destroy_region(x, region);
}

} // namespace

WindowSurface::WindowSurface(const XConnection& display, StackingWatch& stackingWatch, int margin)
    : x(display),
      stacking(stackingWatch),
      window(xcb_generate_id(x)),
      context(xcb_generate_id(x)),
      colors(xcb_generate_id(x)) {
    const auto visual = visualFor(x.screen());
    depth = visual.depth;
    xcb_create_colormap(x, XCB_COLORMAP_ALLOC_NONE, colors, x.root(), visual.identifier);
    // In the order of the mask's bits: no background, no border, past the window manager, colours.
    const std::array<std::uint32_t, 4> values{XCB_BACK_PIXMAP_NONE, 0, 1, colors};
    xcb_create_window(
        x, depth, window, x.root(), 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, visual.identifier,
        XCB_CW_BACK_PIXMAP | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_COLORMAP, values.data());
    xcb_create_gc(x, context, window, 0, nullptr);
    setShapeRegion(x, window, inputShape, {});
    describe(margin);
    stacking.add(*this);
}

WindowSurface::~WindowSurface() {
    stacking.remove(*this);
    xcb_destroy_window(x, window);
    if (pixmap != XCB_NONE)
        xcb_free_pixmap(x, pixmap);
    xcb_free_gc(x, context);
    xcb_free_colormap(x, colors);
    x.flush();
}

void WindowSurface::show(const QRect& place, const QImage& image, const QRect& changed,
                         const std::optional<std::vector<QRect>>& shape) {
    const bool isFirst = shown.isNull();
    const bool isResized = place.size() != shown.size();
    if (isResized) {
        if (!isFirst)
            xcb_free_pixmap(x, pixmap);
        pixmap = xcb_generate_id(x);
        xcb_create_pixmap(x, depth, pixmap, window, static_cast<std::uint16_t>(place.width()),
                          static_cast<std::uint16_t>(place.height()));
    }
    const auto part = isResized ? QRect({}, place.size()) : changed.translated(-place.topLeft());
    put(image.copy(part).convertToFormat(formatFor(depth)), part.topLeft());
    // The pixels are there before what follows, all of which the server does at a stroke.
    xcb_change_window_attributes(x, window, XCB_CW_BACK_PIXMAP, &pixmap);
    if (place != shown) {
        const std::array<std::uint32_t, 4> values{
            static_cast<std::uint32_t>(place.x()), static_cast<std::uint32_t>(place.y()),
            static_cast<std::uint32_t>(place.width()), static_cast<std::uint32_t>(place.height())};
        xcb_configure_window(x, window,
                             XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH
                                 | XCB_CONFIG_WINDOW_HEIGHT,
                             values.data());
    }
    if (shape)
        setShapeRegion(x, window, boundingShape, *shape);
    if (isFirst) {
        raise();
        xcb_map_window(x, window);
    }
    xcb_clear_area(x, 0, window, static_cast<std::int16_t>(part.x()), static_cast<std::int16_t>(part.y()),
                   static_cast<std::uint16_t>(part.width()), static_cast<std::uint16_t>(part.height()));
    x.flush();
    shown = place;
}

void WindowSurface::raise() const {
    constexpr std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(x, window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    x.flush();
}

void WindowSurface::setBlurredRegion(const std::vector<QRect>& region) {
    std::vector<std::uint32_t> values;
    for (const auto& part : region)
        for (const int value : {part.x(), part.y(), part.width(), part.height()})
            values.push_back(static_cast<std::uint32_t>(value));
    x.setProperty(window, x.atom("_KDE_NET_WM_BLUR_BEHIND_REGION"), XCB_ATOM_CARDINAL, values);
}

void WindowSurface::describe(int margin) const {
    using namespace std::string_view_literals;
    x.setProperty(window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, "lumarin\0Lumarin\0"sv);
    x.setProperty(window, x.atom("_NET_WM_NAME"), x.atom("UTF8_STRING"), "Lumarin");
    const auto set = [&](const char* name, xcb_atom_t type, const std::vector<std::uint32_t>& values) {
        x.setProperty(window, x.atom(name), type, values);
    };
    // The first flag says that there is the second value, which says that it takes no keyboard.
    set("WM_HINTS", XCB_ATOM_WM_HINTS, {1, 0, 0, 0, 0, 0, 0, 0, 0});
    set("_NET_WM_PID", XCB_ATOM_CARDINAL, {static_cast<std::uint32_t>(getpid())});
    // For compositors, which tell windows apart by these also where the window manager has no say.
    set("_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM, {x.atom("_NET_WM_WINDOW_TYPE_NOTIFICATION")});
    set("_NET_WM_STATE", XCB_ATOM_ATOM,
        {x.atom("_NET_WM_STATE_ABOVE"), x.atom("_NET_WM_STATE_STICKY"), x.atom("_NET_WM_STATE_SKIP_TASKBAR"),
         x.atom("_NET_WM_STATE_SKIP_PAGER")});
    set("_NET_WM_DESKTOP", XCB_ATOM_CARDINAL, {0xFFFFFFFF});
    // It casts its shadow itself.
    const auto shadow = static_cast<std::uint32_t>(margin);
    set("_GTK_FRAME_EXTENTS", XCB_ATOM_CARDINAL, {shadow, shadow, shadow, shadow});
}

void WindowSurface::put(const QImage& pixels, const QPoint& corner) const {
    const auto rowBytes = static_cast<std::uint32_t>(pixels.bytesPerLine());
    const auto most =
        std::size_t{4} * xcb_get_maximum_request_length(x) - sizeof(xcb_put_image_request_t) - 4;
    const auto rows = static_cast<int>(most / rowBytes);
    for (int y = 0; y < pixels.height(); y += rows) {
        const int count = std::min(rows, pixels.height() - y);
        xcb_put_image(x, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, context,
                      static_cast<std::uint16_t>(pixels.width()), static_cast<std::uint16_t>(count),
                      static_cast<std::int16_t>(corner.x()), static_cast<std::int16_t>(corner.y() + y), 0,
                      depth, rowBytes * static_cast<std::uint32_t>(count), pixels.constScanLine(y));
    }
}

} // namespace platform::desktop
